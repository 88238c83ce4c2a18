#include "kit/Button.h"
#include "kit/Image.h"
#include "kit/ImageView.h"
#include "kit/View.h"
#include "kit/ViewPeer.h"
#include "kit/ViewPeerFactory.h"
#include "kit/Window.h"
#include "kit/sim/SimPlatform.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

using kit::Rect;
using kit::View;
using kit::ViewPeer;

namespace {

const char* changeName(ViewPeer::Change change) {
    switch (change) {
        case ViewPeer::Change::Frame:
            return "frame";
        case ViewPeer::Change::Hidden:
            return "hidden";
        case ViewPeer::Change::Alpha:
            return "alpha";
        case ViewPeer::Change::Stacking:
            return "stacking";
        case ViewPeer::Change::Layer:
            return "layer";
        case ViewPeer::Change::BackgroundColor:
            return "background";
        case ViewPeer::Change::Content:
            return "content";
        case ViewPeer::Change::Transition:
            return "transition";
    }
    return "?";
}

// Writes "create 1", "destroy 1", "frame 1" (views named by their tags) into one journal.
class RecordingPeer : public ViewPeer {
  public:
    RecordingPeer(View& view, std::vector<std::string>& journal) : view_(view), journal_(journal) {}
    ~RecordingPeer() override { journal_.push_back(fmt::format("destroy {}", view_.tag())); }
    void viewDidChange(Change change) override {
        std::string line = fmt::format("{} {}", changeName(change), view_.tag());
        if (View::inheritedAnimationDuration() > 0)
            line += fmt::format(" over {}", View::inheritedAnimationDuration());
        journal_.push_back(line);
    }

  private:
    View& view_;
    std::vector<std::string>& journal_;
};

class RecordingFactory : public kit::ViewPeerFactory {
  public:
    std::vector<std::string> journal;
    int live = 0;

    std::unique_ptr<ViewPeer> createPeer(View& view) override {
        // A peer is made under its superview's, as a widget is made inside its parent.
        auto superview = view.superview();
        bool parentReady = !superview || superview->peer();
        journal.push_back(fmt::format("create {}{}", view.tag(), parentReady ? "" : " (no parent peer)"));
        ++live;
        struct Counted : RecordingPeer {
            Counted(View& v, RecordingFactory& f) : RecordingPeer(v, f.journal), factory(f) {}
            ~Counted() override { --factory.live; }
            RecordingFactory& factory;
        };
        return std::make_unique<Counted>(view, *this);
    }

    std::vector<std::string> take() { return std::exchange(journal, {}); }
};

class PeerPlatform : public kit::sim::SimPlatform {
  public:
    RecordingFactory factory;
    kit::ViewPeerFactory* viewPeerFactory() override { return &factory; }
};

class ViewPeerTest : public ::testing::Test {
  protected:
    void SetUp() override {
        auto platform = std::make_unique<PeerPlatform>();
        factory_ = &platform->factory;
        kit::Platform::install(std::move(platform));
    }
    void TearDown() override { kit::Platform::uninstall(); }

    RecordingFactory& factory() { return *factory_; }
    using Journal = std::vector<std::string>;

    static std::shared_ptr<View> makeView(int tag, Rect frame = {0, 0, 10, 10}) {
        auto view = std::make_shared<View>(frame);
        view->setTag(tag);
        return view;
    }

    std::shared_ptr<kit::Window> makeWindow() {
        auto window = std::make_shared<kit::Window>(Rect{0, 0, 480, 320});
        window->setTag(100);
        return window;
    }

  private:
    RecordingFactory* factory_ = nullptr;
};

}  // namespace

TEST_F(ViewPeerTest, PeersAppearWhenTheWindowGoesOnScreenParentsFirst) {
    auto window = makeWindow();
    auto a = makeView(1), b = makeView(2), a1 = makeView(11);
    window->addSubview(a);
    window->addSubview(b);
    a->addSubview(a1);
    a->setAlpha(0.5);
    EXPECT_TRUE(factory().take().empty());  // no peers before the window is on screen
    EXPECT_EQ(a->peer(), nullptr);

    window->makeKeyAndVisible();
    EXPECT_EQ(factory().take(), (Journal{"create 100", "create 1", "create 11", "create 2"}));
    EXPECT_NE(a1->peer(), nullptr);

    window->makeKeyAndVisible();  // already on screen: nothing new
    EXPECT_TRUE(factory().take().empty());
}

