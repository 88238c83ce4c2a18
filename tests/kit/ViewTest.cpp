#include "kit/View.h"

#include "tests/support/SimTest.h"

using kit::Point;
using kit::Rect;
using kit::View;
using Views = std::vector<std::shared_ptr<View>>;

namespace {

std::shared_ptr<View> makeView(Rect frame, int tag = 0) {
    auto view = std::make_shared<View>(frame);
    view->setTag(tag);
    return view;
}

// The tag of the view hit at `p`, or -1.
int tagAt(View& root, Point p) {
    auto hit = root.hitTest(p, nullptr);
    return hit ? hit->tag() : -1;
}

// Builds its content in its constructor, before anyone owns it.
class Panel : public View {
public:
    Panel() : label(makeView({})) { addSubview(label); }
    std::shared_ptr<View> label;
};

class ViewTest : public SimTest {};

}  // namespace

TEST_F(ViewTest, SubviewsMoveReorderAndFindByTag) {
    auto parent = makeView({}, 9);
    auto a = makeView({}, 1), b = makeView({}, 2), c = makeView({}, 2);
    parent->addSubview(a);
    parent->addSubview(b);
    parent->insertSubviewAtIndex(c, 1);
    EXPECT_EQ(parent->subviews(), (Views{a, c, b}));
    parent->addSubview(a);  // already there: to the front, not twice
    parent->sendSubviewToBack(b);
    EXPECT_EQ(parent->subviews(), (Views{b, c, a}));
    EXPECT_EQ(parent->viewWithTag(9), parent);  // self first, then depth first, back to front
    EXPECT_EQ(parent->viewWithTag(2), b);

    auto other = makeView({});
    other->addSubview(a);  // leaves its old superview
    EXPECT_EQ(parent->subviews(), (Views{b, c}));
    EXPECT_EQ(a->superview(), other);
    b->addSubview(parent);  // never its own ancestor
    EXPECT_TRUE(b->subviews().empty());

    auto panel = std::make_shared<Panel>();
    EXPECT_EQ(panel->label->superview(), panel);
    std::weak_ptr<View> watch = panel;
    auto label = panel->label;
    panel.reset();  // not kept alive by its subview, and not left dangling there
    EXPECT_TRUE(watch.expired());
    EXPECT_EQ(label->superview(), nullptr);
}

TEST_F(ViewTest, HitTestFindsTheFrontmostDeepestVisibleInteractiveView) {
    auto root = makeView({0, 0, 100, 100}, 9);
    auto back = makeView({0, 0, 60, 60}, 1);
    auto front = makeView({40, 40, 60, 60}, 2);
    auto child = makeView({10, 10, 10, 10}, 3);
    root->addSubview(back);
    root->addSubview(front);
    front->addSubview(child);
    back->addSubview(makeView({50, 0, 100, 100}, 4));  // reaches outside its superview

    EXPECT_EQ(tagAt(*root, {45, 45}), 2);
    EXPECT_EQ(tagAt(*root, {55, 55}), 3);
    EXPECT_EQ(tagAt(*root, {55, 20}), 4);
    EXPECT_EQ(tagAt(*root, {70, 20}), 9);    // not hit outside its superview
    EXPECT_EQ(tagAt(*root, {100, 50}), -1);  // the right edge is outside

    // Hidden, (nearly) transparent or non-interactive views and their subviews are passed over.
    front->setHidden(true);
    EXPECT_EQ(tagAt(*root, {55, 55}), 4);
    front->setHidden(false);
    front->setAlpha(0.01);
    EXPECT_EQ(tagAt(*root, {55, 55}), 4);
    front->setAlpha(0.02);
    EXPECT_EQ(tagAt(*root, {55, 55}), 3);
    front->setUserInteractionEnabled(false);
    EXPECT_EQ(tagAt(*root, {55, 55}), 4);
    front->setUserInteractionEnabled(true);
    child->setUserInteractionEnabled(false);
    EXPECT_EQ(tagAt(*root, {55, 55}), 2);

    front->setBounds({10, 10, 60, 60});  // scrolled: its subviews shift
    child->setUserInteractionEnabled(true);
    EXPECT_EQ(tagAt(*root, {45, 45}), 3);
    EXPECT_EQ(child->convertPointToView({0, 0}, nullptr), (Point{40, 40}));
    EXPECT_EQ(back->convertPointFromView({0, 0}, child.get()), (Point{40, 40}));
}

TEST_F(ViewTest, AutoresizingFollowsTheMask) {
    using namespace kit::Autoresizing;
    struct Case {
        uint32_t mask;
        Rect start;
        Rect expected;  // after the superview grows from 100 x 100 to 200 x 160
    };
    const Case cases[] = {
        {FlexibleWidth, {10, 10, 80, 20}, {10, 10, 180, 20}},  // keeps both margins
        {FlexibleLeftMargin, {70, 10, 20, 20}, {170, 10, 20, 20}},
        {FlexibleLeftMargin | FlexibleRightMargin, {40, 0, 20, 20}, {90, 0, 20, 20}},  // stays centred
        // Shared by size, 10 : 20 : 70.
        {FlexibleTopMargin | FlexibleHeight | FlexibleBottomMargin, {0, 10, 10, 20}, {0, 16, 10, 32}},
        {FlexibleLeftMargin | FlexibleWidth, {0, 0, 0, 10}, {50, 0, 50, 10}},  // all empty: equal shares
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

    // Down the tree, unless a superview turns it off.
    auto parent = makeView({0, 0, 100, 100});
    auto child = makeView({10, 10, 80, 80});
    auto grandchild = makeView({10, 10, 60, 60});
    child->setAutoresizingMask(FlexibleWidth);
    grandchild->setAutoresizingMask(FlexibleWidth);
    parent->addSubview(child);
    child->addSubview(grandchild);
    parent->setFrame({0, 0, 150, 100});
    EXPECT_EQ(grandchild->frame(), (Rect{10, 10, 110, 60}));
    parent->setAutoresizesSubviews(false);
    parent->setFrame({0, 0, 300, 100});
    EXPECT_EQ(child->frame(), (Rect{10, 10, 130, 80}));
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
    advance(0.39);
    EXPECT_TRUE(completions.empty());
    advance(0.01);
    EXPECT_EQ(completions, std::vector<bool>{true});

    View::animate(0, nullptr, [&](bool finished) { completions.push_back(finished); });
    EXPECT_EQ(completions.size(), 1u);  // never inside the call
    runUntilIdle();
    EXPECT_EQ(completions.size(), 2u);
}

TEST_F(ViewTest, TransitionShowsOnTheContainerUntilTheLatestOneEnds) {
    auto container = makeView({0, 0, 100, 50});
    std::vector<std::string> log;
    View::transition(
        container, kit::ViewTransition::CurlUp, 0.4, [&] { container->addSubview(makeView({}, 1000)); },
        [&](bool) { log.push_back("first"); });
    EXPECT_EQ(container->activeTransition(), kit::ViewTransition::CurlUp);
    EXPECT_NE(container->viewWithTag(1000), nullptr);
    advance(0.2);
    View::transition(container, kit::ViewTransition::FlipFromLeft, 0.4, nullptr,
                     [&](bool) { log.push_back("second"); });
    advance(0.2);
    EXPECT_EQ(log, std::vector<std::string>{"first"});
    EXPECT_EQ(container->activeTransition(), kit::ViewTransition::FlipFromLeft);
    advance(0.2);
    EXPECT_EQ(log, (std::vector<std::string>{"first", "second"}));
    EXPECT_EQ(container->activeTransition(), kit::ViewTransition::None);
}
