#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <unordered_map>
#include <vector>

namespace kit {

class CallGroup;
class PortKey;
class RunLoopImplementation;

// The main thread's run loop. Everything runs on it: posted calls, delayed calls and timers each
// run in a turn of their own, never inside the call that scheduled them. Calls with equal
// deadlines run in the order they were scheduled.
//
// A call that belongs to an object goes through that object's CallGroup, which cancels it when the
// object goes. A turn also ends the life of objects handed to keepAlive() during it (what an
// autorelease pool does): they are released when the turn's call returns, not before.
class RunLoop {
public:
    using CallId = uint64_t;

    RunLoop(const PortKey&, std::unique_ptr<RunLoopImplementation> implementation);
    ~RunLoop();
    RunLoop(const RunLoop&) = delete;
    RunLoop& operator=(const RunLoop&) = delete;

    // The installed platform's run loop.
    static RunLoop& main();

    // Monotonic seconds.
    double now() const;

    // Runs `call` in a later turn.
    CallId post(std::function<void()> call);
    CallId postAfter(double seconds, std::function<void()> call);
    // Returns whether the call was still pending.
    bool cancel(CallId id);

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
    size_t runDue(const PortKey&);
    std::optional<double> nextDeadline(const PortKey&) const;
    struct PendingCall {
        CallId id;
        double deadline;
        bool grouped;  // posted through a CallGroup
    };
    // What is scheduled, earliest first (for test diagnostics).
    std::vector<PendingCall> pendingCalls(const PortKey&) const;
    // Drops every pending call and ends every turn's keep-alives (the platform is going away).
    void clear(const PortKey&);
    RunLoopImplementation& implementation(const PortKey&) { return *implementation_; }

    // A turn that the port runs for work arriving from outside the queue (a platform callback).
    class Turn {
    public:
        explicit Turn(const PortKey&, RunLoop& loop = RunLoop::main());
        ~Turn();
        Turn(const Turn&) = delete;
        Turn& operator=(const Turn&) = delete;

    private:
        RunLoop& loop_;
    };

private:
    friend class CallGroup;

    struct Key {
        double deadline;
        CallId sequence;
        bool operator<(const Key& o) const {
            return deadline != o.deadline ? deadline < o.deadline : sequence < o.sequence;
        }
    };
    struct Call {
        std::function<void()> function;
        CallGroup* group;
    };

    CallId schedule(double seconds, std::function<void()> call, CallGroup* group);
    void forget(CallId id, CallGroup* group);
    void scheduleWakeup();
    void drainPool(size_t level);
    void clearQueue();

    std::unique_ptr<RunLoopImplementation> implementation_;
    std::map<Key, Call> queue_;
    std::unordered_map<CallId, double> deadlines_;
    CallId nextSequence_ = 1;
    std::vector<std::vector<std::shared_ptr<const void>>> pools_;
    bool inRunDue_ = false;
    // Call groups hold it weakly to know whether this loop is still there.
    std::shared_ptr<const void> life_ = std::make_shared<char>();
};

}  // namespace kit