TEST_F(ViewPeerTest, PeersFollowViewsIntoAndOutOfTheWindow) {
    auto window = makeWindow();
    auto a = makeView(1), b = makeView(2);
    window->addSubview(a);
    window->addSubview(b);
    window->makeKeyAndVisible();
    factory().take();

    auto subtree = makeView(3);
    subtree->addSubview(makeView(31));
    subtree->addSubview(makeView(32));
    a->addSubview(subtree);
    EXPECT_EQ(factory().take(), (Journal{"create 3", "create 31", "create 32"}));

    // Moving to another superview makes new peers; the old ones go children first.
    b->addSubview(subtree);
    EXPECT_EQ(factory().take(),
              (Journal{"destroy 32", "destroy 31", "destroy 3", "create 3", "create 31", "create 32"}));

    subtree->removeFromSuperview();
    EXPECT_EQ(factory().take(), (Journal{"destroy 32", "destroy 31", "destroy 3"}));
    EXPECT_EQ(subtree->peer(), nullptr);

    // A tree outside any window has none, whatever it does.
    subtree->addSubview(makeView(33));
    subtree->setFrame({0, 0, 50, 50});
    EXPECT_TRUE(factory().take().empty());

    window.reset();
    EXPECT_EQ(factory().take(), (Journal{"destroy 2", "destroy 1", "destroy 100"}));
    EXPECT_EQ(factory().live, 0);
}

TEST_F(ViewPeerTest, PeersHearEachChangeOnce) {
    auto window = makeWindow();
    auto view = makeView(1);
    auto child = makeView(2);
    auto front = makeView(3);
    window->addSubview(view);
    view->addSubview(child);
    window->addSubview(front);
    window->makeKeyAndVisible();
    factory().take();

    view->setFrame({5, 5, 10, 10});  // same size: the child is not laid out
    view->setHidden(true);
    view->setHidden(true);  // unchanged: not reported
    view->setAlpha(0.5);
    view->setBackgroundColor(kit::Color::white());
    view->layer().setCornerRadius(8);
    view->layer().setBorderWidth(1);
    view->setClipsToBounds(true);
    window->bringSubviewToFront(view);
    window->bringSubviewToFront(view);  // already in front
    view->setBounds({0, 20, 10, 10});   // scrolling moves the child on screen
    EXPECT_EQ(factory().take(), (Journal{"frame 1", "hidden 1", "alpha 1", "background 1", "layer 1",
                                         "layer 1", "layer 1", "stacking 1", "frame 1", "frame 2"}));

    View::animate(0.4, [&] { view->setAlpha(1); });
    EXPECT_EQ(factory().take(), (Journal{"alpha 1 over 0.4"}));
    View::transition(view, kit::ViewTransition::FlipFromRight, 0.4, nullptr);
    EXPECT_EQ(factory().take(), (Journal{"transition 1"}));
    kit::sim::SimPlatform::current().clock().advance(0.4);
    EXPECT_EQ(factory().take(), (Journal{"transition 1"}));
}

TEST_F(ViewPeerTest, ButtonAndImageViewPeersHearOfNewContent) {
    auto window = makeWindow();
    auto button = std::make_shared<kit::Button>(Rect{0, 0, 100, 40});
    button->setTag(1);
    auto imageView = std::make_shared<kit::ImageView>(Rect{0, 50, 20, 20});
    imageView->setTag(2);
    window->addSubview(button);
    window->addSubview(imageView);
    window->makeKeyAndVisible();
    factory().take();

    button->setTitleForState("Play", kit::ControlState::Normal);
    button->setTitleColorForState(kit::Color::black(), kit::ControlState::Normal);
    button->setShowsTouchWhenHighlighted(true);
    window->touchDown({10, 10});  // highlighted
    window->touchUp({10, 10});
    imageView->setImage(kit::Image::fromRgba(std::vector<uint8_t>(4, 0xFF), 1, 1));
    EXPECT_EQ(factory().take(),
              (Journal{"content 1", "content 1", "content 1", "content 1", "content 1", "content 2"}));
}
