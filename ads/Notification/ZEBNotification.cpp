#include "ads/Notification/ZEBNotification.h"

#include "ads/Utility/ZEBNetworkUtilities.h"
#include "kit/RunLoop.h"

#include <fmt/format.h>

namespace {
constexpr const char* kPelkoScheme = "pelko";
constexpr const char* kVMSGScheme = "vmsg";
}  // namespace

ZEBNotification::ZEBNotification(std::string name, std::optional<kit::Value::Map> parameters)
    : name_(std::move(name)), parameters_(std::move(parameters)) {}

std::shared_ptr<ZEBNotification> ZEBNotification::createWithNotificationURL(const kit::Url& url) {
    if (isVMSGNotificationURL(url)) {
        // The host is not looked at: the path names the command.
        std::string path = url.path();
        std::string name = path.empty() ? path : path.substr(1);
        return std::make_shared<ZEBNotification>(name,
                                                 ZEBNetworkUtilities::dictionaryFromQueryString(url.query()));
    }
    if (!isPelkoNotificationURL(url)) return nullptr;
    kit::Value::Map query = ZEBNetworkUtilities::dictionaryFromQueryString(url.query());
    std::string host = url.host().value_or("");
    if (host == "launch") {
        kit::Value::Map parameters{{"a", "browser"}};
        if (const kit::Value* target = query.find("url")) parameters.set("u", *target);
        return std::make_shared<ZEBNotification>("open", std::move(parameters));
    }
    if (host == "closecanvas") return std::make_shared<ZEBNotification>("close", std::nullopt);
    if (host == "log") return std::make_shared<ZEBNotification>("log", std::move(query));
    return nullptr;
}

bool ZEBNotification::isPelkoNotificationURL(const kit::Url& url) {
    return url.scheme() == kPelkoScheme;
}

bool ZEBNotification::isVMSGNotificationURL(const kit::Url& url) {
    return url.scheme() == kVMSGScheme;
}

bool ZEBNotification::isNotificationURL(const kit::Url& url) {
    return isVMSGNotificationURL(url) || isPelkoNotificationURL(url);
}

std::shared_ptr<ZEBNotification> ZEBNotification::notificationFromURL(const kit::Url& url) {
    auto notification = createWithNotificationURL(url);
    if (notification) kit::RunLoop::main().keepAlive(notification);
    return notification;
}

std::string ZEBNotification::description() const {
    std::string parameters = parameters_ ? kit::Value(*parameters_).description() : "(null)";
    return fmt::format("{}<{}>: name:{} parameters:{}", className(), fmt::ptr(this), name_, parameters);
}
