#include "ads/Network/ZEBClickTracker.h"
#include "ads/Network/ZEBClickTrackerCollection.h"
#include "ads/Request/ZEBRequestError.h"
#include "ads/Request/ZEBRequestParameters.h"
#include "ads/Statistics/ZEBStatistics.h"
#include "kit/FileManager.h"
#include "kit/UrlError.h"
#include "tests/support/AdContextTest.h"

#include <fmt/format.h>

using kit::sim::SimAnswer;

namespace {

kit::Url url(std::string_view text) {
    return *kit::Url::parse(text);
}

class Outcomes : public ZEBClickTrackerDelegate {
public:
    std::vector<std::string> events;
    std::shared_ptr<const kit::Error> error;
    void trackerDidRedirect(ZEBClickTracker&, const kit::Url& to) override {
        events.push_back("redirect " + to.absoluteString());
    }
    void trackerDidFailWithError(ZEBClickTracker&, std::shared_ptr<const kit::Error> e) override {
        events.push_back(e ? fmt::format("fail {}", e->code()) : "fail");
        error = std::move(e);
    }
};

using Events = std::vector<std::string>;

// On the ad server's own domain, so a tracked click leaves its ticket with the statistics.
const char* kClick = "http://127.0.0.1:8480/clk/ticket-1";

}  // namespace

class ZEBClickTrackerTest : public AdContextTest {
protected:
    kit::sim::SimHttp& http() { return sim().http(); }
    kit::sim::SimApplication& application() { return sim().simApplication(); }
    std::shared_ptr<ZEBClickTracker> tracker(std::string_view text = kClick) {
        auto t = std::make_shared<ZEBClickTracker>();
        t->setDelegate(outcomes);
        t->trackURL(url(text));
        return t;
    }
    // The impression ticket the statistics kept from tracked clicks; none when none was kept.
    std::optional<std::string> ticket() {
        auto click = ZEBStatistics::sharedStatistics().timingNamed(kZEBParameterPriorClickLatency);
        const kit::Value* value =
            click ? click->valueForKey(kZEBParameterPriorImpressionTicketString) : nullptr;
        if (!value || !value->string()) return std::nullopt;
        return *value->string();
    }
    size_t cacheFiles() {
        size_t n = 0;
        for (const auto& entry :
             std::filesystem::recursive_directory_iterator(kit::FileManager::defaultManager().cachesFolder()))
            n += entry.is_regular_file();
        return n;
    }

    std::shared_ptr<Outcomes> outcomes = std::make_shared<Outcomes>();
};

TEST_F(ZEBClickTrackerTest, ARedirectChainToAnotherSchemeEndsAsSuccessThereAndIsRecordedOnce) {
    ZEBStatistics::sharedStatistics().startTimingNamed(kZEBParameterPriorClickLatency);
    http().respond(kClick, SimAnswer::redirect("http://127.0.0.1:8480/hop"));
    http().respond("http://127.0.0.1:8480/hop", SimAnswer::redirect("https://store.test/app"));
    http().respond("https://store.test/app", SimAnswer::redirect("ITMS-APPS://itunes.test/app/id1"));
    auto t = tracker();
    EXPECT_EQ(application().openBackgroundTaskCount(), 1u);
    EXPECT_NE(t->backgroundTaskID(), kit::Application::kInvalidBackgroundTask);
    runUntilIdle();
    EXPECT_EQ(outcomes->events, Events{"redirect ITMS-APPS://itunes.test/app/id1"});
    EXPECT_TRUE(t->hasTracked());
    EXPECT_EQ(t->trackingURL()->absoluteString(), "ITMS-APPS://itunes.test/app/id1");
    EXPECT_EQ(ticket(), "/ticket-1") << "the source URL is what the statistics see";
    EXPECT_EQ(application().openBackgroundTaskCount(), 0u);
    EXPECT_EQ(t->backgroundTaskID(), kit::Application::kInvalidBackgroundTask);
}

