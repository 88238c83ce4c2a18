#include "ads/Network/ZEBClickTracker.h"

#include "ads/Request/ZEBRequestError.h"
#include "ads/Statistics/ZEBStatistics.h"
#include "kit/SharedInstances.h"

#include <algorithm>
#include <cctype>
#include <string>

namespace {
// Trackings under way on a system without background tasks.
struct TrackingCount {
    int count = 0;
};

int& trackingCount() {
    return kit::shared<TrackingCount>().count;
}
}  // namespace

ZEBClickTrackerDelegate::~ZEBClickTrackerDelegate() = default;
void ZEBClickTrackerDelegate::trackerDidRedirect(ZEBClickTracker&, const kit::Url&) {}
void ZEBClickTrackerDelegate::trackerDidFailWithError(ZEBClickTracker&, std::shared_ptr<const kit::Error>) {}

ZEBClickTracker::~ZEBClickTracker() {
    reset();
}

bool ZEBClickTracker::activeTrackings() {
    return trackingCount() != 0;
}

void ZEBClickTracker::trackURL(const std::optional<kit::Url>& url) {
    if (!url) return;
    reset();
    beginBackgroundTask();
    tracker_ = ZEBCachedFile::createWithDelegateURL(retained(this), *url);
    tracker_->validate();
}

std::optional<kit::Url> ZEBClickTracker::trackingURL() const {
    if (!tracker_) return std::nullopt;
    return tracker_->httpDestinationURL();
}

void ZEBClickTracker::reset() {
    hasTracked_ = false;
    if (auto tracker = std::move(tracker_)) {
        tracker->setDelegate({});
        tracker->invalidate();
    }
    endBackgroundTask();
}

void ZEBClickTracker::beginBackgroundTask() {
    kit::Application& application = kit::Application::shared();
    if (application.offersBackgroundTasks()) {
        // The handler holds the tracker: it must still be there when time runs out.
        backgroundTaskID_ = application.beginBackgroundTask([self = retained(this)] { self->reset(); });
    } else {
        ++trackingCount();
        counted_ = true;
    }
}

void ZEBClickTracker::endBackgroundTask() {
    if (backgroundTaskID_ != kit::Application::kInvalidBackgroundTask) {
        kit::Application::shared().endBackgroundTask(backgroundTaskID_);
        backgroundTaskID_ = kit::Application::kInvalidBackgroundTask;
    } else if (counted_) {
        // Only this tracker's own count: a reset before any tracking must not end another's.
        counted_ = false;
        if (trackingCount() > 0) --trackingCount();
    }
}

std::shared_ptr<const kit::Error> ZEBClickTracker::cachedFileShouldRedirectToURL(ZEBCachedFile& file,
                                                                                 const kit::Url& url) {
    std::string scheme = url.scheme();
    std::transform(scheme.begin(), scheme.end(), scheme.begin(),
                   [](unsigned char c) { return std::tolower(c); });
    if (scheme.starts_with("http")) return nullptr;
    // Leaving HTTP is where tracking ends, and it ended well; the refusal's failure is then ignored.
    cachedFileDownloadDidEnd(file);
    return kit::Error::make(kZEBErrorDomain, 0);
}

void ZEBClickTracker::cachedFileDownloadDidEnd(ZEBCachedFile& file) {
    if (hasTracked_) return;
    hasTracked_ = true;
    auto self = retained(this);
    ZEBStatistics::sharedStatistics().addClickTrackingURL(file.sourceURL());
    if (auto d = delegate()) d->trackerDidRedirect(*this, file.httpDestinationURL());
    endBackgroundTask();
}

void ZEBClickTracker::cachedFileDownloadDidFail(ZEBCachedFile&, std::shared_ptr<const kit::Error> error) {
    if (hasTracked_) return;
    hasTracked_ = true;
    auto self = retained(this);
    if (auto d = delegate()) d->trackerDidFailWithError(*this, std::move(error));
    endBackgroundTask();
}
