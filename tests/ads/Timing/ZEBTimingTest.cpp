#include "ads/Timing/ZEBTiming.h"
#include "ads/Timing/ZEBTimingManager.h"

#include "kit/Application.h"
#include "kit/UserDefaults.h"
#include "tests/support/SimTest.h"

using kit::Value;

class ZEBTimingTest : public SimTest {};

TEST_F(ZEBTimingTest, StopwatchRunsUntilEndedAndRestartsClean) {
    ZEBTiming timing("prl");
    EXPECT_EQ(timing.elapsedMilliseconds(), 0u);
    timing.end();
    EXPECT_EQ(timing.endSeconds(), 0) << "ending a timing never started does nothing";
    EXPECT_FALSE(timing.isActive());
    timing.start();
    advance(0.25);
    EXPECT_TRUE(timing.isActive());
    EXPECT_EQ(timing.elapsedMilliseconds(), 250u);
    timing.end();
    advance(1);
    EXPECT_EQ(timing.elapsedMillisecondsString(), "250");
    timing.end();
    EXPECT_EQ(timing.elapsedMilliseconds(), 1250u) << "ending again moves the end";
    timing.start();
    EXPECT_TRUE(timing.isActive());
    EXPECT_EQ(timing.elapsedMilliseconds(), 0u);
    timing.reset();
    EXPECT_EQ(timing.startSeconds(), 0);
    EXPECT_EQ(timing.elapsedMilliseconds(), 0u);
}

TEST_F(ZEBTimingTest, RepresentationRoundTripsWithAndWithoutValues) {
    ZEBTiming timing("pcl");
    timing.start();
    advance(2);
    timing.end();
    EXPECT_FALSE(timing.dictionaryRepresentation().contains("userData"));
    timing.setValueForKey("abc", "pai");
    auto copy = timing.copy();
    EXPECT_EQ(copy->category(), "pcl");
    EXPECT_EQ(copy->startSeconds(), timing.startSeconds());
    EXPECT_EQ(copy->endSeconds(), timing.endSeconds());
    EXPECT_EQ(copy->keysAndValues(), (Value::Map{{"pai", "abc"}}));
    copy->removeValueForKey("pai");
    EXPECT_EQ(timing.valueForKey("pai")->string()->size(), 3u) << "the copy has its own values";

    // Stored clock values from before a restart of the machine give a bounded answer.
    auto stale =
        ZEBTiming::createWithDictionaryRepresentation({{"category", "x"}, {"start", 1e12}, {"end", 0}});
    EXPECT_EQ(stale->elapsedMilliseconds(), 0u);
    auto odd = ZEBTiming::createWithDictionaryRepresentation({{"start", "no"}, {"userData", 3}});
    EXPECT_EQ(odd->category(), "");
    EXPECT_EQ(odd->startSeconds(), 0);
    EXPECT_TRUE(odd->keysAndValues().empty());
}

TEST_F(ZEBTimingTest, ManagerReplacesByCategoryAndSavesOnTermination) {
    {
        ZEBTimingManager manager("t");
        auto first = manager.addTimingWithCategory("a");
        auto second = manager.addTimingWithCategory("a");
        EXPECT_EQ(manager.timings().size(), 1u);
        EXPECT_EQ(manager.timingForCategory("a"), second);
        second->start();
        second->setValueForKey(5, "n");
        manager.addTimingWithCategory("gone");
        manager.removeTimingsForCategories({"gone", "never"});
        manager.addTiming(nullptr);
        EXPECT_EQ(manager.categories(), std::vector<std::string>{"a"});
        EXPECT_EQ(kit::UserDefaults::standard().find("vantor_timing_t"), nullptr);
        sim().application().terminate(kPort);
        ASSERT_NE(kit::UserDefaults::standard().map("vantor_timing_t"), nullptr);
    }
    ZEBTimingManager reloaded("t");
    auto a = reloaded.timingForCategory("a");
    ASSERT_TRUE(a);
    EXPECT_TRUE(a->isActive());
    EXPECT_EQ(*a->valueForKey("n"), Value(5));
    reloaded.removeAllTimings();
    reloaded.synchronize();
    EXPECT_TRUE(kit::UserDefaults::standard().map("vantor_timing_t")->empty())
        << "removed timings leave the store";
}

TEST_F(ZEBTimingTest, LoadingSkipsWrongTypedEntriesAndUsesTheStoredKey) {
    kit::UserDefaults::standard().set(
        "vantor_timing_t",
        Value::Map{{"good", Value::Map{{"category", "other"}, {"start", 1001.0}, {"end", 1002.5}}},
                   {"bad", "text"},
                   {"worse", Value::Array{1}}});
    ZEBTimingManager manager("t");
    EXPECT_EQ(manager.categories(), std::vector<std::string>{"good"});
    EXPECT_EQ(manager.timingForCategory("good")->elapsedMilliseconds(), 1500u);
    kit::UserDefaults::standard().set("vantor_timing_u", 17);
    EXPECT_TRUE(ZEBTimingManager("u").timings().empty());
}