TEST_F(ZEBClickTrackerTest, NotModifiedCountsAsTrackedAndFailuresAreNotRecorded) {
    ZEBStatistics::sharedStatistics().startTimingNamed(kZEBParameterPriorClickLatency);
    http().respond("http://127.0.0.1:8480/clk/down", SimAnswer::withStatus(503));
    http().respond("http://127.0.0.1:8480/clk/gone", SimAnswer::failing(kit::UrlError::kCannotFindHost));
    auto down = tracker("http://127.0.0.1:8480/clk/down");
    auto gone = tracker("http://127.0.0.1:8480/clk/gone");
    runUntilIdle();
    EXPECT_EQ(outcomes->events, (Events{"fail", fmt::format("fail {}", kit::UrlError::kCannotFindHost)}));
    EXPECT_FALSE(ticket());
    EXPECT_TRUE(down->hasTracked());
    EXPECT_EQ(application().openBackgroundTaskCount(), 0u);

    http().respond(kClick, SimAnswer::withStatus(304));
    auto unchanged = tracker();
    runUntilIdle();
    EXPECT_EQ(outcomes->events.back(), fmt::format("redirect {}", kClick));
    EXPECT_EQ(ticket(), "/ticket-1");
}

TEST_F(ZEBClickTrackerTest, TrackingAgainDropsTheEarlierUrlSilentlyAndResetCleansUp) {
    SimAnswer slow = SimAnswer::ok("pixel");
    slow.delay = 10;
    http().respond("http://t.test/first", slow);
    http().respond("http://t.test/second", SimAnswer::ok("pixel"));
    auto t = tracker("http://t.test/first");
    t->trackURL(std::nullopt);
    EXPECT_EQ(t->trackingURL()->absoluteString(), "http://t.test/first") << "none is ignored";
    t->trackURL(url("http://t.test/second"));
    EXPECT_EQ(application().openBackgroundTaskCount(), 1u) << "the first URL's task ended";
    clock().advanceUntilIdle();
    EXPECT_EQ(outcomes->events, Events{"redirect http://t.test/second"});
    EXPECT_EQ(cacheFiles(), 1u);

    t->reset();
    EXPECT_FALSE(t->hasTracked());
    EXPECT_FALSE(t->trackingURL());
    EXPECT_EQ(cacheFiles(), 0u) << "the tracking response's file is deleted";
}

TEST_F(ZEBClickTrackerTest, WhenBackgroundTimeRunsOutNothingIsReported) {
    SimAnswer slow = SimAnswer::ok("pixel");
    slow.delay = 30;
    http().respond(kClick, slow);
    std::weak_ptr<ZEBClickTracker> watch;
    {
        auto t = tracker();
        watch = t;
    }
    EXPECT_FALSE(watch.expired()) << "the background task keeps the tracker";
    advance(5);
    application().expireBackgroundTasks(kPort);
    clock().advanceUntilIdle();
    EXPECT_TRUE(outcomes->events.empty());
    EXPECT_TRUE(watch.expired());
    EXPECT_EQ(http().openExchanges(), 0u);
}

TEST_F(ZEBClickTrackerTest, WithoutBackgroundTasksEachTrackerCountsWhileItRuns) {
    application().setOffersBackgroundTasks(false);
    SimAnswer slow = SimAnswer::ok("pixel");
    slow.delay = 1;
    http().respond("http://t.test/a", slow);
    slow.delay = 2;
    http().respond("http://t.test/b", slow);
    EXPECT_FALSE(ZEBClickTracker::activeTrackings());
    auto a = tracker("http://t.test/a");
    auto b = tracker("http://t.test/b");
    auto idle = std::make_shared<ZEBClickTracker>();
    idle->reset();
    EXPECT_TRUE(ZEBClickTracker::activeTrackings()) << "a reset of an idle tracker ends nobody's tracking";
    EXPECT_EQ(application().openBackgroundTaskCount(), 0u);
    advance(1);
    EXPECT_TRUE(ZEBClickTracker::activeTrackings());
    advance(1);
    EXPECT_FALSE(ZEBClickTracker::activeTrackings());
}

