#pragma once

#include "ads/Network/ZEBClickTracker.h"
#include "ads/Network/ZEBClickTrackerDelegate.h"
#include "kit/CallGroup.h"
#include "kit/Object.h"
#include "kit/Url.h"
#include "kit/Value.h"

#include <memory>
#include <set>
#include <string_view>
#include <vector>

// The process-wide owner of trackers that nobody else holds: each runs to its outcome, after which
// the collection lets go of it in a later turn of the run loop.
class ZEBClickTrackerCollection : public kit::Object, public ZEBClickTrackerDelegate {
public:
    // Made on first use, from any thread; lives as long as the platform.
    static std::shared_ptr<ZEBClickTrackerCollection> sharedInstance();

    ZEBClickTrackerCollection() = default;
    ~ZEBClickTrackerCollection() override;

    // Tracks every element that is a URL text; other elements are skipped.
    void trackURLs(const kit::Value::Array& list);
    void trackURLs(const std::vector<kit::Url>& list);
    // With `appendSpamSignals`, the URL first gets the click parameters of the statistics. A text
    // that is no URL is skipped.
    void trackURLStringAppendSpamSignals(std::string_view urlString, bool appendSpamSignals);

    const std::set<std::shared_ptr<ZEBClickTracker>>& trackers() const { return trackers_; }
    // Lets go of every tracker that has reported its outcome.
    void cleanupTrackers();

    // ZEBClickTrackerDelegate
    void trackerDidRedirect(ZEBClickTracker& tracker, const kit::Url& url) override;
    void trackerDidFailWithError(ZEBClickTracker& tracker, std::shared_ptr<const kit::Error> error) override;

private:
    void track(const kit::Url& url);
    void scheduleCleanup();

    std::set<std::shared_ptr<ZEBClickTracker>> trackers_;
    kit::CallGroup cleanups_;
};
