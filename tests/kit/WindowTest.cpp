#include "kit/Window.h"

#include "kit/Application.h"
#include "kit/Button.h"
#include "kit/ViewController.h"
#include "tests/support/SimTest.h"

using kit::Button;
using kit::Control;
using kit::Rect;
using kit::View;
using kit::Window;
using Log = std::vector<std::string>;
namespace ControlEvent = kit::ControlEvent;

namespace {

class WindowTest : public SimTest {
protected:
    void SetUp() override {
        SimTest::SetUp();
        window = std::make_shared<Window>(Rect{0, 0, 480, 320});
        button = std::make_shared<Button>(Rect{100, 100, 80, 40});
        window->addSubview(button);
        window->makeKeyAndVisible();
        record(*button);
    }

    // Logs each touch event of `control`, marked when the control was highlighted then.
    void record(Control& control) {
        const std::pair<uint32_t, const char*> names[] = {{ControlEvent::TouchDown, "down"},
                                                          {ControlEvent::TouchDragInside, "inside"},
                                                          {ControlEvent::TouchDragOutside, "outside"},
                                                          {ControlEvent::TouchDragEnter, "enter"},
                                                          {ControlEvent::TouchDragExit, "exit"},
                                                          {ControlEvent::TouchUpInside, "up inside"},
                                                          {ControlEvent::TouchUpOutside, "up outside"},
                                                          {ControlEvent::TouchCancel, "cancel"}};
        for (const auto& [event, name] : names) {
            control.addActionForControlEvents(
                [this, name = std::string(name)](Control& sender) {
                    log.push_back(sender.isHighlighted() ? name + "*" : name);
                },
                event);
        }
    }

    void tap(kit::Point p) {
        window->touchDown(kPort, p);
        window->touchUp(kPort, p);
    }

    std::shared_ptr<Window> window;
    std::shared_ptr<Button> button;
    Log log;
};

}  // namespace

TEST_F(WindowTest, TapReachesTheButtonThroughHitTesting) {
    window->touchDown(kPort, {110, 110});
    EXPECT_EQ(log, Log{"down*"});
    EXPECT_TRUE(button->isHighlighted());
    window->touchUp(kPort, {111, 112});
    EXPECT_EQ(log, (Log{"down*", "up inside"}));
    EXPECT_FALSE(button->isHighlighted());

    // A plain view inside the button (its label, say) passes the touch on to it.
    button->addSubview(std::make_shared<View>(Rect{10, 10, 20, 20}));
    log.clear();
    tap({115, 115});
    EXPECT_EQ(log, (Log{"down*", "up inside"}));
}

TEST_F(WindowTest, DraggingOutAndBackReportsExitEnterAndWhereTheTouchEnded) {
    window->touchDown(kPort, {110, 110});
    window->touchMoved(kPort, {120, 110});
    window->touchMoved(kPort, {300, 300});
    window->touchMoved(kPort, {120, 120});
    window->touchMoved(kPort, {300, 10});
    window->touchUp(kPort, {300, 10});
    EXPECT_EQ(log, (Log{"down*", "inside*", "exit", "outside", "enter*", "inside*", "exit", "outside",
                        "up outside"}));
}

TEST_F(WindowTest, CoveredOrDisabledButtonsGetNoTouches) {
    auto cover = std::make_shared<View>(Rect{90, 90, 20, 20});
    window->addSubview(cover);
    tap({105, 105});
    button->setEnabled(false);
    tap({150, 110});
    EXPECT_TRUE(log.empty());
}

TEST_F(WindowTest, LostTouchesAreCancelled) {
    // The control leaves the window during its touch.
    auto leaving = std::make_shared<Button>(Rect{300, 100, 80, 40});
    window->addSubview(leaving);
    record(*leaving);
    leaving->addActionForControlEvents([](Control& sender) { sender.removeFromSuperview(); },
                                       ControlEvent::TouchDown);
    tap({310, 110});
    EXPECT_EQ(log, (Log{"down*", "cancel"}));

    // A second touch-down without a touch-up between, and a cancel from the system.
    log.clear();
    window->touchDown(kPort, {110, 110});
    window->touchDown(kPort, {110, 110});
    window->touchCancelled(kPort);
    EXPECT_EQ(log, (Log{"down*", "cancel", "down*", "cancel"}));
    EXPECT_FALSE(button->isHighlighted());
}

TEST_F(WindowTest, RootViewControllerViewFillsTheWindowAndAppearsWhenItBecomesKey) {
    struct Screen : kit::ViewController {
        Log& log;
        explicit Screen(Log& l) : log(l) {}
        void viewWillAppear(bool) override { log.push_back("will appear"); }
        void viewDidAppear(bool) override { log.push_back("did appear"); }
        void viewWillDisappear(bool) override { log.push_back("will disappear"); }
        void viewDidDisappear(bool) override { log.push_back("did disappear"); }
    };
    auto other = std::make_shared<Window>(Rect{0, 0, 200, 100});
    auto first = std::make_shared<Screen>(log);
    other->setRootViewController(first);
    EXPECT_EQ(first->view()->superview(), other);
    EXPECT_TRUE(log.empty());  // not on screen yet
    other->makeKeyAndVisible();
    EXPECT_FALSE(window->isKeyWindow());
    EXPECT_EQ(kit::Application::shared().keyWindow(), other);
    other->setFrame({0, 0, 300, 150});
    EXPECT_EQ(first->view()->frame(), (Rect{0, 0, 300, 150}));

    other->setRootViewController(std::make_shared<Screen>(log));
    EXPECT_EQ(log, (Log{"will appear", "did appear", "will disappear", "did disappear", "will appear",
                        "did appear"}));
    EXPECT_EQ(first->view()->superview(), nullptr);
    other.reset();
    EXPECT_EQ(kit::Application::shared().keyWindow(), nullptr);  // not retained
}

TEST_F(WindowTest, OneFirstResponderPerWindow) {
    struct Focusable : View {
        using View::View;
        bool canBecomeFirstResponder() const override { return true; }
    };
    auto a = std::make_shared<Focusable>(Rect{}), b = std::make_shared<Focusable>(Rect{});
    EXPECT_FALSE(a->becomeFirstResponder());       // in no window
    EXPECT_FALSE(button->becomeFirstResponder());  // cannot
    window->addSubview(a);
    window->addSubview(b);
    EXPECT_TRUE(a->becomeFirstResponder());
    EXPECT_TRUE(b->becomeFirstResponder());
    EXPECT_FALSE(a->isFirstResponder());
    b->removeFromSuperview();  // leaving the window gives up the focus
    EXPECT_EQ(window->firstResponder(), nullptr);
}
