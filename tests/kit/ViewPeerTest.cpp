#include "kit/Button.h"
#include "kit/View.h"
#include "kit/Window.h"
#include "kit/port/ViewPeer.h"
#include "kit/port/ViewPeerFactory.h"
#include "kit/sim/SimPlatform.h"
#include "tests/support/SimTest.h"

#include <fmt/format.h>

using kit::Rect;
using kit::View;
using kit::ViewPeer;
using Journal = std::vector<std::string>;

namespace {

constexpr const char* kChangeNames[] = {"frame", "hidden",     "alpha",   "stacking",
                                        "layer", "background", "content", "transition"};

// Journals "create 1", "frame 1", "destroy 1": views are named by their tags.
class RecordingFactory : public kit::ViewPeerFactory {
public:
    Journal journal;

    std::unique_ptr<ViewPeer> createPeer(View& view) override {
        // Made under the superview's peer, as a widget is made inside its parent.
        auto superview = view.superview();
        journal.push_back(
            fmt::format("create {}{}", view.tag(), superview && !superview->peer(kPort) ? " orphan" : ""));
        return std::make_unique<Peer>(view, journal);
    }
    Journal take() { return std::exchange(journal, {}); }

private:
    class Peer : public ViewPeer {
    public:
        Peer(View& view, Journal& journal) : view_(view), journal_(journal) {}
        ~Peer() override { journal_.push_back(fmt::format("destroy {}", view_.tag())); }
        void viewDidChange(Change change) override {
            double duration = View::inheritedAnimationDuration();
            journal_.push_back(fmt::format("{} {}{}", kChangeNames[static_cast<int>(change)], view_.tag(),
                                           duration > 0 ? fmt::format(" over {}", duration) : ""));
        }

    private:
        View& view_;
        Journal& journal_;
    };
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
        factory = &platform->factory;
        kit::Platform::install(std::move(platform));
        window = std::make_shared<kit::Window>(Rect{0, 0, 480, 320});
        window->setTag(100);
    }
    void TearDown() override {
        window.reset();
        kit::Platform::uninstall();
    }

    template <class T = View>
    static std::shared_ptr<T> make(int tag) {
        auto view = std::make_shared<T>(Rect{0, 0, 10, 10});
        view->setTag(tag);
        return view;
    }

    RecordingFactory* factory = nullptr;
    std::shared_ptr<kit::Window> window;
};

}  // namespace

TEST_F(ViewPeerTest, PeersLiveWhileTheirViewIsInAWindowOnScreen) {
    auto a = make(1), b = make(2);
    window->addSubview(a);
    window->addSubview(b);
    a->addSubview(make(11));
    EXPECT_TRUE(factory->take().empty());  // not on screen yet

    window->makeKeyAndVisible();
    EXPECT_EQ(factory->take(), (Journal{"create 100", "create 1", "create 11", "create 2"}));

    auto subtree = make(3);
    subtree->addSubview(make(31));
    a->addSubview(subtree);
    EXPECT_EQ(factory->take(), (Journal{"create 3", "create 31"}));
    b->addSubview(subtree);  // a move makes new peers, after the old ones went, children first
    EXPECT_EQ(factory->take(), (Journal{"destroy 31", "destroy 3", "create 3", "create 31"}));
    subtree->removeFromSuperview();
    EXPECT_EQ(factory->take(), (Journal{"destroy 31", "destroy 3"}));
    EXPECT_EQ(subtree->peer(kPort), nullptr);
    subtree->setFrame({0, 0, 50, 50});  // outside a window nothing is told
    EXPECT_TRUE(factory->take().empty());

    window.reset();
    EXPECT_EQ(factory->take(), (Journal{"destroy 2", "destroy 11", "destroy 1", "destroy 100"}));
}

TEST_F(ViewPeerTest, PeersAreToldOfEachChange) {
    auto view = make(1), child = make(2), front = make(3);
    auto button = make<kit::Button>(4);
    window->addSubview(view);
    view->addSubview(child);
    window->addSubview(front);
    window->addSubview(button);
    window->makeKeyAndVisible();
    factory->take();

    view->setFrame({5, 5, 10, 10});
    view->setHidden(true);
    view->setHidden(true);  // unchanged: not told
    view->setAlpha(0.5);
    view->setBackgroundColor(kit::Color::white());
    view->layer().setCornerRadius(8);
    view->setClipsToBounds(true);
    window->bringSubviewToFront(view);
    view->setBounds({0, 20, 10, 10});  // scrolling moves the child on screen
    EXPECT_EQ(factory->take(), (Journal{"frame 1", "hidden 1", "alpha 1", "background 1", "layer 1",
                                        "layer 1", "stacking 1", "frame 1", "frame 2"}));

    View::animate(0.4, [&] { view->setAlpha(1); });
    View::transition(view, kit::ViewTransition::FlipFromRight, 0.4, nullptr);
    kit::sim::SimPlatform::current().clock().advance(0.4);
    EXPECT_EQ(factory->take(), (Journal{"alpha 1 over 0.4", "transition 1", "transition 1"}));

    button->setTitleForState("Play", kit::ControlState::Normal);
    window->touchDown(kPort, {2, 2});  // highlighted
    window->touchUp(kPort, {2, 2});
    EXPECT_EQ(factory->take(), (Journal{"content 4", "content 4", "content 4"}));
}
