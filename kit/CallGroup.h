#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

namespace kit {

class RunLoop;

// Calls posted to the main run loop on behalf of one owner. Destroying the group cancels the calls
// that have not run yet, so a posted call never outlives what it is for: an object keeps a group
// as a member and posts through it. cancelAll() is "cancel every delayed call scheduled on this
// object".
class CallGroup {
public:
    using CallId = uint64_t;

    CallGroup();
    ~CallGroup();
    CallGroup(const CallGroup&) = delete;
    CallGroup& operator=(const CallGroup&) = delete;

    // As RunLoop::post and RunLoop::postAfter.
    CallId post(std::function<void()> call);
    CallId postAfter(double seconds, std::function<void()> call);
    // Whether the call was still pending.
    bool cancel(CallId id);
    // Cancels every pending call of the group; returns how many.
    size_t cancelAll();
    size_t pendingCount() const { return pending_.size(); }

private:
    friend class RunLoop;

    RunLoop* loop();

    RunLoop* loop_ = nullptr;             // where the pending calls are
    std::weak_ptr<const void> loopLife_;  // expires with that loop
    std::vector<CallId> pending_;
};

}  // namespace kit
