#include "kit/View.h"

#include "kit/Window.h"
#include "tests/support/SimTest.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

using kit::Point;
using kit::Rect;
using kit::View;
namespace Autoresizing = kit::Autoresizing;

namespace {

std::shared_ptr<View> makeView(Rect frame, int tag = 0) {
    auto view = std::make_shared<View>(frame);
    view->setTag(tag);
    return view;
}

constexpr int kNothing = -1;

// The tag of the view hit at `p`, or kNothing.
int tagAt(View& root, Point p) {
    auto hit = root.hitTest(p, nullptr);
    return hit ? hit->tag() : kNothing;
}

// Records the move hooks it hears.
class HookView : public View {
  public:
    using View::View;
    std::vector<std::string> calls;

  protected:
    void didMoveToSuperview() override { calls.push_back(superview() ? "superview" : "no superview"); }
    void didMoveToWindow() override { calls.push_back(window() ? "window" : "no window"); }
};

// Builds its content in its constructor, before anyone owns it.
class Panel : public View {
  public:
    explicit Panel(Rect frame) : View(frame), label(std::make_shared<View>(Rect{0, 0, 10, 10})) {
        addSubview(label);
    }
    std::shared_ptr<View> label;
};

// Answers touches a little outside its bounds.
class GenerousView : public View {
  public:
    using View::View;
    bool pointInside(Point p, const kit::Event*) override {
        return p.x >= -10 && p.y >= -10 && p.x < bounds().width() + 10 && p.y < bounds().height() + 10;
    }
};

class ViewTest : public SimTest {};

}  // namespace

TEST_F(ViewTest, AddingInsertingAndReorderingSubviews) {
    auto parent = makeView({0, 0, 100, 100});
    auto a = makeView({}, 1), b = makeView({}, 2), c = makeView({}, 3);
    parent->addSubview(a);
    parent->addSubview(b);
    parent->insertSubviewAtIndex(c, 1);
    EXPECT_EQ(parent->subviews(), (std::vector<std::shared_ptr<View>>{a, c, b}));
    EXPECT_EQ(c->superview(), parent);

    parent->bringSubviewToFront(a);
    EXPECT_EQ(parent->subviews(), (std::vector<std::shared_ptr<View>>{c, b, a}));
    parent->sendSubviewToBack(b);
    EXPECT_EQ(parent->subviews(), (std::vector<std::shared_ptr<View>>{b, c, a}));
    parent->addSubview(b);  // already there: moves to the front, not duplicated
    EXPECT_EQ(parent->subviews(), (std::vector<std::shared_ptr<View>>{c, a, b}));

    auto other = makeView({});
    other->addSubview(a);  // moves: leaves the old superview
    EXPECT_EQ(parent->subviews(), (std::vector<std::shared_ptr<View>>{c, b}));
    EXPECT_EQ(a->superview(), other);

    c->removeFromSuperview();
    EXPECT_EQ(parent->subviews(), (std::vector<std::shared_ptr<View>>{b}));
    EXPECT_EQ(c->superview(), nullptr);

    // A view never becomes its own ancestor.
    b->addSubview(parent);
    EXPECT_TRUE(b->subviews().empty());
    EXPECT_EQ(parent->superview(), nullptr);
}

TEST_F(ViewTest, SuperviewLinkIsNotOwningAndNeverDangles) {
    auto child = std::make_shared<HookView>(Rect{});
    std::weak_ptr<View> watch;
    {
        auto parent = makeView({0, 0, 10, 10});
        watch = parent;
        parent->addSubview(child);
        EXPECT_EQ(child->superview(), parent);
    }
    EXPECT_TRUE(watch.expired());  // the child did not keep its superview alive
    EXPECT_EQ(child->superview(), nullptr);
    EXPECT_EQ(child->calls, (std::vector<std::string>{"superview", "no superview"}));

    // Content built in a constructor is linked once the view is owned.
    auto panel = std::make_shared<Panel>(Rect{0, 0, 50, 50});
    EXPECT_EQ(panel->label->superview(), panel);
}

