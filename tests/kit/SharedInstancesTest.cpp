#include "kit/Application.h"
#include "kit/RunLoop.h"
#include "kit/SharedInstances.h"
#include "tests/support/SimTest.h"

#include <atomic>
#include <string>
#include <thread>
#include <vector>

using Log = std::vector<std::string>;

namespace {
Log* gLog = nullptr;  // where the instances below write, for the test that runs

struct Counter {
    int value = 0;
};
struct Lower {
    ~Lower() { gLog->push_back("~Lower"); }
};
// Uses Lower while it is made, and again as it goes.
struct Upper {
    Upper() { kit::shared<Lower>(); }
    ~Upper() {
        gLog->push_back("~Upper");
        kit::shared<Lower>();
        kit::RunLoop::main().post([] {});  // the platform is still there
    }
};
struct Slow {
    static inline std::atomic<int> made{0};
    Slow() {
        ++made;
        std::this_thread::yield();
    }
};
}  // namespace

class SharedInstancesTest : public SimTest {
protected:
    void SetUp() override {
        SimTest::SetUp();
        gLog = &log;
    }
    Log log;
};

TEST_F(SharedInstancesTest, OneInstancePerTypeUntilThePlatformGoes) {
    kit::shared<Counter>().value = 3;
    EXPECT_EQ(kit::shared<Counter>().value, 3);
    EXPECT_TRUE(kit::SharedInstances::current().contains<Counter>());
    SimTest::TearDown();
    SimTest::SetUp();
    EXPECT_FALSE(kit::SharedInstances::current().contains<Counter>());
    EXPECT_EQ(kit::shared<Counter>().value, 0) << "a fresh platform is a fresh world";
}

TEST_F(SharedInstancesTest, InstancesGoWithThePlatformTheLastMadeFirst) {
    kit::shared<Upper>();
    EXPECT_TRUE(kit::SharedInstances::current().contains<Lower>());
    SimTest::TearDown();
    EXPECT_EQ(log, (Log{"~Upper", "~Lower"})) << "what an instance uses while it is made outlives it";
    SimTest::SetUp();
}

TEST_F(SharedInstancesTest, AnInstanceCanBePutInPlaceOrTakenAway) {
    auto own = std::make_shared<Counter>(Counter{42});
    kit::SharedInstances::current().set(own);
    EXPECT_EQ(&kit::shared<Counter>(), own.get());
    kit::SharedInstances::current().set<Counter>(nullptr);
    EXPECT_EQ(kit::shared<Counter>().value, 0);
}

TEST_F(SharedInstancesTest, ThreadsRacingForTheFirstUseMakeOneInstance) {
    std::vector<std::thread> threads;
    std::vector<Slow*> seen(8);
    for (size_t i = 0; i < seen.size(); ++i) threads.emplace_back([&, i] { seen[i] = &kit::shared<Slow>(); });
    for (auto& thread : threads) thread.join();
    EXPECT_EQ(Slow::made, 1);
    for (Slow* instance : seen) EXPECT_EQ(instance, seen[0]);
}

// What the application holds, what is pending and what is shared all go while the platform is
// still installed, so that their destructors can still reach it.
TEST_F(SharedInstancesTest, ShutdownLetsGoOfTheDelegatePendingCallsAndSharedInstancesInThatOrder) {
    struct Delegate : kit::ApplicationDelegate {
        ~Delegate() override { gLog->push_back("~Delegate"); }
    };
    struct Pending {
        ~Pending() {
            gLog->push_back("~Pending");
            kit::shared<Counter>();
        }
    };
    kit::shared<Lower>();
    sim().application().setDelegate(std::make_shared<Delegate>());
    kit::RunLoop::main().postAfter(5, [pending = std::make_shared<Pending>()] {});
    SimTest::TearDown();
    EXPECT_EQ(log, (Log{"~Delegate", "~Pending", "~Lower"}));
    SimTest::SetUp();
}
