#pragma once

#include <functional>

namespace kit {

// What a port provides to drive the run loop. RunLoop keeps the queue of calls and timers itself,
// so ordering and cancellation behave the same on every port; the port supplies the clock, a
// wake-up at the next deadline, the main thread and the way across threads.
class RunLoopImplementation {
public:
    virtual ~RunLoopImplementation();

    // Monotonic clock in seconds; always greater than zero.
    virtual double now() const = 0;
    // Asks the port to call RunLoop::runDue() on the main thread at or after `deadline`.
    // A later request replaces an earlier one. Called on the main thread.
    virtual void wakeAt(double deadline) = 0;
    // Runs the loop until quit() and returns quit's code.
    virtual int exec() = 0;
    virtual void quit(int code) = 0;

    virtual bool isMainThread() const = 0;
    // Called from another thread: run `call` on the main thread soon, without waiting.
    virtual void postFromOtherThread(std::function<void()> call) = 0;
    // Called from another thread: run `call` on the main thread and return when it has run.
    virtual void runOnMainAndWait(const std::function<void()>& call) = 0;
};

}  // namespace kit
