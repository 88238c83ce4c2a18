#include "kit/sim/SimRunLoop.h"

#include "kit/port/PortKey.h"

#include <cstdio>
#include <cstdlib>
#include <future>

namespace kit::sim {

namespace {
// Calls that keep posting themselves never leave the loop idle; stop rather than hang the test.
constexpr size_t kMaxPasses = 100000;
}  // namespace

SimRunLoop::SimRunLoop() : mainThread_(std::this_thread::get_id()) {}

RunLoop& SimRunLoop::loop() const {
    return RunLoop::main();
}

bool SimRunLoop::runInbox() {
    std::deque<std::function<void()>> calls;
    {
        std::lock_guard lock(mutex_);
        calls.swap(inbox_);
    }
    for (auto& call : calls) {
        RunLoop::Turn turn(PortKey{}, loop());
        call();
    }
    return !calls.empty();
}

size_t SimRunLoop::runUntilIdle() {
    size_t total = 0;
    for (size_t pass = 0;; ++pass) {
        if (pass == kMaxPasses) {
            std::fputs("SimRunLoop: calls keep scheduling themselves; the loop never becomes idle\n", stderr);
            std::abort();
        }
        bool fromInbox = runInbox();
        size_t ran = loop().runDue(PortKey{});
        total += ran;
        if (ran == 0 && !fromInbox) return total;
    }
}

void SimRunLoop::advance(double seconds) {
    const double target = now_ + (seconds > 0 ? seconds : 0);
    runUntilIdle();
    while (auto next = loop().nextDeadline(PortKey{})) {
        if (*next > target) break;
        if (*next > now_) now_ = *next;
        runUntilIdle();
    }
    now_ = target;
    runUntilIdle();
}

void SimRunLoop::advanceUntilIdle(double limit) {
    const double end = now_ + limit;
    runUntilIdle();
    while (auto next = loop().nextDeadline(PortKey{})) {
        if (*next > end) break;
        if (*next > now_) now_ = *next;
        runUntilIdle();
    }
}

void SimRunLoop::waitForCrossThreadCall() {
    {
        std::unique_lock lock(mutex_);
        arrived_.wait(lock, [this] { return !inbox_.empty(); });
    }
    runUntilIdle();
}

int SimRunLoop::exec() {
    quit_ = false;
    while (!quit_) {
        runUntilIdle();
        if (quit_) break;
        auto next = loop().nextDeadline(PortKey{});
        if (!next) break;
        if (*next > now_) now_ = *next;
    }
    return quitCode_;
}

void SimRunLoop::quit(int code) {
    quit_ = true;
    quitCode_ = code;
}

void SimRunLoop::postFromOtherThread(std::function<void()> call) {
    {
        std::lock_guard lock(mutex_);
        inbox_.push_back(std::move(call));
    }
    arrived_.notify_all();
}

void SimRunLoop::runOnMainAndWait(const std::function<void()>& call) {
    std::promise<void> done;
    postFromOtherThread([&] {
        call();
        done.set_value();
    });
    done.get_future().wait();
}

}  // namespace kit::sim
