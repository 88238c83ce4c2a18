#include "app/AppDelegate.h"
#include "app/MainInterface.h"
#include "app/SoundButton.h"
#include "app/ViewController.h"
#include "kit/ClassRegistry.h"
#include "kit/FileManager.h"
#include "kit/Window.h"
#include "tests/support/SimTest.h"

#include <fmt/format.h>

class SoundboardTest : public SimTest {
protected:
    // Sixteen stand-in clips, each with its own bytes.
    void installClips(int count = 16) {
        auto& files = kit::FileManager::defaultManager();
        for (int i = 1; i <= count; ++i)
            ASSERT_TRUE(files.writeAtomically(files.resourcesFolder() / fmt::format("Sound{}.mp3", i),
                                              fmt::format("clip {}", i)));
    }
    // The screen as the application shows it.
    std::shared_ptr<kit::Window> launch() {
        auto interface =
            kit::ClassRegistry::create<kit::InterfaceFile>(kit::InterfaceFile::kMainInterfaceName);
        EXPECT_TRUE(interface);
        auto window = interface->instantiateWindow();
        window->makeKeyAndVisible();
        return window;
    }
    std::shared_ptr<ViewController> controller(const kit::Window& window) {
        return std::dynamic_pointer_cast<ViewController>(window.rootViewController());
    }
    kit::Point centreOf(const kit::View& view) {
        kit::Rect f = view.frame();
        return view.superview()->convertPointToView({f.minX() + f.width() / 2, f.minY() + f.height() / 2},
                                                    nullptr);
    }
    std::vector<std::string> heardFiles() {
        std::vector<std::string> out;
        for (const auto& play : sim().sounds().audiblePlays())
            out.push_back(std::filesystem::path(play.path).filename().string());
        return out;
    }
};

TEST_F(SoundboardTest, BannerSlotFollowsTheIdiomAndAnUnknownIdiomMeansHandset) {
    auto& device = sim().device();
    device.setUserInterfaceIdiom(kPort, kit::UserInterfaceIdiom::Pad);
    auto tablet = ViewController::bannerSlotForDevice(device);
    EXPECT_EQ(tablet.adUnitID, "a1f9e8d7c6b5a49");
    EXPECT_EQ(tablet.frame, (kit::Rect{128, 658, 768, 90}));
    for (auto idiom :
         {std::optional(kit::UserInterfaceIdiom::Phone), std::optional<kit::UserInterfaceIdiom>()}) {
        device.setUserInterfaceIdiom(kPort, idiom);
        auto handset = ViewController::bannerSlotForDevice(device);
        EXPECT_EQ(handset.adUnitID, "a1b2c3d4e5f6a7b");
        EXPECT_EQ(handset.frame, (kit::Rect{80, 256, 320, 50}));
    }
}

TEST_F(SoundboardTest, LaunchingNeedsTheDelegateByNameAndNothingElse) {
    auto delegate = kit::ClassRegistry::create<kit::ApplicationDelegate>("AppDelegate");
    ASSERT_TRUE(delegate);
    EXPECT_TRUE(delegate->applicationDidFinishLaunching(kit::Application::shared(), {}));
    EXPECT_EQ(delegate->window(), nullptr);
}

TEST_F(SoundboardTest, SixteenTitledButtonsSitAboveTheBannerSlotInEveryIdiom) {
    for (bool tablet : {false, true}) {
        sim().device().setUserInterfaceIdiom(
            kPort, tablet ? kit::UserInterfaceIdiom::Pad : kit::UserInterfaceIdiom::Phone);
        sim().screen().setBounds(kPort, tablet ? kit::Rect{0, 0, 1024, 768} : kit::Rect{0, 0, 480, 320});
        auto window = launch();
        auto vc = controller(*window);
        kit::Rect banner = ViewController::bannerSlotForDevice(sim().device()).frame;
        std::set<std::string> titles;
        for (size_t i = 0; i < ViewController::kButtonCount; ++i) {
            auto button = vc->soundButton(i);
            ASSERT_TRUE(button);
            EXPECT_EQ(button->superview(), vc->view());
            kit::Rect f = button->frame();
            EXPECT_LE(f.maxY(), banner.minY()) << "button " << i + 1 << " covers the banner";
            EXPECT_LE(f.maxX(), window->bounds().maxX());
            for (size_t j = 0; j < i; ++j) {
                kit::Rect g = vc->soundButton(j)->frame();
                bool apart = f.maxX() <= g.minX() || g.maxX() <= f.minX() || f.maxY() <= g.minY() ||
                             g.maxY() <= f.minY();
                EXPECT_TRUE(apart) << "buttons " << i + 1 << " and " << j + 1 << " overlap";
            }
            auto title = button->titleForState(kit::ControlState::Normal);
            ASSERT_TRUE(title);
            titles.insert(*title);
            for (uint32_t state :
                 {kit::ControlState::Highlighted, kit::ControlState::Disabled, kit::ControlState::Selected})
                EXPECT_EQ(button->titleForState(state), title);
        }
        EXPECT_EQ(titles.size(), 16u) << "every button has its own title";
        EXPECT_EQ(vc->soundButton(14)->titleForState(0), "Music 1");
        EXPECT_EQ(vc->soundButton(15)->titleForState(0), "Music 2");
    }
}

