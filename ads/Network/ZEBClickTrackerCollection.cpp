#include "ads/Network/ZEBClickTrackerCollection.h"

#include "ads/Statistics/ZEBStatistics.h"
#include "kit/SharedInstances.h"

// The shared instances' lock makes sure that two threads never make two collections.
std::shared_ptr<ZEBClickTrackerCollection> ZEBClickTrackerCollection::sharedInstance() {
    return retained(&kit::shared<ZEBClickTrackerCollection>());
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
    tracker->setDelegate(retained(this));
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
    tracker->setDelegate(retained(this));
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
    cleanups_.post([this] { cleanupTrackers(); });
}

void ZEBClickTrackerCollection::cleanupTrackers() {
    std::erase_if(trackers_,
                  [](const std::shared_ptr<ZEBClickTracker>& tracker) { return tracker->hasTracked(); });
}
