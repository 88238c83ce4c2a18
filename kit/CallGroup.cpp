#include "kit/CallGroup.h"

#include "kit/RunLoop.h"

#include <algorithm>

namespace kit {

CallGroup::CallGroup() = default;

CallGroup::~CallGroup() {
    cancelAll();
}

RunLoop* CallGroup::loop() {
    // The loop takes a group's calls off its list whenever it drops them, also when it goes itself;
    // a group that outlives its loop posts to the loop of the platform installed now.
    if (!loop_ || loopLife_.expired()) {
        loop_ = &RunLoop::main();
        loopLife_ = loop_->life_;
    }
    return loop_;
}

CallGroup::CallId CallGroup::post(std::function<void()> call) {
    return postAfter(0, std::move(call));
}

CallGroup::CallId CallGroup::postAfter(double seconds, std::function<void()> call) {
    return loop()->schedule(seconds, std::move(call), this);
}

bool CallGroup::cancel(CallId id) {
    if (std::find(pending_.begin(), pending_.end(), id) == pending_.end()) return false;
    return loop_->cancel(id);
}

size_t CallGroup::cancelAll() {
    size_t cancelled = 0;
    // Each cancellation takes its id off the list; a destroyed capture may post through this group
    // again, which is cancelled in turn.
    while (!pending_.empty()) {
        CallId id = pending_.back();
        if (loop_->cancel(id))
            ++cancelled;
        else
            std::erase(pending_, id);
    }
    return cancelled;
}

}  // namespace kit
