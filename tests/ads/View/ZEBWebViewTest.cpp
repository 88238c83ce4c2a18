#include "ads/View/ZEBWebView.h"

#include "ads/Notification/ZEBNotificationCenter.h"
#include "ads/Request/ZEBRequest.h"
#include "ads/Utility/ZEBIdentifierUtilities.h"
#include "ads/Utility/ZEBPrivateUtilities.h"
#include "kit/Window.h"
#include "kit/sim/SimWebPage.h"
#include "tests/support/AdContextTest.h"

using kit::sim::SimWebPage;

class ZEBWebViewTest : public AdContextTest {
protected:
    void SetUp() override {
        AdContextTest::SetUp();
        view = std::make_shared<ZEBWebView>(kit::Rect{0, 270, 320, 50});
    }
    void TearDown() override {
        view.reset();
        AdContextTest::TearDown();
    }
    const std::vector<std::string>& scripts() { return SimWebPage::of(*view).scripts(); }

    std::shared_ptr<ZEBWebView> view;
};

TEST_F(ZEBWebViewTest, StartsInTheAdLookWithItsStateInThePrivateTable) {
    EXPECT_TRUE(view->clipsToBounds());
    EXPECT_TRUE(view->scalesPageToFit());
    EXPECT_EQ(view->autoresizingMask(), 18u);
    EXPECT_FALSE(view->isOpaque());
    EXPECT_EQ(view->backgroundColor(), kit::Color::clear());
    EXPECT_EQ(view->dataDetectorTypes(), kit::DataDetectorTypes::None);
    EXPECT_TRUE(view->allowsInlineMediaPlayback());
    EXPECT_FALSE(view->mediaPlaybackRequiresUserAction());

    ASSERT_TRUE(view->vars());
    EXPECT_EQ(view->vars(), ZEBPrivateUtilities::privateObjectForKey(view.get()));
    size_t entries = ZEBPrivateUtilities::count();
    view.reset();
    EXPECT_EQ(ZEBPrivateUtilities::count(), entries - 1);
}

TEST_F(ZEBWebViewTest, ATouchOnTheViewMarksItTouched) {
    auto window = std::make_shared<kit::Window>(kit::Rect{0, 0, 480, 320});
    window->addSubview(view);
    EXPECT_FALSE(view->touched());
    kit::Event motion{kit::EventType::Motion, 0};
    view->hitTest({10, 10}, &motion);
    view->hitTest({10, 10}, nullptr);
    EXPECT_FALSE(view->touched()) << "only touches count";
    window->touchDown(kPort, {100, 290});
    window->touchUp(kPort, {100, 290});
    EXPECT_TRUE(view->touched());
}

TEST_F(ZEBWebViewTest, RestoreStatePutsFrameSuperviewAndDelegateBack) {
    auto banner = std::make_shared<kit::View>(kit::Rect{0, 270, 320, 50});
    view->setFrame({0, 0, 320, 50});
    banner->addSubview(view);
    auto delegate = std::make_shared<kit::WebViewDelegate>();
    view->setDelegate(delegate);

    view->restoreState();
    EXPECT_EQ(view->superview(), banner) << "nothing saved: nothing to restore";

    view->saveState();
    std::weak_ptr<kit::WebViewDelegate> weakDelegate = delegate;
    delegate.reset();
    EXPECT_FALSE(weakDelegate.expired()) << "the saved delegate is held";

    // Lent to a full-screen screen.
    auto screen = std::make_shared<kit::View>(kit::Rect{0, 0, 480, 320});
    screen->addSubview(view);
    view->setFrame({0, 0, 480, 320});
    view->setDelegate(nullptr);

    view->restoreState();
    EXPECT_EQ(view->superview(), banner);
    EXPECT_TRUE(screen->subviews().empty());
    EXPECT_EQ(view->frame(), (kit::Rect{0, 0, 320, 50}));
    EXPECT_EQ(view->delegate(), weakDelegate.lock());
    EXPECT_TRUE(weakDelegate.expired()) << "restored, the delegate is no longer held";
    EXPECT_EQ(view->vars()->savedFrame, kit::Rect{});
    screen->addSubview(view);
    view->restoreState();
    EXPECT_EQ(view->superview(), screen) << "a state is restored once";
}

TEST_F(ZEBWebViewTest, OrientationIsReportedOncePerChange) {
    view->didRotateToOrientation(0);
    view->didRotateToOrientation(5);
    EXPECT_TRUE(scripts().empty());
    EXPECT_EQ(view->vars()->orientation, 0);

    view->didRotateToOrientation(kit::InterfaceOrientation::LandscapeRight);
    view->didRotateToOrientation(kit::InterfaceOrientation::LandscapeRight);
    view->didRotateToOrientation(kit::InterfaceOrientation::LandscapeLeft);
    view->didRotateToOrientation(kit::InterfaceOrientation::PortraitUpsideDown);
    view->didRotateToOrientation(kit::InterfaceOrientation::Portrait);
    ASSERT_EQ(scripts().size(), 4u);
    EXPECT_EQ(scripts()[0],
              "window.__defineGetter__('orientation',function(){return 90;});(function(){var event = "
              "document.createEvent('Events');event.initEvent('orientationchange', true, false);"
              "window.dispatchEvent(event);})();");
    EXPECT_NE(scripts()[1].find("return -90;"), std::string::npos);
    EXPECT_NE(scripts()[2].find("return 180;"), std::string::npos);
    EXPECT_NE(scripts()[3].find("return 0;"), std::string::npos);
}

TEST_F(ZEBWebViewTest, SdkEventsWhileAPageLoadsAreDropped) {
    view->loadHtmlString("<p>ad</p>", kit::Url::parse("http://ads.example/"));
    runUntilIdle();
    ASSERT_TRUE(view->isLoading());
    view->notifyOfSdkEvent("onshow");
    EXPECT_TRUE(scripts().empty());

    SimWebPage::of(*view).finish();
    view->notifyOfSdkEvent("expanding");
    std::string expected = "QUOR_ReceiveMessage('expanding', {\"version\":\"" + ZEBRequest::sdkVersion() +
                           "\",\"device\":\"" + ZEBIdentifierUtilities::sharedInstance().deviceSubmodel() +
                           "\"});";
    EXPECT_EQ(scripts(), (std::vector<std::string>{expected}));
}
