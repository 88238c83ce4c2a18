// The web view's own logic; what a page does on each port is the WebPage contract's.
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

class RecordingDelegate : public kit::WebViewDelegate {
public:
    void webViewDidStartLoad(WebView& view) override {
        calls.push_back(std::string("start") + (view.isLoading() ? " loading" : ""));
    }
    void webViewDidFinishLoad(WebView& view) override {
        calls.push_back(std::string("finish") + (view.isLoading() ? " loading" : ""));
    }
    void webViewDidFailLoadWithError(WebView&, std::shared_ptr<const kit::Error> error) override {
        calls.push_back("fail " + std::to_string(error->code()));
    }
    std::vector<std::string> calls;
};

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

TEST_F(WebViewTest, LoadingLastsFromStartToTheFirstEndAndOnlyThatEndIsTold) {
    view->loadRequest(*Url::parse("https://ads.example/a"));
    runUntilIdle();
    EXPECT_TRUE(view->isLoading());
    page().fail(-1009);
    page().fail(-1);
    page().finish();
    EXPECT_EQ(delegate->calls, (std::vector<std::string>{"start loading", "fail -1009"}));
    EXPECT_FALSE(view->isLoading());
    EXPECT_EQ(view->request()->absoluteString(), "https://ads.example/a");
}

TEST_F(WebViewTest, WithoutADelegateEveryNavigationGoesAhead) {
    delegate.reset();
    view->loadRequest(*Url::parse("vmsg://x/y"));
    runUntilIdle();
    EXPECT_TRUE(view->isLoading());
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
    window->touchDown(kPort, {10, 10});
    EXPECT_EQ(watching->touches, 0);
    window->touchDown(kPort, {100, 290});
    window->touchUp(kPort, {100, 290});
    EXPECT_EQ(watching->touches, 1);
}
