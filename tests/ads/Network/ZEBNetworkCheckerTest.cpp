#include "ads/Network/ZEBNetworkChecker.h"

#include "ads/Utility/ZEBDeployment.h"
#include "tests/support/AdContextTest.h"

using kit::Reachability;

class ZEBNetworkCheckerTest : public AdContextTest {};

TEST_F(ZEBNetworkCheckerTest, TypeStaysUnknownUntilTheFirstReport) {
    ZEBNetworkChecker& checker = ZEBNetworkChecker::sharedChecker();
    EXPECT_TRUE(checker.isEnabled());
    EXPECT_EQ(sim().network().lastHostName(), ZEBDeployment::current().reachabilityHostName);
    EXPECT_EQ(checker.networkType(), 0);
    runUntilIdle();
    EXPECT_EQ(checker.networkType(), 0);

    sim().network().setFlags(Reachability::kReachable | Reachability::kIsWWAN);
    EXPECT_EQ(checker.changeCount(), 0) << "reports arrive on the run loop";
    runUntilIdle();
    EXPECT_EQ(checker.networkType(), 3);
    EXPECT_EQ(checker.networkTypeString(), "ed");
    sim().network().setFlags(Reachability::kReachable);
    runUntilIdle();
    EXPECT_EQ(checker.networkTypeString(), "wi");
    sim().network().setFlags(Reachability::kIsWWAN);
    runUntilIdle();
    EXPECT_EQ(checker.networkType(), 1);
    EXPECT_EQ(checker.networkTypeString(), std::nullopt);
    EXPECT_EQ(checker.changeCount(), 3);
}

TEST_F(ZEBNetworkCheckerTest, DisablingDropsTheHandleAndPendingReports) {
    ZEBNetworkChecker& checker = ZEBNetworkChecker::sharedChecker();
    sim().network().setFlags(Reachability::kReachable);
    runUntilIdle();
    sim().network().setFlags(Reachability::kReachable | Reachability::kIsWWAN);
    checker.setEnabled(false);
    EXPECT_FALSE(checker.isEnabled());
    EXPECT_EQ(checker.networkType(), 0);
    EXPECT_EQ(sim().network().scheduledCount(), 0u);
    runUntilIdle();
    EXPECT_EQ(checker.networkType(), 0) << "a report in flight is not delivered";
    checker.setEnabled(true);
    checker.setEnabled(true);
    EXPECT_EQ(sim().network().scheduledCount(), 1u);
}

// A checker of its own goes with its handle, and a report in flight finds nothing to call.
TEST_F(ZEBNetworkCheckerTest, ACheckerThatGoesTakesItsWatchWithIt) {
    auto checker = std::make_unique<ZEBNetworkChecker>();
    checker->setEnabled(true);
    sim().network().setFlags(Reachability::kReachable);
    checker.reset();
    runUntilIdle();
    EXPECT_EQ(sim().network().scheduledCount(), 0u);
}
