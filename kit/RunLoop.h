#pragma once

#include "kit/RunLoopImplementation.h"

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <unordered_map>
#include <vector>

namespace kit {

// The main thread's run loop. Everything runs on it: posted calls, delayed calls and timers each
// run in a turn of their own, never inside the call that scheduled them. Calls with equal
// deadlines run in the order they were scheduled.
//
// A turn also ends the life of objects handed to keepAlive() during it (what an autorelease pool
// does): they are released when the turn's call returns, not before.
class RunLoop {
public:
    using CallId = uint64_t;

    explicit RunLoop(std::unique_ptr<RunLoopImplementation> implementation);
    ~RunLoop();
    RunLoop(const RunLoop&) = delete;
    RunLoop& operator=(const RunLoop&) = delete;

    // The installed platform's run loop.
    static RunLoop& main();

    // Monotonic seconds.
    double now() const;

    // Runs `call` in a later turn. `target` names the object the call is for, so that
    // cancelCallsForTarget() can find it; it is only compared, never dereferenced.
    CallId post(std::function<void()> call, const void* target = nullptr);
    CallId postAfter(double seconds, std::function<void()> call, const void* target = nullptr);
    // Returns whether the call was still pending.
    bool cancel(CallId id);
    // Cancels every pending call scheduled for `target`; returns how many.
    size_t cancelCallsForTarget(const void* target);

    // Keeps `object` alive until the end of the current turn.
    void keepAlive(std::shared_ptr<const void> object);

    bool isMainThread() const;
    // From any thread: runs `call` on the main thread, now if already there, and waits for it.
    void invokeOnMainAndWait(const std::function<void()>& call);
    // From any thread: runs `call` on the main thread in a later turn.
    void invokeOnMain(std::function<void()> call);

    int run();
    void quit(int code = 0);

    // ---- For ports and tests.

    // Runs, each in its own turn, every call that was due when it started. Returns how many ran.
    size_t runDue();
    std::optional<double> nextDeadline() const;
    bool hasPendingCalls() const { return !queue_.empty(); }

    struct PendingCall {
        CallId id;
        double deadline;
        const void* target;
    };
    // What is scheduled, earliest first (for test diagnostics).
    std::vector<PendingCall> pendingCalls() const;
    // Drops every pending call (the platform is going away).
    void clear();

    // A turn that the port runs for work arriving from outside the queue (a platform callback).
    class Turn {
    public:
        explicit Turn(RunLoop& loop = RunLoop::main());
        ~Turn();
        Turn(const Turn&) = delete;
        Turn& operator=(const Turn&) = delete;

    private:
        RunLoop& loop_;
    };

    RunLoopImplementation& implementation() { return *implementation_; }

private:
    struct Key {
        double deadline;
        CallId sequence;
        bool operator<(const Key& o) const {
            return deadline != o.deadline ? deadline < o.deadline : sequence < o.sequence;
        }
    };
    struct Call {
        std::function<void()> function;
        const void* target;
    };

    void scheduleWakeup();
    void drainPool(size_t level);

    std::unique_ptr<RunLoopImplementation> implementation_;
    std::map<Key, Call> queue_;
    std::unordered_map<CallId, double> deadlines_;
    CallId nextSequence_ = 1;
    std::vector<std::vector<std::shared_ptr<const void>>> pools_;
    bool inRunDue_ = false;
};

}  // namespace kit
