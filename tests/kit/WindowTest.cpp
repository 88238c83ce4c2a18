#include "kit/Window.h"

#include "kit/Application.h"
#include "kit/Button.h"
#include "kit/ViewController.h"

#include "tests/support/SimTest.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

using kit::Button;
using kit::Control;
using kit::Rect;
using kit::View;
using kit::Window;
namespace ControlEvent = kit::ControlEvent;

namespace {

struct EventName {
    uint32_t event;
    const char* name;
};
constexpr EventName kEventNames[] = {
    {ControlEvent::TouchDown, "down"},
    {ControlEvent::TouchDragInside, "drag inside"},
    {ControlEvent::TouchDragOutside, "drag outside"},
    {ControlEvent::TouchDragEnter, "enter"},
    {ControlEvent::TouchDragExit, "exit"},
    {ControlEvent::TouchUpInside, "up inside"},
    {ControlEvent::TouchUpOutside, "up outside"},
    {ControlEvent::TouchCancel, "cancel"},
};

class Focusable : public View {
  public:
    using View::View;
    bool canBecomeFirstResponder() const override { return true; }
};

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

    // Logs every touch event of `control`, with whether it was highlighted at the time.
    void record(Control& control) {
        for (const auto& [event, name] : kEventNames) {
            control.addTargetActionForControlEvents(
                this,
                [this, name = std::string(name)](Control& sender) {
                    log.push_back(sender.isHighlighted() ? name + " (lit)" : name);
                },
                event);
        }
    }

    std::shared_ptr<Window> window;
    std::shared_ptr<Button> button;
    std::vector<std::string> log;
};

}  // namespace

TEST_F(WindowTest, TapOnAButtonSendsTouchDownThenTouchUpInside) {
    window->touchDown({110, 110});
    EXPECT_EQ(log, std::vector<std::string>{"down (lit)"});
    EXPECT_TRUE(button->isHighlighted());
    window->touchUp({111, 112});
    EXPECT_EQ(log, (std::vector<std::string>{"down (lit)", "up inside"}));
    EXPECT_FALSE(button->isHighlighted());
    EXPECT_FALSE(button->isTracking());
}

TEST_F(WindowTest, DraggingOutAndBackReportsExitEnterAndWhereTheTouchEnded) {
    window->touchDown({110, 110});
    window->touchMoved({120, 110});
    window->touchMoved({300, 300});
    EXPECT_FALSE(button->isHighlighted());
    window->touchMoved({301, 300});
    window->touchMoved({120, 120});
    window->touchMoved({300, 10});
    window->touchUp({300, 10});
    EXPECT_EQ(log, (std::vector<std::string>{"down (lit)", "drag inside (lit)", "exit", "drag outside",
                                             "drag outside", "enter (lit)", "drag inside (lit)", "exit",
                                             "drag outside", "up outside"}));
}

TEST_F(WindowTest, TouchGoesToTheNearestEnabledControlUnderTheFinger) {
    // A plain view inside the button (its label, say) passes the touch to the button.
    auto label = std::make_shared<View>(Rect{10, 10, 20, 20});
    button->addSubview(label);
    window->touchDown({115, 115});
    window->touchUp({115, 115});
    EXPECT_EQ(log, (std::vector<std::string>{"down (lit)", "up inside"}));
    log.clear();

    // A view in front of the button takes the touch away from it.
    auto cover = std::make_shared<View>(Rect{90, 90, 20, 20});
    window->addSubview(cover);
    window->touchDown({105, 105});
    window->touchUp({105, 105});
    // A view that takes no touches lets them through.
    cover->setUserInteractionEnabled(false);
    window->touchDown({105, 105});
    window->touchUp({105, 105});
    EXPECT_EQ(log, (std::vector<std::string>{"down (lit)", "up inside"}));
    log.clear();

    button->setEnabled(false);
    window->touchDown({150, 110});
    window->touchUp({150, 110});
    button->setEnabled(true);
    button->setHidden(true);
    window->touchDown({150, 110});
    window->touchUp({150, 110});
    EXPECT_TRUE(log.empty());
}