TEST_F(ZEBClickTrackerTest, TheCollectionTracksOnlyUrlsAndLetsGoOfThemOnceDone) {
    http().respond("http://t.test/1", SimAnswer::ok(""));
    http().respond("http://t.test/2", SimAnswer::withStatus(404));
    auto collection = ZEBClickTrackerCollection::sharedInstance();
    EXPECT_EQ(collection, ZEBClickTrackerCollection::sharedInstance());
    collection->trackURLs(kit::Value::Array{"http://t.test/1", 42, kit::Value::Map{}, "not a url",
                                            "http://t.test/2", nullptr, true});
    EXPECT_EQ(collection->trackers().size(), 2u);
    EXPECT_EQ(http().sentRequests().size(), 0u);
    runUntilIdle();
    EXPECT_EQ(http().sentRequests().size(), 2u);
    EXPECT_TRUE(collection->trackers().empty()) << "success and failure alike are let go";

    SimAnswer slow = SimAnswer::ok("");
    slow.delay = 10;
    http().respond("http://t.test/slow", slow);
    auto own = std::make_shared<ZEBClickTrackerCollection>();
    own->trackURLs(std::vector<kit::Url>{url("http://t.test/slow")});
    own.reset();
    EXPECT_EQ(application().openBackgroundTaskCount(), 0u) << "destroying a collection resets its trackers";
    clock().advanceUntilIdle();
    EXPECT_EQ(http().requestCount("http://t.test/slow"), 0u) << "stopped before it was sent";
}

TEST_F(ZEBClickTrackerTest, AClickUrlStringCanCarryTheClickParameters) {
    auto signals = std::make_shared<ScriptedSignals>();
    signals->clickText = "sig";
    ZEBSignalsCollector::setShared(signals);
    http().respond("http://127.0.0.1:8480/aclk", SimAnswer::ok(""));
    auto collection = ZEBClickTrackerCollection::sharedInstance();
    collection->trackURLStringAppendSpamSignals("http://127.0.0.1:8480/aclk?ai=abc", true);
    collection->trackURLStringAppendSpamSignals("http://127.0.0.1:8480/aclk?ai=plain", false);
    runUntilIdle();
    ASSERT_EQ(http().sentRequests().size(), 2u);
    EXPECT_EQ(signals->lastAi, "abc");
    EXPECT_EQ(http().sentRequests()[0].request.url().absoluteString(),
              "http://127.0.0.1:8480/aclk?ai=abc&sig");
    EXPECT_EQ(*ZEBStatistics::sharedStatistics().statistics().numberForKey(kZEBParameterPriorClickCount), 1);
    EXPECT_EQ(http().sentRequests()[1].request.url().absoluteString(), "http://127.0.0.1:8480/aclk?ai=plain");
    EXPECT_TRUE(collection->trackers().empty());

    // A creative's command may carry any text: one that is no URL leaves nothing behind to pile up.
    collection->trackURLStringAppendSpamSignals("not a url", true);
    EXPECT_TRUE(collection->trackers().empty());
}

TEST_F(ZEBClickTrackerTest, TheRefusalOfANonHttpRedirectIsAnAdClientError) {
    auto t = std::make_shared<ZEBClickTracker>();
    auto file = ZEBCachedFile::createWithDelegateURL(t, url(kClick));
    EXPECT_FALSE(t->cachedFileShouldRedirectToURL(*file, url("HTTPS://x.test/")));
    auto refusal = t->cachedFileShouldRedirectToURL(*file, url("mailto:someone@x.test"));
    ASSERT_TRUE(refusal);
    EXPECT_EQ(refusal->domain(), kZEBErrorDomain);
    EXPECT_EQ(refusal->code(), 0);
    EXPECT_TRUE(refusal->userInfo().empty());
    EXPECT_TRUE(t->hasTracked());
}