TEST_F(ViewTest, MoveHooksReportWindowChangesOnlyWhenTheWindowChanges) {
    auto window = std::make_shared<kit::Window>(Rect{0, 0, 100, 100});
    auto a = makeView({}), b = makeView({});
    window->addSubview(a);
    window->addSubview(b);
    auto hooked = std::make_shared<HookView>(Rect{});
    auto grandchild = std::make_shared<HookView>(Rect{});
    hooked->addSubview(grandchild);
    grandchild->calls.clear();

    a->addSubview(hooked);
    EXPECT_EQ(hooked->calls, (std::vector<std::string>{"superview", "window"}));
    EXPECT_EQ(grandchild->calls, (std::vector<std::string>{"window"}));
    EXPECT_EQ(grandchild->window(), window);

    hooked->calls.clear();
    grandchild->calls.clear();
    b->addSubview(hooked);  // same window
    EXPECT_EQ(hooked->calls, (std::vector<std::string>{"superview"}));
    EXPECT_TRUE(grandchild->calls.empty());

    hooked->calls.clear();
    window.reset();  // the window goes: its tree is left without one
    EXPECT_EQ(hooked->calls, (std::vector<std::string>{"no window"}));
    EXPECT_EQ(grandchild->calls, (std::vector<std::string>{"no window"}));
    EXPECT_EQ(grandchild->window(), nullptr);
}

TEST_F(ViewTest, ViewWithTagSearchesDepthFirstFromItself) {
    auto root = makeView({}, 7);
    auto first = makeView({}, 1), second = makeView({}, 2);
    auto deep = makeView({}, 2);
    root->addSubview(first);
    root->addSubview(second);
    first->addSubview(deep);
    EXPECT_EQ(root->viewWithTag(7), root);
    EXPECT_EQ(root->viewWithTag(2), deep);  // the first subtree is searched to its bottom first
    EXPECT_EQ(second->viewWithTag(2), second);
    EXPECT_EQ(root->viewWithTag(3), nullptr);
}

TEST_F(ViewTest, HitTestFindsTheFrontmostDeepestView) {
    auto root = makeView({0, 0, 100, 100}, 9);
    auto back = makeView({0, 0, 60, 60}, 1);
    auto front = makeView({40, 40, 60, 60}, 2);
    auto inner = makeView({10, 10, 10, 10}, 3);
    root->addSubview(back);
    root->addSubview(front);
    front->addSubview(inner);

    EXPECT_EQ(tagAt(*root, {45, 45}), 2);  // overlap: the front one
    EXPECT_EQ(tagAt(*root, {10, 10}), 1);
    EXPECT_EQ(tagAt(*root, {55, 55}), 3);
    EXPECT_EQ(tagAt(*root, {90, 10}), 9);
    EXPECT_EQ(tagAt(*root, {100, 50}), kNothing);  // the right edge is outside

    // A subview reaching outside its superview is not hit there.
    back->addSubview(makeView({50, 0, 100, 100}, 4));
    EXPECT_EQ(tagAt(*root, {70, 20}), 9);
    EXPECT_EQ(tagAt(*root, {55, 20}), 4);

    // A scrolled superview (bounds origin) shifts where its subviews are.
    front->setBounds({10, 10, 60, 60});
    EXPECT_EQ(tagAt(*root, {45, 45}), 3);
    EXPECT_EQ(tagAt(*root, {55, 55}), 2);
}

TEST_F(ViewTest, HitTestSkipsHiddenTransparentAndNonInteractiveViews) {
    auto root = makeView({0, 0, 100, 100}, 9);
    auto under = makeView({0, 0, 50, 50}, 1);
    auto over = makeView({0, 0, 50, 50}, 2);
    auto child = makeView({0, 0, 20, 20}, 3);
    root->addSubview(under);
    root->addSubview(over);
    over->addSubview(child);
    ASSERT_EQ(tagAt(*root, {5, 5}), 3);

    over->setHidden(true);
    EXPECT_EQ(tagAt(*root, {5, 5}), 1);
    over->setHidden(false);

    over->setAlpha(0);
    EXPECT_EQ(tagAt(*root, {5, 5}), 1);
    over->setAlpha(0.01);
    EXPECT_EQ(tagAt(*root, {5, 5}), 1);
    over->setAlpha(0.02);
    EXPECT_EQ(tagAt(*root, {5, 5}), 3);

    // A view that takes no touches takes none for its subviews either.
    over->setUserInteractionEnabled(false);
    EXPECT_EQ(tagAt(*root, {5, 5}), 1);
    over->setUserInteractionEnabled(true);
    child->setUserInteractionEnabled(false);
    EXPECT_EQ(tagAt(*root, {5, 5}), 2);

    root->setHidden(true);
    EXPECT_EQ(tagAt(*root, {5, 5}), kNothing);
}

