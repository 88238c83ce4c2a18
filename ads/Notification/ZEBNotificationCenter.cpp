#include "ads/Notification/ZEBNotificationCenter.h"

#include "ads/Notification/ZEBNotification.h"
#include "ads/Utility/ZEBMacros.h"
#include "kit/Platform.h"
#include "kit/RunLoop.h"
#include "kit/WebView.h"

#include <fmt/format.h>

namespace {
constexpr const char* kReceiveMessageFunction = "QUOR_ReceiveMessage";

std::shared_ptr<ZEBNotificationCenter>& sharedCenter() {
    static std::shared_ptr<ZEBNotificationCenter> center;
    return center;
}
}  // namespace

ZEBNotificationCenter::ZEBNotificationCenter() = default;

// Delayed postings hold this center's address as their target.
ZEBNotificationCenter::~ZEBNotificationCenter() {
    if (kit::Platform::isInstalled()) kit::RunLoop::main().cancelCallsForTarget(this);
}

ZEBNotificationCenter& ZEBNotificationCenter::defaultCenter() {
    auto& center = sharedCenter();
    if (!center) center = std::make_shared<ZEBNotificationCenter>();
    return *center;
}

void ZEBNotificationCenter::reset() {
    auto& center = sharedCenter();
    if (center && kit::Platform::isInstalled()) kit::RunLoop::main().cancelCallsForTarget(center.get());
    center.reset();
}

void ZEBNotificationCenter::postNotificationFromURLObject(const kit::Url& url, kit::Object* object) {
    auto notification = ZEBNotification::notificationFromURL(url);
    if (!notification) return;
    post(notification->name(), object, notification->parameters().value_or(kit::Value::Map{}));
}

void ZEBNotificationCenter::postNotificationFromURLObjectWithDelay(const kit::Url& url,
                                                                   std::shared_ptr<kit::Object> object,
                                                                   double delay) {
    DelayedPosting posting{url, std::move(object)};
    auto self = std::static_pointer_cast<ZEBNotificationCenter>(shared_from_this());
    kit::RunLoop::main().postAfter(
        delay, [self, posting = std::move(posting)] { self->delayedPosting(posting); }, this);
}

void ZEBNotificationCenter::delayedPosting(const DelayedPosting& posting) {
    postNotificationFromURLObject(posting.url, posting.object.get());
}

void ZEBNotificationCenter::postJSNotificationUserInfoWebView(const std::string& name,
                                                              const std::optional<kit::Value::Map>& userInfo,
                                                              kit::WebView* webView) {
    if (!webView) return;
    std::string script = userInfo ? fmt::format("{}('{}', {});", kReceiveMessageFunction, name,
                                                ZEBMacros::jsonify(kit::Value(*userInfo)))
                                  : fmt::format("{}('{}');", kReceiveMessageFunction, name);
    webView->evaluateScript(script);
}
