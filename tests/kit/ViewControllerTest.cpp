#include "kit/ViewController.h"

#include "kit/Log.h"
#include "kit/View.h"
#include "kit/Window.h"
#include "tests/support/SimTest.h"

using kit::Rect;
using kit::View;
using kit::ViewController;
using Journal = std::vector<std::string>;
using Views = std::vector<std::shared_ptr<View>>;

namespace {

// Journals "<name> will appear" and so on; "(a)" marks animated calls.
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
    std::shared_ptr<ViewController> presenterWhileDisappearing;

protected:
    void loadView() override {
        journal_.push_back(name_ + " load");
        setView(std::make_shared<View>(Rect{0, 0, 10, 10}));
    }
    void viewDidLoad() override { journal_.push_back(name_ + " did load"); }

private:
    void note(const char* what, bool animated) {
        journal_.push_back(name_ + " " + what + (animated ? " (a)" : ""));
    }

    std::string name_;
    Journal& journal_;
};

class ViewControllerTest : public SimTest {
protected:
    void SetUp() override {
        SimTest::SetUp();
        window->setRootViewController(root);
        window->makeKeyAndVisible();
        journal.clear();
    }

    std::shared_ptr<Screen> screen(std::string name) {
        return std::make_shared<Screen>(std::move(name), journal);
    }
    std::function<void()> note(std::string line) {
        return [this, line = std::move(line)] { journal.push_back(line); };
    }
    Journal take() { return std::exchange(journal, {}); }

    Journal journal;
    std::shared_ptr<kit::Window> window = std::make_shared<kit::Window>(Rect{0, 0, 480, 320});
    std::shared_ptr<Screen> root = screen("root");
};

}  // namespace

// The journal also shows that a view loads once, on first use.
TEST_F(ViewControllerTest, PresentAndDismissCallAppearanceInOrder) {
    auto modal = screen("modal");
    EXPECT_FALSE(modal->isViewLoaded());
    root->presentViewController(modal, false, note("presented"));
    EXPECT_EQ(take(), (Journal{"modal load", "modal did load", "root will disappear", "modal will appear"}));
    EXPECT_EQ(modal->presentingViewController(), root);
    EXPECT_EQ(window->subviews(), (Views{root->view(), modal->view()}));  // on top, covering the window
    EXPECT_EQ(modal->view()->frame(), window->bounds());
    runUntilIdle();  // without animation the transition ends in the next turn
    EXPECT_EQ(take(), (Journal{"modal did appear", "root did disappear", "presented"}));

    modal->dismissViewController(false, note("dismissed"));  // asks its presenter
    EXPECT_EQ(take(), (Journal{"modal will disappear", "root will appear"}));
    runUntilIdle();
    EXPECT_EQ(take(), (Journal{"root did appear", "modal did disappear", "dismissed"}));
    EXPECT_EQ(modal->presenterWhileDisappearing, root);
    EXPECT_EQ(root->presentedViewController(), nullptr);
    EXPECT_EQ(modal->presentingViewController(), nullptr);
    EXPECT_EQ(window->subviews(), Views{root->view()});
    EXPECT_TRUE(journal.empty());
    auto plain = std::make_shared<ViewController>();  // the default view fills the screen
    EXPECT_EQ(plain->view()->frame(), kit::Screen::main().bounds());
}

TEST_F(ViewControllerTest, AnimatedTransitionsTakeTheirTime) {
    auto modal = screen("modal");
    root->presentViewController(modal, true);
    take();
    advance(ViewController::kAnimationDuration - 0.01);
    EXPECT_TRUE(journal.empty());
    advance(0.01);
    EXPECT_EQ(take(), (Journal{"modal did appear (a)", "root did disappear (a)"}));
    root->dismissViewController(true, note("dismissed"));
    advance(ViewController::kAnimationDuration - 0.01);
    EXPECT_EQ(take(), (Journal{"modal will disappear (a)", "root will appear (a)"}));
    advance(0.01);
    EXPECT_EQ(take(), (Journal{"root did appear (a)", "modal did disappear (a)", "dismissed"}));
}

TEST_F(ViewControllerTest, PresentationIsRefusedWhileBusy) {
    kit::Log::Capture logs;
    auto first = screen("first"), second = screen("second");
    root->presentViewController(first, true);
    take();
    root->dismissViewController(false);  // still coming in
    first->presentViewController(second, false);
    EXPECT_EQ(logs.lines().size(), 2u);
    EXPECT_TRUE(logs.contains("a transition is in progress"));
    advance(ViewController::kAnimationDuration);
    root->presentViewController(second, false);
    EXPECT_TRUE(logs.contains("already presenting"));
    screen("outside")->presentViewController(second, false);
    EXPECT_TRUE(logs.contains("not in a window"));
    EXPECT_EQ(root->presentedViewController(), first);
    EXPECT_EQ(second->presentingViewController(), nullptr);
    EXPECT_EQ(take(), (Journal{"first did appear (a)", "root did disappear (a)"}));
}

TEST_F(ViewControllerTest, DismissingFromBelowTakesTheWholeStackAndReleasesIt) {
    auto middle = screen("middle"), top = screen("top");
    root->presentViewController(middle, false);
    runUntilIdle();
    middle->presentViewController(top, false);
    runUntilIdle();
    take();
    std::weak_ptr<ViewController> watchMiddle = middle, watchTop = top;
    middle.reset();
    top.reset();
    root->dismissViewController(false);
    runUntilIdle();
    // The middle one had already disappeared under the top one.
    EXPECT_EQ(take(),
              (Journal{"top will disappear", "root will appear", "root did appear", "top did disappear"}));
    EXPECT_EQ(window->subviews(), Views{root->view()});
    EXPECT_TRUE(watchMiddle.expired());
    EXPECT_TRUE(watchTop.expired());
}
