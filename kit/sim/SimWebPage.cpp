#include "kit/sim/SimWebPage.h"

#include "kit/Error.h"
#include "kit/RunLoop.h"
#include "kit/WebView.h"
#include "kit/port/PortKey.h"

#include <cstdio>
#include <cstdlib>

namespace kit::sim {

SimWebPage::SimWebPage(WebView& view) : WebPage(view) {}

SimWebPage::~SimWebPage() = default;

SimWebPage& SimWebPage::of(WebView& view) {
    auto* page = dynamic_cast<SimWebPage*>(view.page(PortKey{}));
    if (!page) {
        std::fputs("kit: this web view has no simulated page\n", stderr);
        std::abort();
    }
    return *page;
}

bool SimWebPage::navigate(const Url& url, WebViewNavigationType type) {
    PortKey key;
    RunLoop::Turn turn(key);
    auto self = retained(&view());
    if (!view().pageShouldStartLoad(key, url, type)) return false;
    cancelPendingFinish();
    if (type != WebViewNavigationType::BackForward && type != WebViewNavigationType::Reload) {
        if (!history_.empty())
            history_.erase(history_.begin() + static_cast<ptrdiff_t>(index_) + 1, history_.end());
        history_.push_back(url);
        index_ = history_.size() - 1;
    }
    view().pageDidStartLoad(key, url);
    if (finishesLoads_) {
        pendingFinish_ = calls_.post([this] {
            pendingFinish_.reset();
            finish();
        });
    }
    return true;
}

void SimWebPage::finish() {
    PortKey key;
    RunLoop::Turn turn(key);
    cancelPendingFinish();
    if (view().isLoading()) view().pageDidFinishLoad(key, std::nullopt);
}

void SimWebPage::fail(int64_t code, std::string description) {
    PortKey key;
    RunLoop::Turn turn(key);
    cancelPendingFinish();
    if (!view().isLoading()) return;
    view().pageDidFailLoad(key, Error::make("WebViewErrorDomain", code,
                                            {{Error::kLocalizedDescriptionKey, std::move(description)}}));
}

void SimWebPage::loadHtmlString(const std::string& html, const std::optional<Url>& baseUrl) {
    load({html, baseUrl});
}

void SimWebPage::loadRequest(const Url& url) {
    load({std::nullopt, url});
}

void SimWebPage::load(Load request) {
    loads_.push_back(request);
    auto url = request.url ? *request.url : *Url::parse("about:blank");
    calls_.post([this, url] { navigate(url, WebViewNavigationType::Other); });
}

void SimWebPage::evaluateScript(const std::string& script, std::function<void(std::string)> completion) {
    scripts_.push_back(script);
    std::string result = answer_ ? answer_(script) : std::string();
    calls_.post([completion = std::move(completion), result = std::move(result)] { completion(result); });
}

void SimWebPage::moveInHistory(size_t index) {
    if (!navigate(history_[index], WebViewNavigationType::BackForward)) return;
    index_ = index;
}

void SimWebPage::goBack() {
    if (canGoBack()) moveInHistory(index_ - 1);
}

void SimWebPage::goForward() {
    if (canGoForward()) moveInHistory(index_ + 1);
}

void SimWebPage::reload() {
    if (!history_.empty()) navigate(history_[index_], WebViewNavigationType::Reload);
}

void SimWebPage::stopLoading() {
    cancelPendingFinish();
}

void SimWebPage::cancelPendingFinish() {
    if (pendingFinish_) calls_.cancel(*pendingFinish_);
    pendingFinish_.reset();
}

}  // namespace kit::sim
