#include "kit/Application.h"
#include "kit/NotificationCenter.h"
#include "tests/support/SimTest.h"

using kit::Application;
using kit::ApplicationState;

namespace {
struct RecordingDelegate : kit::ApplicationDelegate {
    std::vector<std::string>& log;
    explicit RecordingDelegate(std::vector<std::string>& l) : log(l) {}
    bool applicationDidFinishLaunching(Application&, const kit::Value::Map&) override {
        log.push_back("delegate:launched");
        return true;
    }
    void applicationWillResignActive(Application&) override { log.push_back("delegate:resign"); }
    void applicationDidEnterBackground(Application&) override { log.push_back("delegate:background"); }
    void applicationWillEnterForeground(Application&) override { log.push_back("delegate:foreground"); }
    void applicationDidBecomeActive(Application&) override { log.push_back("delegate:active"); }
    void applicationWillTerminate(Application&) override { log.push_back("delegate:terminate"); }
};
}  // namespace

class ApplicationTest : public SimTest {
protected:
    void SetUp() override {
        SimTest::SetUp();
        notices = kit::NotificationCenter::defaultCenter().addObserver(
            "", &Application::shared(), [this](const kit::Notification& n) { log.push_back(n.name); });
    }
    Application& app() { return Application::shared(); }
    std::vector<std::string> log;
    kit::NotificationCenter::Subscription notices;
};

TEST_F(ApplicationTest, LifeCycleTellsTheDelegateThenPostsEachNotice) {
    app().setDelegate(std::make_shared<RecordingDelegate>(log));
    app().finishLaunching(kPort);
    EXPECT_EQ(app().state(), ApplicationState::Active);
    app().enterBackground(kPort);
    EXPECT_EQ(app().state(), ApplicationState::Background);
    app().becomeActive(kPort);
    app().terminate(kPort);
    using A = Application;
    EXPECT_EQ(log,
              (std::vector<std::string>{
                  "delegate:launched", A::kDidFinishLaunchingNotification, "delegate:active",
                  A::kDidBecomeActiveNotification, "delegate:resign", A::kWillResignActiveNotification,
                  "delegate:background", A::kDidEnterBackgroundNotification, "delegate:foreground",
                  A::kWillEnterForegroundNotification, "delegate:active", A::kDidBecomeActiveNotification,
                  "delegate:terminate", A::kWillTerminateNotification}));
}

TEST_F(ApplicationTest, TransitionsThatDoNotApplyDoNothing) {
    app().finishLaunching(kPort);
    log.clear();
    app().becomeActive(kPort);
    app().enterForeground(kPort);
    app().finishLaunching(kPort);
    EXPECT_TRUE(log.empty());
    app().resignActive(kPort);
    app().resignActive(kPort);
    EXPECT_EQ(log, (std::vector<std::string>{Application::kWillResignActiveNotification}));
    EXPECT_EQ(app().state(), ApplicationState::Inactive);
}

TEST_F(ApplicationTest, BackgroundTasksExpireOnceAndEndedOnesNever) {
    int expiredA = 0, expiredB = 0;
    auto a = app().beginBackgroundTask([&] { ++expiredA; });
    auto b = app().beginBackgroundTask([&] { ++expiredB; });
    EXPECT_NE(a, Application::kInvalidBackgroundTask);
    EXPECT_NE(a, b);
    app().endBackgroundTask(b);
    EXPECT_EQ(app().openBackgroundTaskCount(), 1u);
    app().expireBackgroundTasks(kPort);
    app().expireBackgroundTasks(kPort);
    EXPECT_EQ(expiredA, 1);
    EXPECT_EQ(expiredB, 0);
    EXPECT_EQ(app().openBackgroundTaskCount(), 0u);
}

TEST_F(ApplicationTest, OpensOnlyWhatSomethingHandlesWhateverTheSchemesCase) {
    sim().simApplication().setOpenableSchemes({"HTTP", "itms-apps"});
    EXPECT_TRUE(app().canOpenUrl(*kit::Url::parse("http://example.com")));
    EXPECT_TRUE(app().openUrl(*kit::Url::parse("itms-apps://store/app")));
    EXPECT_FALSE(app().openUrl(*kit::Url::parse("kindle://home")));
    EXPECT_EQ(sim().simApplication().openedUrls(), (std::vector<std::string>{"itms-apps://store/app"}));
}
