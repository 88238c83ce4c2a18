#include "ads/Statistics/ZEBStatistics.h"

#include "ads/Utility/ZEBDeployment.h"
#include "kit/UserDefaults.h"
#include "tests/support/AdContextTest.h"

#include <sys/wait.h>
#include <unistd.h>

#include <fmt/format.h>

#include <cstdlib>
#include <filesystem>

using kit::Url;
using kit::Value;

namespace {
Url url(std::string_view text) {
    return *Url::parse(text);
}
constexpr const char* kStoreVariable = "QUIBLO_TEST_STATISTICS_STORE";
}  // namespace

class ZEBStatisticsTest : public AdContextTest {
protected:
    ZEBStatistics& stats() { return ZEBStatistics::sharedStatistics(); }
};

TEST_F(ZEBStatisticsTest, FirstRequestThenSecondRequestClearsOneShotValues) {
    stats().incrementAdRequestCount();
    stats().startTimingNamed("ptime");
    stats().startTimingNamed("ppcl");  // there was no click: it goes unsent
    advance(0.5);
    Value::Map first = stats().parameters();
    EXPECT_EQ(
        first,
        (Value::Map{{"session_id", fmt::format("{}", stats().sessionId())}, {"preqs", 1}, {"ptime", "500"}}));
    EXPECT_EQ(stats().timingNamed("ppcl"), nullptr);

    stats().incrementClickCount();
    stats().incrementPageNavigationCount();
    stats().incrementSSLPageNavigationCount();
    stats().setBreakOutToSafari();
    stats().setAppOpenInterstitialNoFill();
    stats().setAppOpenInterstitialTimeOut();
    stats().startTimingNamed("prl");
    advance(0.1);
    stats().endTimingNamed("prl");
    Value::Map second = stats().parameters();
    for (const char* key : {"pcc", "plpnc", "plpsnc", "pcbo", "aoi_nofill", "aoi_timedout"})
        EXPECT_EQ(*second.find(key), Value(1)) << key;
    EXPECT_EQ(*second.find("prl"), Value("100"));
    EXPECT_EQ(*second.find("ptime"), Value("600"));

    Value::Map third = stats().parameters();
    EXPECT_EQ(third.size(), 3u) << Value(third).description();
    EXPECT_TRUE(third.contains("ptime")) << "the time since the first request is never removed";
    EXPECT_EQ(*stats().statistics().numberForKey("pcc"), 0) << "counters reset to 0, flags are removed";
    EXPECT_FALSE(stats().statistics().statistics().contains("pcbo"));
}

TEST_F(ZEBStatisticsTest, ClickCountsStartsTimingsAndCarriesTheClickString) {
    auto signals = std::make_shared<ScriptedSignals>();
    signals->clickText = "sig";
    ZEBSignalsCollector::setShared(signals);

    Url blank = url("about:blank");
    EXPECT_EQ(stats().urlForClick(blank), blank);
    EXPECT_EQ(stats().urlForClick(url("vmsg://x/open?u=1")).absoluteString(), "vmsg://x/open?u=1");
    EXPECT_FALSE(stats().statistics().numberForKey("pcc"));

    stats().startTimingNamed("ppcl");
    advance(3);
    Url clicked = stats().urlForClick(url("http://ads.example/click?ai=AB%20C&x=1"));
    EXPECT_EQ(clicked.absoluteString(), "http://ads.example/click?ai=AB%20C&x=1&sig");
    EXPECT_EQ(signals->lastAi, "AB%20C");
    EXPECT_TRUE(stats().isTimingClick());
    EXPECT_EQ(*stats().statistics().numberForKey("pcc"), 1);

    stats().addClickTrackingURL(url(ZEBDeployment::current().adServerURL + "/clk/ticket-7"));
    advance(0.2);
    Value::Map p = stats().parameters();
    EXPECT_EQ(*p.find("pai"), Value("AB%20C"));
    EXPECT_EQ(*p.find("pit"), Value("/ticket-7"));
    EXPECT_EQ(*p.find("pcl"), Value("200"));
    EXPECT_EQ(*p.find("ppcl"), Value("3000"));
    EXPECT_EQ(*p.find("pcrl"), Value("0"));
    EXPECT_FALSE(p.contains("date")) << "the click's date stays inside";

    // Without "ai" the click still counts, but nothing is appended or sent as "pai".
    Url plain = url("http://ads.example/click?x=1");
    EXPECT_EQ(stats().urlForClick(plain), plain);
    p = stats().parameters();
    EXPECT_FALSE(p.contains("pai"));
    EXPECT_EQ(*p.find("pcc"), Value(1));
}

