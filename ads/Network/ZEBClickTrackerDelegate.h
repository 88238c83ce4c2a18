#pragma once

#include "kit/Error.h"
#include "kit/Url.h"

#include <memory>

class ZEBClickTracker;

// How a tracking ended; both are optional.
class ZEBClickTrackerDelegate {
public:
    virtual ~ZEBClickTrackerDelegate();
    // Tracking ended well, at `url`: the last URL requested or the non-HTTP redirect it stopped at.
    virtual void trackerDidRedirect(ZEBClickTracker& tracker, const kit::Url& url);
    virtual void trackerDidFailWithError(ZEBClickTracker& tracker, std::shared_ptr<const kit::Error> error);
};
