#include "kit/ViewController.h"

#include "kit/Application.h"
#include "kit/Log.h"
#include "kit/View.h"
#include "kit/Window.h"

#include "tests/support/SimTest.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

using kit::Rect;
using kit::View;
using kit::ViewController;
using kit::Window;

namespace {

using Journal = std::vector<std::string>;

// A screen that writes "<name> will appear" and so on into a shared journal.
class Screen : public ViewController {
  public:
    Screen(std::string name, Journal& journal) : name_(std::move(name)), journal_(journal) {}

    void viewWillAppear(bool animated) override { note("will appear", animated); }
    void viewDidAppear(bool animated) override { note("did appear", animated); }
    void viewWillDisappear(bool animated) override { note("will disappear", animated); }
    void viewDidDisappear(bool animated) override {
        note("did disappear", animated);
        presenterWhileDisappearing = presentingViewController();
    }
    bool canBecomeFirstResponder() const override { return true; }

    int loads = 0;
    std::shared_ptr<ViewController> presenterWhileDisappearing;

  protected:
    void loadView() override {
        ++loads;
        journal_.push_back(name_ + " load view");
        setView(std::make_shared<View>(Rect{0, 0, 10, 10}));
    }
    void viewDidLoad() override { journal_.push_back(name_ + " did load"); }

  private:
    void note(const char* what, bool animated) {
        journal_.push_back(name_ + " " + what + (animated ? " (animated)" : ""));
    }

    std::string name_;
    Journal& journal_;
};

class ViewControllerTest : public SimTest {
  protected:
    void SetUp() override {
        SimTest::SetUp();
        window = std::make_shared<Window>(Rect{0, 0, 480, 320});
        root = std::make_shared<Screen>("root", journal);
        window->setRootViewController(root);
        window->makeKeyAndVisible();
        journal.clear();
    }

    std::function<void()> note(std::string line) {
        return [this, line = std::move(line)] { journal.push_back(line); };
    }
    Journal take() { return std::exchange(journal, {}); }

    Journal journal;
    std::shared_ptr<Window> window;
    std::shared_ptr<Screen> root;
};

}  // namespace

TEST_F(ViewControllerTest, ViewLoadsOnceOnFirstUse) {
    auto screen = std::make_shared<Screen>("s", journal);
    EXPECT_FALSE(screen->isViewLoaded());
    auto view = screen->view();
    EXPECT_TRUE(screen->isViewLoaded());
    EXPECT_EQ(screen->view(), view);
    EXPECT_EQ(take(), (Journal{"s load view", "s did load"}));

    // The default view fills the screen and follows its superview's size.
    auto plain = std::make_shared<ViewController>();
    EXPECT_EQ(plain->view()->frame(), kit::Screen::main().bounds());
    EXPECT_EQ(plain->view()->autoresizingMask(),
              kit::Autoresizing::FlexibleWidth | kit::Autoresizing::FlexibleHeight);
}

TEST_F(ViewControllerTest, PresentAndDismissCallAppearanceInOrder) {
    auto modal = std::make_shared<Screen>("modal", journal);
    root->presentViewController(modal, false, note("presented"));
    EXPECT_EQ(take(),
              (Journal{"modal load view", "modal did load", "root will disappear", "modal will appear"}));
    EXPECT_EQ(root->presentedViewController(), modal);
    EXPECT_EQ(modal->presentingViewController(), root);
    // Covers the window, on top.
    EXPECT_EQ(window->subviews().back(), modal->view());
    EXPECT_EQ(modal->view()->frame(), window->bounds());

    runUntilIdle();  // a transition without animation ends in the next turn
    EXPECT_EQ(take(), (Journal{"modal did appear", "root did disappear", "presented"}));

    modal->dismissViewController(false, note("dismissed"));  // asks its presenter
    EXPECT_EQ(take(), (Journal{"modal will disappear", "root will appear"}));
    EXPECT_EQ(modal->view()->superview(), window);  // still there during the transition
    runUntilIdle();
    EXPECT_EQ(take(), (Journal{"root did appear", "modal did disappear", "dismissed"}));
    EXPECT_EQ(modal->presenterWhileDisappearing, root);
    EXPECT_EQ(modal->view()->superview(), nullptr);
    EXPECT_EQ(root->presentedViewController(), nullptr);
    EXPECT_EQ(modal->presentingViewController(), nullptr);
    EXPECT_EQ(window->subviews(), std::vector<std::shared_ptr<View>>{root->view()});
}

