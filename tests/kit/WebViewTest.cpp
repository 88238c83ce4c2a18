#include "kit/WebView.h"
#include "kit/Window.h"
#include "kit/sim/SimWebPage.h"
#include "tests/support/SimTest.h"

#include <string>
#include <vector>

using kit::Url;
using kit::WebView;
using kit::WebViewNavigationType;
using kit::sim::SimWebPage;

namespace {

// Writes down every call, and refuses URLs of the scheme it is told to.
class RecordingDelegate : public kit::WebViewDelegate {
public:
    bool webViewShouldStartLoadWithRequestNavigationType(WebView&, const Url& url,
                                                         WebViewNavigationType type) override {
        calls.push_back("should " + url.absoluteString() + " " + std::to_string(int(type)));
        return url.scheme() != refusedScheme;
    }
    void webViewDidStartLoad(WebView& view) override {
        calls.push_back(std::string("start") + (view.isLoading() ? " loading" : ""));
    }
    void webViewDidFinishLoad(WebView& view) override {
        calls.push_back(std::string("finish") + (view.isLoading() ? " loading" : ""));
    }
    void webViewDidFailLoadWithError(WebView&, const kit::Error& error) override {
        calls.push_back("fail " + std::to_string(error.code()));
    }

    std::string refusedScheme = "vmsg";
    std::vector<std::string> calls;
};

Url url(const char* text) {
    return *Url::parse(text);
}

}  // namespace

class WebViewTest : public SimTest {
protected:
    void SetUp() override {
        SimTest::SetUp();
        view = std::make_shared<WebView>(kit::Rect{0, 0, 320, 50});
        delegate = std::make_shared<RecordingDelegate>();
        view->setDelegate(delegate);
    }
    SimWebPage& page() { return SimWebPage::of(*view); }

    std::shared_ptr<WebView> view;
    std::shared_ptr<RecordingDelegate> delegate;
};

TEST_F(WebViewTest, AStringPageIsANavigationToItsBaseUrlInALaterTurn) {
    view->loadHtmlString("<p>ad</p>", url("http://ads.example/page"));
    EXPECT_TRUE(delegate->calls.empty()) << "nothing is asked inside the load call";
    runUntilIdle();
    EXPECT_EQ(delegate->calls,
              (std::vector<std::string>{"should http://ads.example/page 5", "start loading"}));
    EXPECT_TRUE(view->isLoading());
    EXPECT_EQ(view->request()->absoluteString(), "http://ads.example/page");
    ASSERT_EQ(page().loads().size(), 1u);
    EXPECT_EQ(page().loads()[0].html, "<p>ad</p>");

    page().finish();
    EXPECT_EQ(delegate->calls.back(), "finish");
    EXPECT_FALSE(view->isLoading());

    view->loadHtmlString("", std::nullopt);
    runUntilIdle();
    EXPECT_EQ(delegate->calls[3], "should about:blank 5");
}

TEST_F(WebViewTest, ARefusedNavigationLoadsNothingAndKeepsThePage) {
    page().setFinishesLoads(true);
    view->loadRequest(url("https://ads.example/a"));
    runUntilIdle();
    ASSERT_FALSE(view->isLoading());
    EXPECT_FALSE(page().navigate(url("vmsg://x/open?u=1"), WebViewNavigationType::LinkClicked));
    EXPECT_EQ(delegate->calls.back(), "should vmsg://x/open?u=1 0");
    EXPECT_FALSE(view->isLoading());
    EXPECT_EQ(view->request()->absoluteString(), "https://ads.example/a");
    EXPECT_FALSE(view->canGoBack());
}

TEST_F(WebViewTest, FailuresAreToldOnlyWhileLoading) {
    view->loadRequest(url("https://ads.example/a"));
    runUntilIdle();
    page().fail(-1009);
    EXPECT_EQ(delegate->calls.back(), "fail -1009");
    EXPECT_FALSE(view->isLoading());
    page().fail(-1);
    page().finish();
    EXPECT_EQ(delegate->calls.back(), "fail -1009");
}

TEST_F(WebViewTest, HistoryMovesAreBackForwardAndReloadsAreReloads) {
    page().setFinishesLoads(true);
    view->loadRequest(url("https://a.example/1"));
    runUntilIdle();
    page().navigate(url("https://a.example/2"), WebViewNavigationType::LinkClicked);
    runUntilIdle();
    ASSERT_TRUE(view->canGoBack());
    EXPECT_FALSE(view->canGoForward());

    delegate->calls.clear();
    view->goBack();
    runUntilIdle();
    EXPECT_EQ(delegate->calls[0], "should https://a.example/1 2");
    EXPECT_EQ(view->request()->absoluteString(), "https://a.example/1");
    EXPECT_TRUE(view->canGoForward());

    view->reload();
    EXPECT_EQ(delegate->calls[3], "should https://a.example/1 3");

    // A new navigation from the middle of the history drops what lay ahead.
    page().navigate(url("https://a.example/3"), WebViewNavigationType::FormSubmitted);
    EXPECT_FALSE(view->canGoForward());
    EXPECT_EQ(page().history().size(), 2u);
}

TEST_F(WebViewTest, ScriptResultsArriveLaterAndNotAfterTheViewIsGone) {
    page().answerScripts([](const std::string& script) { return script == "1+1" ? "2" : ""; });
    std::vector<std::string> results;
    view->evaluateScript("1+1", [&](std::string r) { results.push_back(r); });
    view->evaluateScript("undefined", [&](std::string r) { results.push_back("[" + r + "]"); });
    EXPECT_TRUE(results.empty());
    runUntilIdle();
    EXPECT_EQ(results, (std::vector<std::string>{"2", "[]"}));
    EXPECT_EQ(page().scripts(), (std::vector<std::string>{"1+1", "undefined"}));

    view->evaluateScript("1+1", [&](std::string r) { results.push_back(r); });
    view.reset();
    runUntilIdle();
    EXPECT_EQ(results.size(), 2u);
}

TEST_F(WebViewTest, AGoneDelegateIsSkipped) {
    delegate.reset();
    view->loadRequest(url("vmsg://x/y"));
    runUntilIdle();
    EXPECT_TRUE(view->isLoading()) << "with no delegate every navigation goes ahead";
}

TEST_F(WebViewTest, TouchesOnThePageAreHitTestedOnTheView) {
    struct Watching : WebView {
        using WebView::WebView;
        std::shared_ptr<kit::View> hitTest(kit::Point p, const kit::Event* event) override {
            auto hit = WebView::hitTest(p, event);
            if (hit.get() == this && event && event->type == kit::EventType::Touches) ++touches;
            return hit;
        }
        int touches = 0;
    };
    auto window = std::make_shared<kit::Window>(kit::Rect{0, 0, 480, 320});
    auto watching = std::make_shared<Watching>(kit::Rect{0, 270, 320, 50});
    window->addSubview(watching);
    window->touchDown({10, 10});
    EXPECT_EQ(watching->touches, 0);
    window->touchDown({100, 290});
    window->touchUp({100, 290});
    EXPECT_EQ(watching->touches, 1);
}
