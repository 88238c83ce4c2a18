#pragma once

// What every port's WebPage promises (kit/port/WebPage.h), written once and run on each port: the
// page works whether or not its view is on screen, and reports to the view (and so to the
// delegate) in later turns of the run loop.
#include "kit/WebView.h"
#include "tests/kit/port/PortFixture.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace contract {

// Writes down every call; lets web pages through and refuses the rest.
class RecordingWebDelegate : public kit::WebViewDelegate {
public:
    std::vector<std::string> calls;

    bool webViewShouldStartLoadWithRequestNavigationType(kit::WebView&, const kit::Url& url,
                                                         kit::WebViewNavigationType type) override {
        calls.push_back("ask " + url.absoluteString() + " " + std::to_string(int(type)));
        return url.scheme() == "http" || url.scheme() == "about";
    }
    void webViewDidStartLoad(kit::WebView&) override { calls.push_back("start"); }
    void webViewDidFinishLoad(kit::WebView&) override { calls.push_back("finish"); }
    void webViewDidFailLoadWithError(kit::WebView&, std::shared_ptr<const kit::Error>) override {
        calls.push_back("fail");
    }
    size_t count(const std::string& call) const { return std::count(calls.begin(), calls.end(), call); }
};

template <class Port>
class WebPageContract : public ::testing::Test {
protected:
    void SetUp() override {
        port.setUp();
        view = std::make_shared<kit::WebView>(kit::Rect{0, 0, 320, 50});  // never on screen
        view->setDelegate(delegate);
    }
    void TearDown() override {
        view.reset();
        port.tearDown();
    }
    void waitForLoads(size_t finished) {
        ASSERT_TRUE(
            port.runUntil([&] { return delegate->count("finish") >= finished && !view->isLoading(); }, 20))
            << "the page did not finish loading";
    }
    static std::string other() { return std::to_string(int(kit::WebViewNavigationType::Other)); }

    Port port;
    std::shared_ptr<RecordingWebDelegate> delegate = std::make_shared<RecordingWebDelegate>();
    std::shared_ptr<kit::WebView> view;
};

TYPED_TEST_SUITE_P(WebPageContract);

TYPED_TEST_P(WebPageContract, AStringPageIsALoadOfItsBaseUrlReportedInLaterTurns) {
    std::string base = this->port.serve("/creative/", Reply{});
    this->view->loadHtmlString("<p>ad</p>", kit::Url::parse(base));
    EXPECT_TRUE(this->delegate->calls.empty()) << "nothing is reported inside the load call";
    this->waitForLoads(1);
    EXPECT_EQ(this->delegate->calls,
              (std::vector<std::string>{"ask " + base + " " + this->other(), "start", "finish"}));
    EXPECT_EQ(this->view->request()->absoluteString(), base);

    this->view->loadHtmlString("<p>no base</p>", std::nullopt);
    this->waitForLoads(2);
    EXPECT_EQ(this->delegate->calls[3], "ask about:blank " + this->other());
}

TYPED_TEST_P(WebPageContract, ARefusedNavigationLeavesNoTraceAndThePageAsItWas) {
    std::string base = this->port.serve("/creative/", Reply{});
    this->view->loadHtmlString("<p>ad</p>", kit::Url::parse(base));
    this->waitForLoads(1);
    this->port.navigateFromContent(*this->view, "vmsg://x/log?m=hello");
    ASSERT_TRUE(this->port.runUntil([&] { return this->delegate->calls.size() == 4; }, 20));
    this->port.settle();
    EXPECT_EQ(this->delegate->calls.back(), "ask vmsg://x/log?m=hello " + this->other());
    EXPECT_EQ(this->delegate->count("start"), 1u);
    EXPECT_EQ(this->delegate->count("fail"), 0u);
    EXPECT_FALSE(this->view->isLoading());
    EXPECT_EQ(this->view->request()->absoluteString(), base);
}

TYPED_TEST_P(WebPageContract, ScriptResultsArriveLaterAsTextAndNeverAfterTheViewIsGone) {
    this->view->loadHtmlString("<p>ad</p>", kit::Url::parse(this->port.serve("/creative/", Reply{})));
    this->waitForLoads(1);
    this->port.answerScripts(*this->view, {{"String(6 * 7)", "42"}, {"void 0", ""}, {"({a: 1})", ""}});
    std::vector<std::string> results;
    for (const char* script : {"String(6 * 7)", "void 0", "({a: 1})"})
        this->view->evaluateScript(script, [&](std::string r) { results.push_back("[" + r + "]"); });
    EXPECT_TRUE(results.empty()) << "never inside the call";
    ASSERT_TRUE(this->port.runUntil([&] { return results.size() == 3; }, 20));
    EXPECT_EQ(results, (std::vector<std::string>{"[42]", "[]", "[]"}));

    this->view->evaluateScript("String(6 * 7)", [&](std::string r) { results.push_back(r); });
    this->view.reset();
    this->port.settle();
    EXPECT_EQ(results.size(), 3u);
}

TYPED_TEST_P(WebPageContract, HistoryGoesBackAndForwardAsBackForwardNavigations) {
    std::string one = this->port.serve("/one", Reply{200, {{"Content-Type", "text/html"}}, {"<p>one</p>"}});
    std::string two = this->port.serve("/two", Reply{200, {{"Content-Type", "text/html"}}, {"<p>two</p>"}});
    this->view->loadRequest(*kit::Url::parse(one));
    this->waitForLoads(1);
    this->view->loadRequest(*kit::Url::parse(two));
    this->waitForLoads(2);
    ASSERT_TRUE(this->view->canGoBack());
    EXPECT_FALSE(this->view->canGoForward());
    this->view->goBack();
    this->waitForLoads(3);
    EXPECT_EQ(this->delegate->calls[6],
              "ask " + one + " " + std::to_string(int(kit::WebViewNavigationType::BackForward)));
    EXPECT_EQ(this->view->request()->absoluteString(), one);
    EXPECT_TRUE(this->view->canGoForward());
}

REGISTER_TYPED_TEST_SUITE_P(WebPageContract, AStringPageIsALoadOfItsBaseUrlReportedInLaterTurns,
                            ARefusedNavigationLeavesNoTraceAndThePageAsItWas,
                            ScriptResultsArriveLaterAsTextAndNeverAfterTheViewIsGone,
                            HistoryGoesBackAndForwardAsBackForwardNavigations);

}  // namespace contract