TEST_F(ViewControllerTest, AnimatedTransitionsTakeTheirTime) {
    auto modal = std::make_shared<Screen>("modal", journal);
    modal->view();
    take();
    root->presentViewController(modal, true, note("presented"));
    take();
    advance(ViewController::kAnimationDuration - 0.01);
    EXPECT_TRUE(journal.empty());
    advance(0.01);
    EXPECT_EQ(take(), (Journal{"modal did appear (animated)", "root did disappear (animated)", "presented"}));

    root->dismissViewController(true, note("dismissed"));
    EXPECT_EQ(take(), (Journal{"modal will disappear (animated)", "root will appear (animated)"}));
    advance(ViewController::kAnimationDuration - 0.01);
    EXPECT_TRUE(journal.empty());
    advance(0.01);
    EXPECT_EQ(take(), (Journal{"root did appear (animated)", "modal did disappear (animated)", "dismissed"}));
}

TEST_F(ViewControllerTest, PresentationIsRefusedWhileBusy) {
    kit::Log::Capture logs;
    auto first = std::make_shared<Screen>("first", journal);
    auto second = std::make_shared<Screen>("second", journal);

    root->presentViewController(first, true);
    take();
    root->dismissViewController(false);  // still coming in
    first->presentViewController(second, false);
    EXPECT_TRUE(journal.empty());
    EXPECT_EQ(logs.lines().size(), 2u);
    EXPECT_TRUE(logs.contains("a transition is in progress"));

    advance(ViewController::kAnimationDuration);
    take();
    logs.clear();
    root->presentViewController(second, false);  // root already presents
    EXPECT_TRUE(logs.contains("already presenting"));
    auto outside = std::make_shared<Screen>("outside", journal);
    outside->presentViewController(second, false);  // its view is in no window
    EXPECT_TRUE(logs.contains("not in a window"));
    root->presentViewController(root, false);
    EXPECT_EQ(logs.lines().size(), 3u);
    EXPECT_EQ(root->presentedViewController(), first);
    EXPECT_EQ(second->presentingViewController(), nullptr);

    // Dismissing with nothing presented anywhere does nothing, quietly.
    logs.clear();
    outside->dismissViewController(false, note("never"));
    runUntilIdle();
    EXPECT_TRUE(journal.empty());
    EXPECT_TRUE(logs.lines().empty());
}

TEST_F(ViewControllerTest, DismissingFromBelowTakesTheWholeStack) {
    auto middle = std::make_shared<Screen>("middle", journal);
    auto top = std::make_shared<Screen>("top", journal);
    root->presentViewController(middle, false);
    runUntilIdle();
    middle->presentViewController(top, false);
    runUntilIdle();
    ASSERT_EQ(window->subviews().size(), 3u);
    take();

    std::weak_ptr<ViewController> watchMiddle = middle, watchTop = top;
    middle.reset();
    top.reset();
    root->dismissViewController(false, note("dismissed"));
    runUntilIdle();
    EXPECT_EQ(take(), (Journal{"top will disappear", "root will appear", "root did appear",
                               "top did disappear", "dismissed"}));
    EXPECT_EQ(window->subviews(), std::vector<std::shared_ptr<View>>{root->view()});
    // Nothing keeps dismissed controllers alive.
    EXPECT_TRUE(watchMiddle.expired());
    EXPECT_TRUE(watchTop.expired());
}

TEST_F(ViewControllerTest, RotatesToPortraitOnlyByDefault) {
    auto plain = std::make_shared<ViewController>();
    namespace O = kit::InterfaceOrientation;
    EXPECT_TRUE(plain->shouldAutorotateToInterfaceOrientation(O::Portrait));
    EXPECT_FALSE(plain->shouldAutorotateToInterfaceOrientation(O::PortraitUpsideDown));
    EXPECT_FALSE(plain->shouldAutorotateToInterfaceOrientation(O::LandscapeLeft));
    EXPECT_FALSE(plain->shouldAutorotateToInterfaceOrientation(O::LandscapeRight));
}

TEST_F(ViewControllerTest, FirstResponderPassesBetweenControllersOfAWindow) {
    auto modal = std::make_shared<Screen>("modal", journal);
    EXPECT_FALSE(modal->becomeFirstResponder());  // not in a window yet
    EXPECT_TRUE(root->becomeFirstResponder());
    root->presentViewController(modal, false);
    runUntilIdle();
    EXPECT_TRUE(modal->becomeFirstResponder());
    EXPECT_FALSE(root->isFirstResponder());
    EXPECT_EQ(window->firstResponder(), modal);
}

TEST_F(ViewControllerTest, ChildControllersLinkToTheirParent) {
    auto parent = std::make_shared<ViewController>();
    auto other = std::make_shared<ViewController>();
    auto child = std::make_shared<ViewController>();
    parent->addChildViewController(child);
    EXPECT_EQ(child->parentViewController(), parent);
    other->addChildViewController(child);  // moves
    EXPECT_TRUE(parent->childViewControllers().empty());
    EXPECT_EQ(child->parentViewController(), other);
    child->removeFromParentViewController();
    EXPECT_EQ(child->parentViewController(), nullptr);
    EXPECT_TRUE(other->childViewControllers().empty());
}
