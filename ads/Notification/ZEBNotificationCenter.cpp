#include "ads/Notification/ZEBNotificationCenter.h"

#include "ads/Notification/ZEBNotification.h"
#include "ads/Utility/ZEBMacros.h"
#include "kit/SharedInstances.h"
#include "kit/WebView.h"

#include <fmt/format.h>

namespace {
constexpr const char* kReceiveMessageFunction = "QUOR_ReceiveMessage";
}  // namespace

ZEBNotificationCenter::ZEBNotificationCenter() = default;
ZEBNotificationCenter::~ZEBNotificationCenter() = default;

ZEBNotificationCenter& ZEBNotificationCenter::defaultCenter() {
    return kit::shared<ZEBNotificationCenter>();
}

void ZEBNotificationCenter::postNotificationFromURLObject(const kit::Url& url, kit::Object* object) {
    auto notification = ZEBNotification::notificationFromURL(url);
    if (!notification) return;
    post(notification->name(), object, notification->parameters().value_or(kit::Value::Map{}));
}

void ZEBNotificationCenter::postNotificationFromURLObjectWithDelay(const kit::Url& url,
                                                                   std::shared_ptr<kit::Object> object,
                                                                   double delay) {
    delayedPostings_.postAfter(delay, [this, posting = DelayedPosting{url, std::move(object)}] {
        auto self = retained(this);  // an observer may be the last to hold this center
        delayedPosting(posting);
    });
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
