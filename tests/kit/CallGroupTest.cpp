#include "kit/CallGroup.h"
#include "kit/RunLoop.h"
#include "tests/support/SimTest.h"

#include <memory>
#include <string>
#include <vector>

using kit::CallGroup;
using Log = std::vector<std::string>;

class CallGroupTest : public SimTest {
protected:
    Log log;
};

TEST_F(CallGroupTest, DestroyingTheGroupCancelsItsPendingCallsAndNoOthers) {
    auto held = std::make_shared<int>(1);
    std::weak_ptr<int> watch = held;
    auto group = std::make_unique<CallGroup>();
    group->post([&] { log.push_back("ran"); });
    group->postAfter(5, [&, held] { log.push_back("late"); });
    kit::RunLoop::main().postAfter(5, [&] { log.push_back("other"); });
    held.reset();
    runUntilIdle();
    EXPECT_EQ(log, Log{"ran"});
    EXPECT_EQ(group->pendingCount(), 1u) << "a call that ran is no longer pending";
    group.reset();
    EXPECT_TRUE(watch.expired());
    advance(10);
    EXPECT_EQ(log, (Log{"ran", "other"}));
}

TEST_F(CallGroupTest, CancelAllCountsAndTheGroupStaysUsable) {
    CallGroup group;
    auto first = group.postAfter(1, [&] { log.push_back("first"); });
    group.postAfter(2, [&] { log.push_back("second"); });
    EXPECT_TRUE(group.cancel(first));
    EXPECT_FALSE(group.cancel(first));
    EXPECT_EQ(group.cancelAll(), 1u);
    EXPECT_EQ(group.cancelAll(), 0u);
    group.post([&] { log.push_back("after"); });
    advance(5);
    EXPECT_EQ(log, Log{"after"});
}

// The usual shape: an object posts through its own group and captures itself raw.
TEST_F(CallGroupTest, ACallMayDestroyTheObjectThatOwnsItsGroup) {
    struct Owner {
        Log& log;
        std::unique_ptr<Owner>* slot;
        CallGroup calls;
    };
    std::unique_ptr<Owner> owner(new Owner{log, nullptr, {}});
    owner->slot = &owner;
    Owner* raw = owner.get();
    raw->calls.post([raw] {
        raw->log.push_back("going");
        raw->slot->reset();
    });
    raw->calls.postAfter(1, [raw] { raw->log.push_back("never"); });
    advance(2);
    EXPECT_EQ(log, Log{"going"});
}

TEST_F(CallGroupTest, AGroupThatOutlivesItsPlatformPostsToTheNextOne) {
    auto group = std::make_unique<CallGroup>();
    group->postAfter(1, [&] { log.push_back("never"); });
    SimTest::TearDown();  // the run loop goes, and its calls with it
    EXPECT_EQ(group->pendingCount(), 0u);
    SimTest::SetUp();
    group->postAfter(1, [&] { log.push_back("on the new platform"); });
    advance(2);
    EXPECT_EQ(log, Log{"on the new platform"});
}