TEST_F(WindowTest, ControlThatLeavesTheWindowDuringATouchHasItCancelled) {
    button->addTargetActionForControlEvents(
        nullptr, [](Control& sender) { sender.removeFromSuperview(); }, ControlEvent::TouchDown);
    window->touchDown({110, 110});
    window->touchUp({110, 110});
    EXPECT_EQ(log, (std::vector<std::string>{"down (lit)", "cancel"}));

    // A touch-down without a touch-up cancels the first touch.
    auto other = std::make_shared<Button>(Rect{0, 0, 50, 50});
    window->addSubview(other);
    record(*other);
    log.clear();
    window->touchDown({10, 10});
    window->touchDown({20, 20});
    window->touchCancelled();
    EXPECT_EQ(log, (std::vector<std::string>{"down (lit)", "cancel", "down (lit)", "cancel"}));
}

TEST_F(WindowTest, LatestWindowMadeVisibleIsKey) {
    EXPECT_TRUE(window->isKeyWindow());
    EXPECT_EQ(kit::Application::shared().keyWindow(), window);
    auto second = std::make_shared<Window>(Rect{0, 0, 100, 100});
    second->makeKeyAndVisible();
    EXPECT_FALSE(window->isKeyWindow());
    EXPECT_TRUE(second->isKeyWindow());
    second.reset();
    EXPECT_EQ(kit::Application::shared().keyWindow(), nullptr);  // not retained
}

TEST_F(WindowTest, RootViewControllerViewFillsTheWindowAndAppears) {
    struct Screen : kit::ViewController {
        std::vector<std::string>& log;
        explicit Screen(std::vector<std::string>& l) : log(l) {}
        void viewWillAppear(bool) override { log.push_back("will appear"); }
        void viewDidAppear(bool) override { log.push_back("did appear"); }
        void viewWillDisappear(bool) override { log.push_back("will disappear"); }
        void viewDidDisappear(bool) override { log.push_back("did disappear"); }
    };
    auto hidden = std::make_shared<Window>(Rect{0, 0, 200, 100});
    auto first = std::make_shared<Screen>(log);
    hidden->setRootViewController(first);
    EXPECT_EQ(first->view()->frame(), (Rect{0, 0, 200, 100}));
    EXPECT_EQ(first->view()->superview(), hidden);
    EXPECT_TRUE(log.empty());  // not on screen yet
    hidden->makeKeyAndVisible();
    EXPECT_EQ(log, (std::vector<std::string>{"will appear", "did appear"}));

    hidden->setFrame({0, 0, 300, 150});
    EXPECT_EQ(first->view()->frame(), (Rect{0, 0, 300, 150}));

    log.clear();
    auto second = std::make_shared<Screen>(log);
    hidden->setRootViewController(second);
    EXPECT_EQ(log,
              (std::vector<std::string>{"will disappear", "did disappear", "will appear", "did appear"}));
    EXPECT_EQ(first->view()->superview(), nullptr);
    EXPECT_EQ(hidden->subviews(), std::vector<std::shared_ptr<View>>{second->view()});
}

TEST_F(WindowTest, OneFirstResponderPerWindow) {
    auto a = std::make_shared<Focusable>(Rect{});
    auto b = std::make_shared<Focusable>(Rect{});
    auto plain = std::make_shared<View>(Rect{});
    window->addSubview(plain);
    EXPECT_FALSE(a->becomeFirstResponder());  // in no window
    window->addSubview(a);
    window->addSubview(b);
    EXPECT_FALSE(plain->becomeFirstResponder());  // cannot
    EXPECT_TRUE(a->becomeFirstResponder());
    EXPECT_TRUE(b->becomeFirstResponder());
    EXPECT_FALSE(a->isFirstResponder());
    EXPECT_EQ(window->firstResponder(), b);

    b->removeFromSuperview();  // leaving the window gives up the focus
    EXPECT_FALSE(b->isFirstResponder());
    EXPECT_EQ(window->firstResponder(), nullptr);

    EXPECT_TRUE(a->becomeFirstResponder());
    EXPECT_TRUE(a->resignFirstResponder());
    EXPECT_EQ(window->firstResponder(), nullptr);
}
