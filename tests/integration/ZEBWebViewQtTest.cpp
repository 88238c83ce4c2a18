// The ad web view on the real engine: a person's click on the creative is told apart from the
// creative's own navigations.
#include "ads/View/ZEBWebView.h"
#include "kit/Window.h"
#include "tests/integration/support/WebTestSupport.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using kit::Url;

namespace {

// Loads the creative itself and refuses every other navigation, writing it down.
class ClickDelegate : public kit::WebViewDelegate {
public:
    bool webViewShouldStartLoadWithRequestNavigationType(kit::WebView& view, const Url& url,
                                                         kit::WebViewNavigationType type) override {
        if (url.absoluteString() == kBase) return true;
        asked.push_back({url.absoluteString(), int(type), static_cast<ZEBWebView&>(view).touched()});
        return false;
    }
    void webViewDidFinishLoad(kit::WebView&) override { ++finishes; }

    static constexpr const char* kBase = "http://127.0.0.1:9/creative/";
    struct Asked {
        std::string url;
        int type;
        bool touchedWhenAsked;
    };
    std::vector<Asked> asked;
    int finishes = 0;
};

}  // namespace

class ZEBWebViewQtTest : public qttest::QtPlatformTest {};

TEST_F(ZEBWebViewQtTest, AClickOnTheCreativeMarksTheViewTouchedBeforeTheNavigationIsAsked) {
    auto delegate = std::make_shared<ClickDelegate>();
    auto window = std::make_shared<kit::Window>(kit::Rect{0, 0, 480, 320});
    auto view = std::make_shared<ZEBWebView>(kit::Rect{80, 256, 320, 50});
    view->setDelegate(delegate);
    window->addSubview(view);
    window->makeKeyAndVisible();
    view->loadHtmlString(
        "<html><body style='margin:0'><a href='http://127.0.0.1:9/landing' "
        "style='display:block;width:100vw;height:100vh'>go</a></body></html>",
        Url::parse(ClickDelegate::kBase));
    ASSERT_TRUE(webtest::runUntil([&] { return delegate->finishes == 1; }));

    // The creative navigating by itself is no click.
    view->evaluateScript("location = 'http://127.0.0.1:9/auto'; 'ok'", [](std::string) {});
    ASSERT_TRUE(webtest::runUntil([&] { return delegate->asked.size() == 1; }));
    EXPECT_EQ(delegate->asked[0].type, 5);
    EXPECT_FALSE(delegate->asked[0].touchedWhenAsked);
    EXPECT_FALSE(view->touched());

    // The engine takes input once its first frame is drawn.
    webtest::runUntil([] { return false; }, 0.5);
    webtest::click(*window, 240, 280);
    ASSERT_TRUE(webtest::runUntil([&] { return delegate->asked.size() == 2; }));
    EXPECT_EQ(delegate->asked[1].url, "http://127.0.0.1:9/landing");
    EXPECT_EQ(delegate->asked[1].type, 0);
    EXPECT_TRUE(delegate->asked[1].touchedWhenAsked);
    EXPECT_TRUE(view->touched());
}
