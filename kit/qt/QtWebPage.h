#pragma once

#include "kit/WebViewDelegate.h"
#include "kit/port/WebPage.h"

#include <QUrl>
#include <QWebEnginePage>

#include <optional>
#include <string>

class QWebEngineLoadingInfo;

namespace kit::qt {

// A web view's page on the real web engine. It loads and runs whether or not its view is on
// screen (QtWebViewPeer shows it). Every main-frame navigation is put to the view's delegate, and a
// refused one leaves no trace: no start, no failure, the page stays as it was.
class QtWebPage : public QWebEnginePage, public WebPage {
public:
    explicit QtWebPage(WebView& view);
    ~QtWebPage() override;

    // The ad client's private schemes reach the delegate as navigations and are never loaded. Also
    // turns the engine's sandbox off when running as root, where it cannot start. Must run before
    // the engine starts (best before the QApplication); later calls do nothing.
    static void prepareEngine();

    // The user pressed on the page: the link navigation that follows is theirs.
    void userDidTouch();

    void loadHtmlString(const std::string& html, const std::optional<Url>& baseUrl) override;
    void loadRequest(const Url& url) override;
    void evaluateScript(const std::string& script, std::function<void(std::string)> completion) override;
    void goBack() override;
    void goForward() override;
    void reload() override;
    void stopLoading() override;
    bool canGoBack() const override;
    bool canGoForward() const override;
    void settingsDidChange() override;

protected:
    bool acceptNavigationRequest(const QUrl& url, NavigationType type, bool isMainFrame) override;

private:
    void loadingDidChange(const QWebEngineLoadingInfo& info);
    void fitContents(const QSizeF& size);
    void rendererDidEnd(RenderProcessTerminationStatus status, int exitCode);
    WebViewNavigationType navigationType(NavigationType type) const;
    // What the view is told for an engine URL: a string page is at its base URL.
    std::optional<Url> viewUrl(const QUrl& url) const;

    // While a page loaded from a string is current: its base URL, "about:blank" without one.
    std::optional<QUrl> htmlBaseUrl_;
    bool htmlLoadPending_ = false;
    // The main-frame load the delegate agreed to; loads the engine starts for refused navigations
    // are not reported.
    std::optional<QUrl> acceptedUrl_;
    bool reporting_ = false;
    double lastTouch_ = -1;
};

}  // namespace kit::qt
