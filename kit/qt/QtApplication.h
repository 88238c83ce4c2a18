#pragma once

#include "kit/Application.h"

#include <cstdint>

namespace kit::qt {

// The application on a Linux desktop: URLs open through the desktop's handler for their scheme,
// and disabling the idle timer inhibits the screensaver over the session bus.
class QtApplication : public Application {
public:
    ~QtApplication() override;

    bool openUrl(const Url& url) override;
    bool canOpenUrl(const Url& url) const override;

protected:
    void idleTimerDidChange() override;

private:
    uint32_t inhibitCookie_ = 0;
};

}  // namespace kit::qt