TEST_F(SoundboardTest, EachButtonPlaysItsOwnClipWhenTheFingerLandsNotWhenItLiftsAndAgainAtOnce) {
    installClips();
    auto window = launch();
    auto vc = controller(*window);
    std::vector<std::string> expected;
    for (size_t i = 0; i < ViewController::kButtonCount; ++i) {
        kit::Point p = centreOf(*vc->soundButton(i));
        window->touchDown(kPort, p);
        expected.push_back(fmt::format("Sound{}.mp3", i + 1));
        EXPECT_EQ(heardFiles(), expected) << "on touch-down of button " << i + 1;
        window->touchUp(kPort, p);
        EXPECT_EQ(heardFiles().size(), expected.size()) << "nothing more on touch-up";
    }
    // A quick second touch plays again while the first still sounds.
    kit::Point p = centreOf(*vc->soundButton(14));
    window->touchDown(kPort, p);
    window->touchUp(kPort, p);
    advance(0.05);
    window->touchDown(kPort, p);
    expected.insert(expected.end(), 2, "Sound15.mp3");
    EXPECT_EQ(heardFiles(), expected);
}

TEST_F(SoundboardTest, MissingClipsAndButtonsWithoutASoundStaySilent) {
    installClips(1);  // only Sound1.mp3 exists
    auto window = launch();
    auto vc = controller(*window);
    EXPECT_NE(vc->soundButton(0)->theSound()->soundID(), 0u);
    EXPECT_EQ(vc->soundButton(1)->theSound()->soundID(), 0u);
    window->touchDown(kPort, centreOf(*vc->soundButton(1)));
    window->touchUp(kPort, centreOf(*vc->soundButton(1)));
    EXPECT_TRUE(heardFiles().empty());

    auto silent = std::make_shared<SoundButton>(kit::Rect{0, 0, 40, 40});
    EXPECT_EQ(silent->theSound(), nullptr);
    silent->sendActionsForControlEvents(kit::ControlEvent::TouchDown);
    EXPECT_TRUE(sim().sounds().plays().size() == 1 && sim().sounds().plays()[0].id == 0)
        << "only the missing clip's empty play";
}

TEST_F(SoundboardTest, ANewSoundReplacesAndReleasesTheOldOne) {
    installClips(2);
    SoundButton button({0, 0, 40, 40});
    button.setupSound("Sound1.mp3");
    auto first = button.theSound()->soundID();
    button.setupSound("Sound2.mp3");
    EXPECT_EQ(sim().sounds().disposed(), (std::vector<kit::SoundService::SoundId>{first}));
    button.playSound();
    EXPECT_EQ(heardFiles(), (std::vector<std::string>{"Sound2.mp3"}));
}

TEST_F(SoundboardTest, ButtonsLookTheSameWhetherMadeInCodeOrByTheInterface) {
    installClips();
    auto window = launch();
    auto inCode = std::make_shared<SoundButton>(kit::Rect{0, 0, 40, 40});
    inCode->setupSound("Sound4.mp3");
    for (SoundButton* b : {inCode.get(), controller(*window)->soundButton(3).get()}) {
        EXPECT_TRUE(b->showsTouchWhenHighlighted());
        EXPECT_EQ(b->backgroundColor(), (kit::Color{1, 1, 1, 0.5}));
        EXPECT_EQ(b->titleColorForState(kit::ControlState::Highlighted), kit::Color::black());
        EXPECT_EQ(b->layer().cornerRadius(), 8.0);
        EXPECT_TRUE(b->layer().masksToBounds());
        EXPECT_EQ(b->layer().borderWidth(), 1.0);
        EXPECT_EQ(b->allControlEvents(), kit::ControlEvent::TouchDown);
        size_t before = heardFiles().size();
        b->sendActionsForControlEvents(kit::ControlEvent::TouchDown);
        EXPECT_EQ(heardFiles().size(), before + 1) << "set up exactly once: one play per touch";
    }
}

TEST_F(SoundboardTest, OnlyLandscapeIsAccepted) {
    ViewController vc;
    for (int orientation = -1; orientation <= 6; ++orientation) {
        bool portrait = orientation == kit::InterfaceOrientation::Portrait ||
                        orientation == kit::InterfaceOrientation::PortraitUpsideDown;
        EXPECT_EQ(vc.shouldAutorotateToInterfaceOrientation(orientation), !portrait) << orientation;
    }
}
