// The kit web view on the real engine, offscreen.
#include "kit/WebView.h"
#include "kit/Window.h"
#include "tests/integration/support/LoopbackServer.h"
#include "tests/integration/support/WebTestSupport.h"

#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <vector>

using kit::Url;
using kit::WebView;
using kit::WebViewNavigationType;

namespace {

struct Navigation {
    std::string url;
    int type;
};

// Lets web pages load and refuses the rest, writing everything down.
class RecordingDelegate : public kit::WebViewDelegate {
public:
    bool webViewShouldStartLoadWithRequestNavigationType(WebView&, const Url& url,
                                                         WebViewNavigationType type) override {
        asked.push_back({url.absoluteString(), int(type)});
        return url.scheme() == "http" || url.scheme() == "about";
    }
    void webViewDidStartLoad(WebView&) override { ++starts; }
    void webViewDidFinishLoad(WebView&) override { ++finishes; }
    void webViewDidFailLoadWithError(WebView&, std::shared_ptr<const kit::Error>) override { ++failures; }

    std::vector<Navigation> asked;
    int starts = 0, finishes = 0, failures = 0;
};

// Counts the touches the model hit-tests onto the page.
class TouchCountingWebView : public WebView {
public:
    using WebView::WebView;
    std::shared_ptr<kit::View> hitTest(kit::Point point, const kit::Event* event) override {
        auto hit = WebView::hitTest(point, event);
        if (hit.get() == this && event && event->type == kit::EventType::Touches) ++touches;
        return hit;
    }
    int touches = 0;
};

}  // namespace

class WebViewQtTest : public qttest::QtPlatformTest {
protected:
    void SetUp() override {
        QtPlatformTest::SetUp();
        delegate = std::make_shared<RecordingDelegate>();
    }
    void TearDown() override {
        view.reset();
        window.reset();
        QtPlatformTest::TearDown();
    }
    // A web view filling the lower part of a window on screen.
    void showInWindow() {
        window = std::make_shared<kit::Window>(kit::Rect{0, 0, 480, 320});
        view = std::make_shared<TouchCountingWebView>(kit::Rect{0, 120, 480, 200});
        view->setDelegate(delegate);
        window->addSubview(view);
        window->makeKeyAndVisible();
    }
    std::string evaluate(const std::string& script) {
        std::optional<std::string> result;
        view->evaluateScript(script, [&](std::string r) { result = std::move(r); });
        EXPECT_TRUE(webtest::runUntil([&] { return result.has_value(); })) << script;
        return result.value_or("(no answer)");
    }

    std::shared_ptr<RecordingDelegate> delegate;
    std::shared_ptr<kit::Window> window;
    std::shared_ptr<TouchCountingWebView> view;
};

TEST_F(WebViewQtTest, ScriptResultsComeBackAsText) {
    view = std::make_shared<TouchCountingWebView>(kit::Rect{0, 0, 320, 50});
    view->loadHtmlString("<script>var answer = 'forty' + 2;</script>", Url::parse("http://127.0.0.1:9/"));
    ASSERT_TRUE(webtest::runUntil([&] { return view->request() && !view->isLoading(); }));
    EXPECT_EQ(evaluate("answer"), "forty2");
    EXPECT_EQ(evaluate("6 * 7"), "42");
    EXPECT_EQ(evaluate("1 / 4"), "0.25");
    EXPECT_EQ(evaluate("1 < 2"), "true");
    EXPECT_EQ(evaluate("({a: 1})"), "");
    EXPECT_EQ(evaluate("undefinedName.x"), "") << "a thrown exception has no text";
}

TEST_F(WebViewQtTest, AStringPageFetchesFromItsBaseUrlOnALoopbackServer) {
    qttest::LoopbackServer server;
    std::atomic<int> fetched{0};
    server.server().Get("/creative/bridge.js", [&](const httplib::Request&, httplib::Response& response) {
        ++fetched;
        response.set_content("document.title = 'served ' + location.pathname;", "application/javascript");
    });
    view = std::make_shared<TouchCountingWebView>(kit::Rect{0, 0, 320, 50});
    view->setDelegate(delegate);
    view->loadHtmlString("<html><head><script src=\"bridge.js\"></script></head><body></body></html>",
                         Url::parse(server.url("/creative/")));
    ASSERT_TRUE(webtest::runUntil([&] { return delegate->finishes + delegate->failures > 0; }));
    EXPECT_EQ(delegate->failures, 0);
    EXPECT_EQ(fetched.load(), 1);
    EXPECT_EQ(evaluate("document.title"), "served /creative/");
    EXPECT_EQ(view->request()->absoluteString(), server.url("/creative/"));
}

TEST_F(WebViewQtTest, AClickOnALinkIsALinkClickThatTheViewSees) {
    showInWindow();
    view->loadHtmlString(
        "<html><body style='margin:0'><a href='http://127.0.0.1:9/landing' "
        "style='display:block;width:100vw;height:100vh'>go</a></body></html>",
        Url::parse("http://127.0.0.1:9/ad/"));
    ASSERT_TRUE(webtest::runUntil([&] { return delegate->finishes == 1; }));
    // The engine takes input once its first frame is drawn.
    webtest::runUntil([] { return false; }, 0.5);
    webtest::click(*window, 200, 220);
    ASSERT_TRUE(webtest::runUntil([&] { return delegate->asked.size() >= 2; }));
    EXPECT_EQ(delegate->asked[1].url, "http://127.0.0.1:9/landing");
    EXPECT_EQ(delegate->asked[1].type, 0);
    EXPECT_EQ(view->touches, 1);

    // A press outside the page is not the page's.
    webtest::click(*window, 200, 40);
    EXPECT_EQ(view->touches, 1);
}
