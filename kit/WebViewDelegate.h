#pragma once

#include "kit/Error.h"
#include "kit/Object.h"
#include "kit/Url.h"

namespace kit {

class WebView;

// Why a web view is about to load something. The numbers are kept: delegates store and compare them.
enum class WebViewNavigationType : int {
    LinkClicked = 0,
    FormSubmitted = 1,
    BackForward = 2,
    Reload = 3,
    FormResubmitted = 4,
    Other = 5,
};

// What a web view asks and tells about the loads of its main frame. Every method is optional; the
// defaults let every navigation through and ignore the rest.
class WebViewDelegate : public Object {
public:
    ~WebViewDelegate() override;

    // Asked before each navigation, the web view's own loads included; false and nothing is loaded.
    virtual bool webViewShouldStartLoadWithRequestNavigationType(WebView& /*webView*/, const Url& /*request*/,
                                                                 WebViewNavigationType /*type*/) {
        return true;
    }
    virtual void webViewDidStartLoad(WebView& /*webView*/) {}
    virtual void webViewDidFinishLoad(WebView& /*webView*/) {}
    virtual void webViewDidFailLoadWithError(WebView& /*webView*/, std::shared_ptr<const Error> /*error*/) {}
};

}  // namespace kit
