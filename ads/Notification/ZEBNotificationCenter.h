#pragma once

#include "kit/CallGroup.h"
#include "kit/NotificationCenter.h"
#include "kit/Url.h"
#include "kit/Value.h"

#include <memory>
#include <optional>
#include <string>

namespace kit {
class WebView;
}

// The center the bridge posts creatives' commands on, and the way messages go back to a creative
// (its function QUOR_ReceiveMessage).
class ZEBNotificationCenter : public kit::NotificationCenter {
public:
    // What a delayed posting carries; the object is kept until the posting runs.
    struct DelayedPosting {
        kit::Url url;
        std::shared_ptr<kit::Object> object;
    };

    ZEBNotificationCenter();
    ~ZEBNotificationCenter() override;

    // The process-wide center of the ad client, made on first use; lives as long as the platform.
    static ZEBNotificationCenter& defaultCenter();

    // Posts the URL's command under its name, with its parameters as user info; nothing for a URL
    // that is no command.
    void postNotificationFromURLObject(const kit::Url& url, kit::Object* object);
    // The same, `delay` seconds later on the run loop.
    void postNotificationFromURLObjectWithDelay(const kit::Url& url, std::shared_ptr<kit::Object> object,
                                                double delay);
    void delayedPosting(const DelayedPosting& posting);

    // Evaluates QUOR_ReceiveMessage('name') or QUOR_ReceiveMessage('name', {json}) in the web view;
    // the result is ignored. The name goes between the quotes as it is.
    void postJSNotificationUserInfoWebView(const std::string& name,
                                           const std::optional<kit::Value::Map>& userInfo,
                                           kit::WebView* webView);

private:
    kit::CallGroup delayedPostings_;
};