TEST_F(ViewTest, PointInsideOverrideWidensTheHitArea) {
    auto root = makeView({0, 0, 100, 100});
    auto generous = std::make_shared<GenerousView>(Rect{20, 20, 20, 20});
    root->addSubview(generous);
    EXPECT_EQ(root->hitTest({15, 15}, nullptr), generous);
    EXPECT_EQ(root->hitTest({45, 45}, nullptr), generous);
    EXPECT_EQ(root->hitTest({5, 5}, nullptr), root);
    EXPECT_EQ(root->hitTest({55, 55}, nullptr), root);
}

TEST_F(ViewTest, ConvertsPointsBetweenViews) {
    auto root = makeView({0, 0, 200, 200});
    auto a = makeView({10, 20, 100, 100});
    auto b = makeView({5, 5, 50, 50});
    auto c = makeView({100, 100, 50, 50});
    root->addSubview(a);
    a->addSubview(b);
    root->addSubview(c);
    a->setBounds({0, 10, 100, 100});  // a shows its content scrolled up by 10

    EXPECT_EQ(b->convertPointToView({1, 1}, nullptr), (Point{16, 16}));
    EXPECT_EQ(b->convertPointToView({1, 1}, root.get()), (Point{16, 16}));
    EXPECT_EQ(b->convertPointToView({1, 1}, c.get()), (Point{-84, -84}));
    EXPECT_EQ(b->convertPointFromView({16, 16}, nullptr), (Point{1, 1}));
    EXPECT_EQ(c->convertPointFromView({1, 1}, b.get()), (Point{-84, -84}));
    EXPECT_EQ(a->convertPointFromView({0, 0}, root.get()), (Point{-10, -10}));
}

namespace {
struct AutoresizeCase {
    uint32_t mask;
    Rect start;
    Rect expected;  // after the superview grows from 100 x 100 to 200 x 160
};
}  // namespace

TEST_F(ViewTest, AutoresizingFollowsTheMask) {
    using namespace Autoresizing;
    const AutoresizeCase cases[] = {
        // Flexible width keeps both margins.
        {FlexibleWidth, {10, 10, 80, 20}, {10, 10, 180, 20}},
        // A flexible left margin keeps the view at the right edge.
        {FlexibleLeftMargin, {70, 10, 20, 20}, {170, 10, 20, 20}},
        // Both margins: shared by size, so a centred view stays centred.
        {FlexibleLeftMargin | FlexibleRightMargin, {40, 0, 20, 20}, {90, 0, 20, 20}},
        // Flexible width and height fill as before.
        {FlexibleWidth | FlexibleHeight, {0, 0, 100, 100}, {0, 0, 200, 160}},
        // Top margin, height and bottom margin share the 60 points by size (10 : 20 : 70).
        {FlexibleTopMargin | FlexibleHeight | FlexibleBottomMargin, {0, 10, 10, 20}, {0, 16, 10, 32}},
        // Flexible parts that are all empty share equally.
        {FlexibleLeftMargin | FlexibleWidth, {0, 0, 0, 10}, {50, 0, 50, 10}},
        // No mask: stays put.
        {None, {10, 10, 80, 20}, {10, 10, 80, 20}},
    };
    for (const auto& c : cases) {
        auto parent = makeView({0, 0, 100, 100});
        auto child = makeView(c.start);
        child->setAutoresizingMask(c.mask);
        parent->addSubview(child);
        parent->setFrame({0, 0, 200, 160});
        EXPECT_EQ(child->frame(), c.expected) << "mask " << c.mask;
    }
}