TEST_F(ZEBStatisticsTest, TheImpressionTicketComesOnlyFromTheAdServersOwnClickPaths) {
    const std::string server = ZEBDeployment::current().adServerURL;
    const struct {
        std::string url;
        std::optional<std::string> ticket;
    } cases[] = {
        {server + "/clk", std::nullopt},  // too short to hold a ticket after its four characters
        {server + "/clk1", "1"},
        {server + "/clk/ticket-7", "/ticket-7"},
        {"http://elsewhere.example/clk/other", std::nullopt},
    };
    for (const auto& c : cases) {
        stats().urlForClick(url("http://ads.example/c"));  // a fresh click timing
        stats().addClickTrackingURL(url(c.url));
        const Value* ticket = stats().timingNamed("pcl")->valueForKey("pit");
        EXPECT_EQ(ticket ? std::optional<std::string>(*ticket->string()) : std::nullopt, c.ticket) << c.url;
    }
}

TEST_F(ZEBStatisticsTest, BackgroundedClickReportsTimeSinceTheClick) {
    stats().urlForClick(url("http://ads.example/c"));
    stats().endTimingNamed("pcl");
    stats().setClickBackgroundedApp();
    advance(7.25);
    Value::Map p = stats().parameters();
    EXPECT_EQ(*p.find("pcl"), Value(7250)) << "a number now, not the timing's text";
    EXPECT_EQ(*p.find("pclb"), Value(1));
    EXPECT_FALSE(stats().parameters().contains("pclb"));
}

TEST_F(ZEBStatisticsTest, CoreStoreIgnoresWrongTypesAndSurvivesACorruptStore) {
    kit::UserDefaults::standard().set("vantor_stats_mine", Value::Map{{"preqs", "many"}, {"pcc", 2.9}});
    ZEBStatisticsCore core("mine");
    EXPECT_EQ(core.addValueNumberForKey(1, "preqs"), 1) << "a text counts as no number";
    EXPECT_EQ(core.addValueNumberForKey(1, "pcc"), 3);
    core.setNumberForKey("5", "n");
    core.setStringForKey(5, "s");
    core.setDateForKey(Value::Date{10}, "d");
    core.setArrayForKey(Value::Map{}, "a");
    core.setDictionaryForKey(Value::Array{}, "m");
    EXPECT_EQ(core.statistics(), (Value::Map{{"preqs", 1}, {"pcc", 3}, {"d", Value::Date{10}}}));
    EXPECT_EQ(core.stringForKey("d"), std::nullopt);
    core.setNumberForKey(std::numeric_limits<int64_t>::max(), "big");
    EXPECT_EQ(core.addValueNumberForKey(1, "big"), std::numeric_limits<int64_t>::max());

    kit::UserDefaults::standard().set("vantor_stats_broken", "not a map");
    ZEBStatisticsCore broken("broken");
    EXPECT_TRUE(broken.statistics().empty());
}

// Run by the test below in a process of its own: counts what a first launch of the application
// would, and exits as the application does.
TEST_F(ZEBStatisticsTest, WritesTheStoreAsAFirstProcess) {
    const char* store = std::getenv(kStoreVariable);
    if (!store) GTEST_SKIP() << "runs only inside the restart test";
    sim().userDefaults() = kit::UserDefaults(store);
    stats().incrementAdRequestCount();
    stats().incrementAdRequestCount();
    stats().incrementClickCount();
    stats().startTimingNamed("ptime");
    advance(4);
    stats().synchronize();
    stats().startTimingNamed("prl");
    sim().application().terminate(kPort);
}

TEST_F(ZEBStatisticsTest, StoreSurvivesARestartOfTheProcess) {
    auto store = sim().folder() / "settings.bin";
    pid_t child = fork();
    ASSERT_NE(child, -1);
    if (child == 0) {
        setenv(kStoreVariable, store.c_str(), 1);
        execl("/proc/self/exe", "ads_tests", "--gtest_filter=ZEBStatisticsTest.WritesTheStoreAsAFirstProcess",
              static_cast<char*>(nullptr));
        _exit(127);
    }
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << status;

    sim().userDefaults() = kit::UserDefaults(store);
    ZEBStatistics& second = stats();
    EXPECT_EQ(second.adRequestCount(), 2);
    EXPECT_EQ(*second.statistics().numberForKey("pcc"), 1);
    auto ptime = second.timingNamed("ptime");
    ASSERT_TRUE(ptime);
    EXPECT_TRUE(ptime->isActive());
    ASSERT_TRUE(second.timingNamed("prl")) << "timings started after the last synchronize are saved at exit";
    Value::Map p = second.parameters();
    EXPECT_EQ(*p.find("preqs"), Value(2));
    EXPECT_EQ(*p.find("pcc"), Value(1));
    EXPECT_NE(*p.find("session_id"), Value("0"));
}
