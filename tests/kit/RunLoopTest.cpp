#include "kit/RunLoop.h"
#include "kit/Timer.h"
#include "tests/support/SimTest.h"

#include <atomic>
#include <string>
#include <thread>
#include <vector>

using kit::RunLoop;
using kit::Timer;
using Log = std::vector<std::string>;

class RunLoopTest : public SimTest {
protected:
    RunLoop& loop() { return RunLoop::main(); }
    Log log;
};

TEST_F(RunLoopTest, CallsRunByDeadlineThenInSchedulingOrderEachInATurnOfItsOwn) {
    double start = loop().now();
    std::vector<double> times;
    loop().postAfter(2, [&] { log.push_back("late"); });
    loop().postAfter(1, [&] {
        log.push_back("first");
        times.push_back(loop().now() - start);
        loop().post([&] { log.push_back("posted by first"); });
    });
    loop().postAfter(1, [&] { log.push_back("second"); });
    loop().post([&] {
        loop().post([&] { log.push_back("posted now"); });
        log.push_back("now");
    });
    EXPECT_TRUE(log.empty()) << "posting never runs a call at once";
    advance(1.5);
    EXPECT_EQ(log, (Log{"now", "posted now", "first", "second", "posted by first"}));
    EXPECT_EQ(times, std::vector<double>{1});
    advance(1);
    EXPECT_EQ(log.back(), "late");
}

TEST_F(RunLoopTest, CancelledCallsNeverRunAndLetGoOfWhatTheyHold) {
    auto held = std::make_shared<int>(7);
    std::weak_ptr<int> watch = held;
    auto id = loop().postAfter(1, [held] {});
    held.reset();
    RunLoop::CallId second = 0;
    loop().postAfter(1, [&] { loop().cancel(second); });
    second = loop().postAfter(1, [&] { log.push_back("second"); });
    EXPECT_TRUE(loop().cancel(id));
    EXPECT_FALSE(loop().cancel(id));
    EXPECT_TRUE(watch.expired());
    advance(5);
    EXPECT_TRUE(log.empty()) << "a call may cancel a later one due at the same moment";
}

TEST_F(RunLoopTest, KeptAliveObjectsLiveToTheEndOfTheirTurn) {
    std::weak_ptr<int> watch;
    bool aliveAfterRelease = false;
    loop().post([&] {
        auto object = std::make_shared<int>(1);
        watch = object;
        loop().keepAlive(object);
        object.reset();
        aliveAfterRelease = !watch.expired();
    });
    loop().post([&] { log.push_back(watch.expired() ? "released" : "still alive"); });
    runUntilIdle();
    EXPECT_TRUE(aliveAfterRelease);
    EXPECT_EQ(log, Log{"released"});

    // Outside any turn, the next pass of the loop ends it.
    auto object = std::make_shared<int>(2);
    watch = object;
    loop().keepAlive(std::move(object));
    EXPECT_FALSE(watch.expired());
    runUntilIdle();
    EXPECT_TRUE(watch.expired());
}

TEST_F(RunLoopTest, InvokeOnMainAndWaitRunsOnTheMainThreadWhileTheCallerWaits) {
    std::atomic<bool> returned{false};
    bool ranOnMain = false;
    bool callerWasWaiting = false;
    std::thread worker([&] {
        loop().invokeOnMainAndWait([&] {
            ranOnMain = loop().isMainThread();
            callerWasWaiting = !returned.load();
        });
        returned = true;
    });
    clock().waitForCrossThreadCall();
    worker.join();
    EXPECT_TRUE(ranOnMain);
    EXPECT_TRUE(callerWasWaiting);

    bool ranAtOnce = false;
    loop().invokeOnMainAndWait([&] { ranAtOnce = true; });
    EXPECT_TRUE(ranAtOnce) << "on the main thread it runs in place";
}

TEST_F(RunLoopTest, OneShotTimerFiresOnceWhetherByTimeOrByHand) {
    int fired = 0;
    auto timer = Timer::scheduled(5, false, [&](Timer&) { ++fired; });
    advance(4.9);
    EXPECT_EQ(fired, 0);
    advance(0.1);
    EXPECT_EQ(fired, 1);
    EXPECT_FALSE(timer->isValid());

    auto byHand = Timer::scheduled(10, false, [&](Timer&) { ++fired; });
    byHand->fire();
    auto invalidated = Timer::scheduled(1, true, [&](Timer&) { ++fired; });
    invalidated->invalidate();
    advance(100);
    EXPECT_EQ(fired, 2);
    EXPECT_FALSE(byHand->isValid());
}

TEST_F(RunLoopTest, RepeatingTimerKeepsItsRhythmUntilInvalidatedFromItsOwnCallback) {
    double start = loop().now();
    std::vector<double> times;
    auto captured = std::make_shared<int>(0);
    std::weak_ptr<int> watchCapture = captured;
    std::weak_ptr<Timer> watchTimer = Timer::scheduled(2, true, [&, captured](Timer& t) {
        times.push_back(loop().now() - start);
        if (times.size() == 3) t.invalidate();
    });
    captured.reset();
    EXPECT_FALSE(watchTimer.expired()) << "nobody else holds the timer: the run loop does";
    advance(20);
    EXPECT_EQ(times, (std::vector<double>{2, 4, 6}));
    EXPECT_TRUE(watchTimer.expired());
    EXPECT_TRUE(watchCapture.expired());
}
