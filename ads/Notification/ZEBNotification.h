#pragma once

#include "kit/Object.h"
#include "kit/Url.h"
#include "kit/Value.h"

#include <memory>
#include <optional>
#include <string>

// A command from a creative: its name and string parameters, read from a URL of one of the two
// private schemes the creatives navigate to ("vmsg" and "pelko").
class ZEBNotification : public kit::Object {
public:
    ZEBNotification(std::string name, std::optional<kit::Value::Map> parameters);
    // None when the URL is no command: a foreign scheme, or a "pelko" host that names none.
    static std::shared_ptr<ZEBNotification> createWithNotificationURL(const kit::Url& url);

    // Schemes compare case-sensitively: "PELKO" is no command scheme.
    static bool isPelkoNotificationURL(const kit::Url& url);
    static bool isVMSGNotificationURL(const kit::Url& url);
    static bool isNotificationURL(const kit::Url& url);
    // Lives at least to the end of the current run-loop turn.
    static std::shared_ptr<ZEBNotification> notificationFromURL(const kit::Url& url);

    const std::string& name() const { return name_; }
    const std::optional<kit::Value::Map>& parameters() const { return parameters_; }

    std::string description() const override;

private:
    std::string name_;
    std::optional<kit::Value::Map> parameters_;
};
