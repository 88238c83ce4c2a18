#pragma once

#include "kit/CallGroup.h"
#include "kit/WebViewDelegate.h"
#include "kit/port/WebPage.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace kit::sim {

// A scripted page: nothing is rendered and no script runs. A test says what the page does
// (navigate, finish, fail, what each script answers) and reads what the view asked of it.
// The view's own loads are put to its delegate in a later turn, like a real engine's; a load that
// starts then stays loading until the test finishes or fails it (or, with finishesLoads, finishes
// by itself one turn later).
class SimWebPage : public WebPage {
public:
    struct Load {
        std::optional<std::string> html;  // for a page loaded from a string
        std::optional<Url> url;           // the base URL, or the request's URL
    };

    explicit SimWebPage(WebView& view);
    ~SimWebPage() override;

    // The sim page behind `view` (made by the simulated platform).
    static SimWebPage& of(WebView& view);

    // ---- What the page does
    // A navigation of the main frame, as the page's content would make it: the delegate is asked
    // and, when it agrees, the load starts. Returns the delegate's answer.
    bool navigate(const Url& url, WebViewNavigationType type);
    void finish();
    void fail(int64_t code = -1, std::string description = "The page could not be loaded");
    void setFinishesLoads(bool finishes) { finishesLoads_ = finishes; }
    // What a script evaluates to; unanswered scripts give "".
    void answerScripts(std::function<std::string(const std::string& script)> answer) {
        answer_ = std::move(answer);
    }

    // ---- What the view asked
    const std::vector<Load>& loads() const { return loads_; }
    // Every script evaluated, in order.
    const std::vector<std::string>& scripts() const { return scripts_; }
    // The main frame's history, oldest first.
    const std::vector<Url>& history() const { return history_; }

    // ---- WebPage
    void loadHtmlString(const std::string& html, const std::optional<Url>& baseUrl) override;
    void loadRequest(const Url& url) override;
    void evaluateScript(const std::string& script, std::function<void(std::string)> completion) override;
    void goBack() override;
    void goForward() override;
    void reload() override;
    void stopLoading() override;
    bool canGoBack() const override { return index_ > 0; }
    bool canGoForward() const override { return index_ + 1 < history_.size(); }

private:
    void load(Load load);
    void cancelPendingFinish();
    void moveInHistory(size_t index);

    std::vector<Load> loads_;
    std::vector<std::string> scripts_;
    std::vector<Url> history_;
    size_t index_ = 0;
    bool finishesLoads_ = false;
    std::function<std::string(const std::string&)> answer_;
    std::optional<CallGroup::CallId> pendingFinish_;
    CallGroup calls_;  // loads, finishes and script answers still to come
};

}  // namespace kit::sim
