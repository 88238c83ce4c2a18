#include "ads/Network/ZEBClickTrackerCollection.h"

#include "ads/Statistics/ZEBStatistics.h"
#include "kit/RunLoop.h"

#include <mutex>

namespace {
std::mutex gSharedLock;
// Never destroyed, not even at exit, when the platform its trackers use may already be gone.
std::shared_ptr<ZEBClickTrackerCollection>& gShared = *new std::shared_ptr<ZEBClickTrackerCollection>;
}  // namespace

std::shared_ptr<ZEBClickTrackerCollection> ZEBClickTrackerCollection::sharedInstance() {
    std::lock_guard<std::mutex> lock(gSharedLock);
    if (!gShared) gShared = std::make_shared<ZEBClickTrackerCollection>();
    return gShared;
}

void ZEBClickTrackerCollection::releaseSharedInstance() {
    std::shared_ptr<ZEBClickTrackerCollection> released;
    {
        std::lock_guard<std::mutex> lock(gSharedLock);
        released = std::move(gShared);
    }
}

ZEBClickTrackerCollection::~ZEBClickTrackerCollection() {
    for (const auto& tracker : trackers_) tracker->reset();
}

void ZEBClickTrackerCollection::trackURLs(const kit::Value::Array& list) {
    for (const kit::Value& element : list) {
        if (!element.string()) continue;
        if (auto url = kit::Url::parse(*element.string())) track(*url);
    }
}

void ZEBClickTrackerCollection::trackURLs(const std::vector<kit::Url>& list) {
    for (const kit::Url& url : list) track(url);
}

void ZEBClickTrackerCollection::track(const kit::Url& url) {
    auto tracker = std::make_shared<ZEBClickTracker>();
    tracker->setDelegate(std::static_pointer_cast<ZEBClickTrackerCollection>(shared_from_this()));
    tracker->trackURL(url);
    trackers_.insert(tracker);
}

void ZEBClickTrackerCollection::trackURLStringAppendSpamSignals(std::string_view urlString,
                                                                bool appendSpamSignals) {
    std::optional<kit::Url> url = kit::Url::parse(urlString);
    // A tracker without a URL would never report, and so never be let go.
    if (!url) return;
    if (appendSpamSignals) url = ZEBStatistics::sharedStatistics().urlForClick(*url);
    auto tracker = std::make_shared<ZEBClickTracker>();
    tracker->trackURL(url);
    tracker->setDelegate(std::static_pointer_cast<ZEBClickTrackerCollection>(shared_from_this()));
    trackers_.insert(tracker);
}

void ZEBClickTrackerCollection::trackerDidRedirect(ZEBClickTracker&, const kit::Url&) {
    scheduleCleanup();
}

void ZEBClickTrackerCollection::trackerDidFailWithError(ZEBClickTracker&, std::shared_ptr<const kit::Error>) {
    scheduleCleanup();
}

void ZEBClickTrackerCollection::scheduleCleanup() {
    // Not now: the tracker that reports is still inside its own callback.
    kit::RunLoop::main().post(
        [weak = std::weak_ptr<ZEBClickTrackerCollection>(
             std::static_pointer_cast<ZEBClickTrackerCollection>(shared_from_this()))] {
            if (auto self = weak.lock()) self->cleanupTrackers();
        },
        this);
}

void ZEBClickTrackerCollection::cleanupTrackers() {
    std::erase_if(trackers_,
                  [](const std::shared_ptr<ZEBClickTracker>& tracker) { return tracker->hasTracked(); });
}
