#pragma once

#include "kit/Url.h"

#include <functional>
#include <optional>
#include <string>

namespace kit {

class WebView;

// The engine behind one WebView, made by the platform with the view (Platform::createWebPage). A
// page loads and runs whether or not its view is on screen; a peer only shows it. The page reports
// back through the WebView's port entry points (pageShouldStartLoad and the rest), each from a turn
// of the run loop, never from inside the call that started the load.
class WebPage {
public:
    explicit WebPage(WebView& view) : view_(view) {}
    virtual ~WebPage();
    WebPage(const WebPage&) = delete;
    WebPage& operator=(const WebPage&) = delete;

    // Shows `html` as if it had been loaded from `baseUrl` (relative links and the page's origin
    // follow it); without one the page is "about:blank".
    virtual void loadHtmlString(const std::string& html, const std::optional<Url>& baseUrl) = 0;
    virtual void loadRequest(const Url& url) = 0;
    // Runs `script` in the main frame; `completion` gets the result as text in a later turn ("" for
    // what has no text: undefined, null, objects, a thrown exception).
    virtual void evaluateScript(const std::string& script, std::function<void(std::string)> completion) = 0;

    virtual void goBack() = 0;
    virtual void goForward() = 0;
    virtual void reload() = 0;
    virtual void stopLoading() = 0;
    virtual bool canGoBack() const = 0;
    virtual bool canGoForward() const = 0;

    // The view's settings changed (WebView::setScalesPageToFit and the rest).
    virtual void settingsDidChange() {}

protected:
    WebView& view() const { return view_; }

private:
    WebView& view_;
};

}  // namespace kit
