#pragma once

#include "kit/RunLoop.h"
#include "kit/port/RunLoopImplementation.h"

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>

namespace kit::sim {

// Virtual time for tests. Nothing runs by itself: the test moves the clock with advance() and
// lets due calls run with runUntilIdle(). Calls from other threads wait in an inbox until the
// test thread runs the loop.
class SimRunLoop : public RunLoopImplementation {
public:
    // The clock starts well above zero: a stopwatch that reads 0 counts as never started.
    static constexpr double kStartTime = 1000.0;

    SimRunLoop();

    double now() const override { return now_; }
    void wakeAt(double) override {}
    int exec() override;
    void quit(int code) override;
    bool isMainThread() const override { return std::this_thread::get_id() == mainThread_; }
    void postFromOtherThread(std::function<void()> call) override;
    void runOnMainAndWait(const std::function<void()>& call) override;

    // Runs every call that is due now, and those they post with no delay, until none is left.
    // Returns how many ran.
    size_t runUntilIdle();
    // Moves the clock forward by `seconds`, running each call at its own deadline on the way.
    void advance(double seconds);
    // Advances to each next deadline until nothing is scheduled, at most `limit` seconds.
    void advanceUntilIdle(double limit = 3600);
    // Blocks until a call from another thread arrives, then runs it with everything due.
    void waitForCrossThreadCall();

    RunLoop& loop() const;

private:
    bool runInbox();

    double now_ = kStartTime;
    std::thread::id mainThread_;
    bool quit_ = false;
    int quitCode_ = 0;
    std::mutex mutex_;
    std::condition_variable arrived_;
    std::deque<std::function<void()>> inbox_;
};

}  // namespace kit::sim
