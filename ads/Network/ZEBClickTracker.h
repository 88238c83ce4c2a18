#pragma once

#include "ads/Network/ZEBCachedFile.h"
#include "ads/Network/ZEBClickTrackerDelegate.h"
#include "kit/Application.h"
#include "kit/Object.h"

#include <memory>
#include <optional>

// Fires one tracking URL with a cached download, following HTTP redirects and stopping at the first
// one that leaves HTTP (an application-store link, say), which counts as success. Only the first
// outcome per URL is reported. A background task is held while it runs so that a tap that sends
// the user out of the application does not cut the request short. No retry, no persistence.
class ZEBClickTracker : public kit::Object, public ZEBCachedFileDelegate {
public:
    ZEBClickTracker() = default;
    ~ZEBClickTracker() override;

    // None is ignored. A tracking under way is dropped silently for the new one.
    void trackURL(const std::optional<kit::Url>& url);
    // The URL of the last request or redirect target, also a refused non-HTTP one.
    std::optional<kit::Url> trackingURL() const;
    bool hasTracked() const { return hasTracked_; }
    std::shared_ptr<ZEBClickTrackerDelegate> delegate() const { return delegate_.lock(); }
    void setDelegate(std::weak_ptr<ZEBClickTrackerDelegate> delegate) { delegate_ = std::move(delegate); }
    kit::Application::BackgroundTaskId backgroundTaskID() const { return backgroundTaskID_; }
    // Stops and forgets the current URL (its cache file goes too) and ends the background task.
    void reset();

    // On systems without background tasks: whether any tracking is still under way.
    static bool activeTrackings();

    // ZEBCachedFileDelegate
    void cachedFileDownloadDidEnd(ZEBCachedFile& file) override;
    void cachedFileDownloadDidFail(ZEBCachedFile& file, std::shared_ptr<const kit::Error> error) override;
    std::shared_ptr<const kit::Error> cachedFileShouldRedirectToURL(ZEBCachedFile& file,
                                                                    const kit::Url& url) override;

private:
    void beginBackgroundTask();
    void endBackgroundTask();

    std::shared_ptr<ZEBCachedFile> tracker_;
    std::weak_ptr<ZEBClickTrackerDelegate> delegate_;
    bool hasTracked_ = false;
    kit::Application::BackgroundTaskId backgroundTaskID_ = kit::Application::kInvalidBackgroundTask;
    // Counted in the trackings under way (no background tasks on this system).
    bool counted_ = false;
};
