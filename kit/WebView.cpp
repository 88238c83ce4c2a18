#include "kit/WebView.h"

#include "kit/port/Platform.h"
#include "kit/port/WebPage.h"

#include <utility>

namespace kit {

WebView::WebView(Rect frame) : View(frame), page_(Platform::current().createWebPage(*this)) {}

WebView::~WebView() {
    // The peer shows the page: it goes first.
    detachPeers(*this);
    page_.reset();
}

void WebView::loadHtmlString(const std::string& html, const std::optional<Url>& baseUrl) {
    if (page_) page_->loadHtmlString(html, baseUrl);
}

void WebView::loadRequest(const Url& url) {
    if (page_) page_->loadRequest(url);
}

void WebView::goBack() {
    if (page_ && page_->canGoBack()) page_->goBack();
}

void WebView::goForward() {
    if (page_ && page_->canGoForward()) page_->goForward();
}

void WebView::reload() {
    if (page_) page_->reload();
}

void WebView::stopLoading() {
    if (page_) page_->stopLoading();
    loading_ = false;
}

bool WebView::canGoBack() const {
    return page_ && page_->canGoBack();
}

bool WebView::canGoForward() const {
    return page_ && page_->canGoForward();
}

void WebView::evaluateScript(const std::string& script, std::function<void(std::string)> completion) {
    if (!page_) return;
    // Scripts still running in the engine may answer after the view is gone.
    page_->evaluateScript(script,
                          [alive = weak_from_this(), completion = std::move(completion)](std::string result) {
                              if (completion && !alive.expired()) completion(std::move(result));
                          });
}

void WebView::setScalesPageToFit(bool scales) {
    scalesPageToFit_ = scales;
    settingsChanged();
}

void WebView::setDataDetectorTypes(uint32_t types) {
    dataDetectorTypes_ = types;
    settingsChanged();
}

void WebView::setAllowsInlineMediaPlayback(bool allows) {
    allowsInlineMediaPlayback_ = allows;
    settingsChanged();
}

void WebView::setMediaPlaybackRequiresUserAction(bool required) {
    mediaPlaybackRequiresUserAction_ = required;
    settingsChanged();
}

void WebView::settingsChanged() {
    if (page_) page_->settingsDidChange();
}

// The delegate may let go of this view from any of its calls: it lives to the end of each.
bool WebView::pageShouldStartLoad(const PortKey&, const Url& url, WebViewNavigationType type) {
    auto self = retained(this);
    auto delegate = delegate_.lock();
    return !delegate || delegate->webViewShouldStartLoadWithRequestNavigationType(*this, url, type);
}

void WebView::pageDidStartLoad(const PortKey&, const Url& url) {
    auto self = retained(this);
    request_ = url;
    loading_ = true;
    if (auto delegate = delegate_.lock()) delegate->webViewDidStartLoad(*this);
}

void WebView::pageDidFinishLoad(const PortKey&, const std::optional<Url>& url) {
    auto self = retained(this);
    if (url) request_ = url;
    loading_ = false;
    if (auto delegate = delegate_.lock()) delegate->webViewDidFinishLoad(*this);
}

void WebView::pageDidFailLoad(const PortKey&, std::shared_ptr<const Error> error) {
    auto self = retained(this);
    loading_ = false;
    if (auto delegate = delegate_.lock()) delegate->webViewDidFailLoadWithError(*this, std::move(error));
}

}  // namespace kit
