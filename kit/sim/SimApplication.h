#pragma once

#include "kit/Application.h"

#include <set>
#include <string>
#include <vector>

namespace kit::sim {

// The application as a test scripts it: which URL schemes something on the "device" opens, and
// a record of what was opened.
class SimApplication : public Application {
public:
    bool openUrl(const Url& url) override;
    bool canOpenUrl(const Url& url) const override;

    // Schemes are compared in lower case.
    void setOpenableSchemes(std::set<std::string> schemes);
    const std::vector<std::string>& openedUrls() const { return opened_; }

    bool offersBackgroundTasks() const override { return offersBackgroundTasks_; }
    void setOffersBackgroundTasks(bool offers) { offersBackgroundTasks_ = offers; }

private:
    std::set<std::string> openable_{"http", "https", "mailto", "tel", "sms"};
    std::vector<std::string> opened_;
    bool offersBackgroundTasks_ = true;
};

}  // namespace kit::sim
