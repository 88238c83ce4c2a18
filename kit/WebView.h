#pragma once

#include "kit/Error.h"
#include "kit/Url.h"
#include "kit/View.h"
#include "kit/WebViewDelegate.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace kit {

class PortKey;
class WebPage;

// What a web view turns into links by itself. Bits may be combined.
namespace DataDetectorTypes {
constexpr uint32_t None = 0;
constexpr uint32_t PhoneNumber = 1 << 0;
constexpr uint32_t Link = 1 << 1;
constexpr uint32_t Address = 1 << 2;
constexpr uint32_t CalendarEvent = 1 << 3;
constexpr uint32_t All = 0xffffffff;
}  // namespace DataDetectorTypes

// A view that shows web pages. The page lives in the platform's WebPage, made with the view, so it
// loads and runs scripts off screen too. Every navigation of the main frame is first put to the
// delegate; loads start, finish and fail asynchronously, on the run loop.
//
// Touches: every touch that lands on the page is hit-tested on the model with a touches event
// before the page sees it, so a subclass watches touches by overriding hitTest().
class WebView : public View {
public:
    explicit WebView(Rect frame = {});
    ~WebView() override;

    // Not retained.
    std::shared_ptr<WebViewDelegate> delegate() const { return delegate_.lock(); }
    void setDelegate(const std::shared_ptr<WebViewDelegate>& delegate) { delegate_ = delegate; }

    // ---- Loading
    // The delegate is asked about `baseUrl` (or "about:blank"), as a navigation of type other.
    void loadHtmlString(const std::string& html, const std::optional<Url>& baseUrl);
    void loadRequest(const Url& url);
    void goBack();
    void goForward();
    void reload();
    void stopLoading();
    bool canGoBack() const;
    bool canGoForward() const;
    // From the start of a main-frame load to its end or failure.
    bool isLoading() const { return loading_; }
    // The main frame's URL: for a page loaded from a string, its base URL. None before any load.
    const std::optional<Url>& request() const { return request_; }

    // Runs `script` in the page; `completion` gets the result as text in a later turn of the run
    // loop ("" when it has none). It is not called once the web view is gone.
    void evaluateScript(const std::string& script, std::function<void(std::string)> completion = {});

    // ---- Settings
    bool scalesPageToFit() const { return scalesPageToFit_; }
    void setScalesPageToFit(bool scales);
    uint32_t dataDetectorTypes() const { return dataDetectorTypes_; }
    void setDataDetectorTypes(uint32_t types);
    bool allowsInlineMediaPlayback() const { return allowsInlineMediaPlayback_; }
    void setAllowsInlineMediaPlayback(bool allows);
    bool mediaPlaybackRequiresUserAction() const { return mediaPlaybackRequiresUserAction_; }
    void setMediaPlaybackRequiresUserAction(bool required);

    // ---- For ports: the page reports here, each call in a turn of the run loop.
    WebPage* page(const PortKey&) const { return page_.get(); }
    // Asks the delegate; true when the navigation may go on.
    bool pageShouldStartLoad(const PortKey&, const Url& url, WebViewNavigationType type);
    void pageDidStartLoad(const PortKey&, const Url& url);
    // `url` is where the main frame ended up (after redirects), when the engine knows it.
    void pageDidFinishLoad(const PortKey&, const std::optional<Url>& url);
    void pageDidFailLoad(const PortKey&, std::shared_ptr<const Error> error);

private:
    void settingsChanged();

    std::weak_ptr<WebViewDelegate> delegate_;
    std::unique_ptr<WebPage> page_;
    std::optional<Url> request_;
    bool loading_ = false;
    bool scalesPageToFit_ = false;
    uint32_t dataDetectorTypes_ = DataDetectorTypes::PhoneNumber;
    bool allowsInlineMediaPlayback_ = false;
    bool mediaPlaybackRequiresUserAction_ = true;
};

}  // namespace kit
