#include "kit/RunLoop.h"
#include "kit/Timer.h"
#include "tests/support/SimTest.h"

#include <atomic>
#include <string>
#include <thread>
#include <vector>

using kit::RunLoop;
using kit::Timer;

class RunLoopTest : public SimTest {
protected:
    RunLoop& loop() { return RunLoop::main(); }
    std::vector<std::string> log;
};

TEST_F(RunLoopTest, CallsRunInDeadlineOrderAndEqualDeadlinesInSchedulingOrder) {
    loop().postAfter(2, [&] { log.push_back("late"); });
    loop().postAfter(1, [&] { log.push_back("first"); });
    loop().postAfter(1, [&] { log.push_back("second"); });
    loop().post([&] { log.push_back("now"); });
    advance(1.5);
    EXPECT_EQ(log, (std::vector<std::string>{"now", "first", "second"}));
    advance(1);
    EXPECT_EQ(log.back(), "late");
}

TEST_F(RunLoopTest, EachCallRunsAtItsOwnDeadline) {
    double start = loop().now();
    std::vector<double> seen;
    loop().postAfter(0.25, [&] { seen.push_back(loop().now() - start); });
    loop().postAfter(3, [&] { seen.push_back(loop().now() - start); });
    advance(10);
    EXPECT_EQ(seen, (std::vector<double>{0.25, 3}));
    EXPECT_DOUBLE_EQ(loop().now() - start, 10);
}

TEST_F(RunLoopTest, ZeroDelayCallRunsAfterTheCurrentCallbackReturns) {
    loop().post([&] {
        loop().post([&] { log.push_back("posted"); });
        log.push_back("rest of callback");
    });
    EXPECT_TRUE(log.empty()) << "posting never runs the call at once";
    runUntilIdle();
    EXPECT_EQ(log, (std::vector<std::string>{"rest of callback", "posted"}));
}

TEST_F(RunLoopTest, ACallPostedWithZeroDelayRunsAfterCallsAlreadyDueAtTheSameTime) {
    loop().postAfter(1, [&] {
        log.push_back("a");
        loop().post([&] { log.push_back("posted by a"); });
    });
    loop().postAfter(1, [&] { log.push_back("b"); });
    advance(1);
    EXPECT_EQ(log, (std::vector<std::string>{"a", "b", "posted by a"}));
}

TEST_F(RunLoopTest, CancelledCallsNeverRun) {
    int target = 0, other = 0;
    auto id = loop().postAfter(1, [&] { log.push_back("cancelled by id"); });
    loop().postAfter(
        1, [&] { log.push_back("target 1"); }, &target);
    loop().post([&] { log.push_back("target 2"); }, &target);
    loop().postAfter(
        1, [&] { log.push_back("other"); }, &other);
    EXPECT_TRUE(loop().cancel(id));
    EXPECT_FALSE(loop().cancel(id));
    EXPECT_EQ(loop().cancelCallsForTarget(&target), 2u);
    advance(5);
    EXPECT_EQ(log, (std::vector<std::string>{"other"}));
}

TEST_F(RunLoopTest, ACallCanCancelALaterCallDueAtTheSameMoment) {
    RunLoop::CallId second = 0;
    loop().postAfter(1, [&] { loop().cancel(second); });
    second = loop().postAfter(1, [&] { log.push_back("second"); });
    advance(2);
    EXPECT_TRUE(log.empty());
}

TEST_F(RunLoopTest, CancellingReleasesWhatTheCallHolds) {
    auto held = std::make_shared<int>(7);
    std::weak_ptr<int> watch = held;
    auto id = loop().postAfter(1, [held] {});
    held.reset();
    EXPECT_FALSE(watch.expired());
    loop().cancel(id);
    EXPECT_TRUE(watch.expired());
}

TEST_F(RunLoopTest, KeptAliveObjectLivesToTheEndOfTheTurnAndNoLonger) {
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
    EXPECT_EQ(log, (std::vector<std::string>{"released"}));
}

TEST_F(RunLoopTest, ObjectKeptAliveOutsideAnyTurnIsReleasedByTheNextPass) {
    auto object = std::make_shared<int>(1);
    std::weak_ptr<int> watch = object;
    loop().keepAlive(std::move(object));
    EXPECT_FALSE(watch.expired());
    runUntilIdle();
    EXPECT_TRUE(watch.expired());
}

TEST_F(RunLoopTest, InvokeOnMainAndWaitRunsOnTheMainThreadBeforeTheCallerGoesOn) {
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
    EXPECT_TRUE(returned);
}

TEST_F(RunLoopTest, InvokeOnMainAndWaitOnTheMainThreadRunsAtOnce) {
    bool ran = false;
    loop().invokeOnMainAndWait([&] { ran = true; });
    EXPECT_TRUE(ran);
}

TEST_F(RunLoopTest, PendingCallsShowWhatIsScheduled) {
    int target = 0;
    loop().postAfter(
        2, [] {}, &target);
    loop().post([] {});
    auto pending = loop().pendingCalls();
    ASSERT_EQ(pending.size(), 2u);
    EXPECT_EQ(pending[0].target, nullptr);
    EXPECT_EQ(pending[1].target, &target);
    EXPECT_DOUBLE_EQ(pending[1].deadline - pending[0].deadline, 2);
}

// ---- Timers

TEST_F(RunLoopTest, OneShotTimerFiresOnceAndIsThenInvalid) {
    int fired = 0;
    auto timer = Timer::scheduled(5, false, [&](Timer&) { ++fired; });
    advance(4.9);
    EXPECT_EQ(fired, 0);
    advance(0.1);
    EXPECT_EQ(fired, 1);
    EXPECT_FALSE(timer->isValid());
    advance(100);
    EXPECT_EQ(fired, 1);
}

TEST_F(RunLoopTest, InvalidatedTimersNeverFire) {
    int fired = 0;
    auto oneShot = Timer::scheduled(1, false, [&](Timer&) { ++fired; });
    auto repeating = Timer::scheduled(1, true, [&](Timer&) { ++fired; });
    oneShot->invalidate();
    repeating->invalidate();
    advance(10);
    EXPECT_EQ(fired, 0);
}

TEST_F(RunLoopTest, RepeatingTimerFiresEachIntervalUntilInvalidatedFromItsOwnCallback) {
    double start = RunLoop::main().now();
    std::vector<double> times;
    Timer::scheduled(2, true, [&](Timer& t) {
        times.push_back(RunLoop::main().now() - start);
        if (times.size() == 3) t.invalidate();
    });
    advance(20);
    EXPECT_EQ(times, (std::vector<double>{2, 4, 6}));
}

TEST_F(RunLoopTest, TheRunLoopKeepsAScheduledTimerAliveAndLetsGoWhenItIsDone) {
    auto captured = std::make_shared<int>(0);
    std::weak_ptr<int> watchCapture = captured;
    std::weak_ptr<Timer> watchTimer = Timer::scheduled(1, false, [captured](Timer&) { ++*captured; });
    captured.reset();
    EXPECT_FALSE(watchTimer.expired()) << "nobody else holds the timer, the run loop does";
    advance(1);
    EXPECT_TRUE(watchTimer.expired());
    EXPECT_TRUE(watchCapture.expired());
}

TEST_F(RunLoopTest, FiringByHandRunsTheCallbackAndSpendsAOneShotTimer) {
    int fired = 0;
    auto timer = Timer::scheduled(10, false, [&](Timer&) { ++fired; });
    timer->fire();
    EXPECT_EQ(fired, 1);
    EXPECT_FALSE(timer->isValid());
    advance(20);
    EXPECT_EQ(fired, 1);
}