TEST_F(ViewTest, AutoresizingReachesDownTheTreeUnlessTurnedOff) {
    auto parent = makeView({0, 0, 100, 100});
    auto child = makeView({10, 10, 80, 80});
    auto grandchild = makeView({10, 10, 60, 60});
    child->setAutoresizingMask(Autoresizing::FlexibleWidth);
    grandchild->setAutoresizingMask(Autoresizing::FlexibleWidth);
    parent->addSubview(child);
    child->addSubview(grandchild);

    parent->setFrame({0, 0, 150, 100});
    EXPECT_EQ(child->frame(), (Rect{10, 10, 130, 80}));
    EXPECT_EQ(grandchild->frame(), (Rect{10, 10, 110, 60}));
    EXPECT_EQ(child->bounds(), (Rect{0, 0, 130, 80}));

    parent->setFrame({30, 30, 150, 100});  // moving without resizing changes nothing below
    EXPECT_EQ(child->frame(), (Rect{10, 10, 130, 80}));

    parent->setAutoresizesSubviews(false);
    parent->setFrame({0, 0, 300, 100});
    EXPECT_EQ(child->frame(), (Rect{10, 10, 130, 80}));
}

TEST_F(ViewTest, AppearancePropertiesAndLayer) {
    auto view = makeView({});
    view->setAlpha(1.5);
    EXPECT_EQ(view->alpha(), 1.0);
    view->setAlpha(-1);
    EXPECT_EQ(view->alpha(), 0.0);
    view->setClipsToBounds(true);
    EXPECT_TRUE(view->layer().masksToBounds());
    view->layer().setMasksToBounds(false);
    EXPECT_FALSE(view->clipsToBounds());
    EXPECT_EQ(view->layer().borderColor(), kit::Color::black());
}

TEST_F(ViewTest, AnimationChangesTheModelAtOnceAndCompletesAfterItsDuration) {
    auto view = makeView({0, 0, 10, 10});
    std::vector<bool> completions;
    double durationSeen = -1;
    View::animate(
        0.4,
        [&] {
            view->setFrame({50, 0, 10, 10});
            durationSeen = View::inheritedAnimationDuration();
        },
        [&](bool finished) { completions.push_back(finished); });
    EXPECT_EQ(view->frame(), (Rect{50, 0, 10, 10}));
    EXPECT_EQ(durationSeen, 0.4);
    EXPECT_EQ(View::inheritedAnimationDuration(), 0.0);

    runUntilIdle();
    advance(0.39);
    EXPECT_TRUE(completions.empty());
    advance(0.01);
    EXPECT_EQ(completions, std::vector<bool>{true});

    // No duration still completes in a later turn, never inside the call.
    View::animate(0, nullptr, [&](bool finished) { completions.push_back(finished); });
    EXPECT_EQ(completions.size(), 1u);
    runUntilIdle();
    EXPECT_EQ(completions.size(), 2u);
}

TEST_F(ViewTest, TransitionIsShownOnTheContainerUntilItEnds) {
    auto container = makeView({0, 0, 100, 50});
    auto oldAd = makeView({}, 1000), newAd = makeView({});
    container->addSubview(oldAd);
    std::vector<std::string> log;

    View::transition(
        container, kit::ViewTransition::CurlUp, 0.4,
        [&] {
            oldAd->setTag(0);
            newAd->setTag(1000);
            container->addSubview(newAd);
            oldAd->removeFromSuperview();
        },
        [&](bool) { log.push_back("first done"); });
    EXPECT_EQ(container->activeTransition(), kit::ViewTransition::CurlUp);
    EXPECT_EQ(container->viewWithTag(1000), newAd);

    advance(0.2);
    View::transition(container, kit::ViewTransition::FlipFromLeft, 0.4, nullptr,
                     [&](bool) { log.push_back("second done"); });
    advance(0.2);  // the first one ends; the second one is still on
    EXPECT_EQ(log, std::vector<std::string>{"first done"});
    EXPECT_EQ(container->activeTransition(), kit::ViewTransition::FlipFromLeft);
    advance(0.2);
    EXPECT_EQ(log, (std::vector<std::string>{"first done", "second done"}));
    EXPECT_EQ(container->activeTransition(), kit::ViewTransition::None);
}
