#include "kit/RunLoop.h"

#include "kit/CallGroup.h"
#include "kit/port/Platform.h"
#include "kit/port/PortKey.h"
#include "kit/port/RunLoopImplementation.h"

#include <algorithm>
#include <cassert>

namespace kit {

RunLoopImplementation::~RunLoopImplementation() = default;

RunLoop::RunLoop(const PortKey&, std::unique_ptr<RunLoopImplementation> implementation)
    : implementation_(std::move(implementation)) {
    pools_.emplace_back();  // the root pool: work done outside any turn
}

RunLoop::~RunLoop() {
    clearQueue();
    for (size_t level = pools_.size(); level-- > 0;) drainPool(level);
}

RunLoop& RunLoop::main() {
    return Platform::current().runLoop();
}

double RunLoop::now() const {
    return implementation_->now();
}

RunLoop::CallId RunLoop::post(std::function<void()> call) {
    return schedule(0, std::move(call), nullptr);
}

RunLoop::CallId RunLoop::postAfter(double seconds, std::function<void()> call) {
    return schedule(seconds, std::move(call), nullptr);
}

RunLoop::CallId RunLoop::schedule(double seconds, std::function<void()> call, CallGroup* group) {
    assert(isMainThread());
    double deadline = now() + (seconds > 0 ? seconds : 0);
    CallId id = nextSequence_++;
    bool earliest = queue_.empty() || Key{deadline, id} < queue_.begin()->first;
    queue_.emplace(Key{deadline, id}, Call{std::move(call), group});
    deadlines_.emplace(id, deadline);
    if (group) group->pending_.push_back(id);
    if (earliest && !inRunDue_) implementation_->wakeAt(deadline);
    return id;
}

void RunLoop::forget(CallId id, CallGroup* group) {
    if (group) std::erase(group->pending_, id);
}

bool RunLoop::cancel(CallId id) {
    auto it = deadlines_.find(id);
    if (it == deadlines_.end()) return false;
    // Move the call out before destroying it: its captures may schedule or cancel in turn.
    auto node = queue_.extract(Key{it->second, id});
    deadlines_.erase(it);
    forget(id, node.mapped().group);
    return true;
}

void RunLoop::keepAlive(std::shared_ptr<const void> object) {
    if (!object) return;
    pools_.back().push_back(std::move(object));
    // Outside a turn the next pass of the loop ends the work; make sure there is one.
    if (pools_.size() == 1 && !inRunDue_) implementation_->wakeAt(now());
}

bool RunLoop::isMainThread() const {
    return implementation_->isMainThread();
}

void RunLoop::invokeOnMainAndWait(const std::function<void()>& call) {
    if (isMainThread()) {
        call();
        return;
    }
    implementation_->runOnMainAndWait(call);
}

void RunLoop::invokeOnMain(std::function<void()> call) {
    if (isMainThread()) {
        post(std::move(call));
        return;
    }
    implementation_->postFromOtherThread(std::move(call));
}

int RunLoop::run() {
    return implementation_->exec();
}

void RunLoop::quit(int code) {
    implementation_->quit(code);
}

void RunLoop::drainPool(size_t level) {
    // Releasing may run destructors that keep other objects alive: take the pool out first.
    while (!pools_[level].empty()) {
        auto objects = std::move(pools_[level]);
        pools_[level].clear();
        objects.clear();
    }
}

size_t RunLoop::runDue(const PortKey& key) {
    assert(isMainThread());
    if (inRunDue_) return 0;
    inRunDue_ = true;
    drainPool(0);
    const double due = now();
    const CallId before = nextSequence_;
    size_t ran = 0;
    for (auto it = queue_.begin(); it != queue_.end() && it->first.deadline <= due;) {
        if (it->first.sequence >= before) {  // scheduled during this pass: next pass
            ++it;
            continue;
        }
        Call call = std::move(it->second);
        deadlines_.erase(it->first.sequence);
        forget(it->first.sequence, call.group);
        queue_.erase(it);
        {
            Turn turn(key, *this);
            call.function();
        }
        ++ran;
        it = queue_.begin();
    }
    inRunDue_ = false;
    scheduleWakeup();
    return ran;
}

void RunLoop::scheduleWakeup() {
    if (!queue_.empty()) implementation_->wakeAt(queue_.begin()->first.deadline);
}

std::optional<double> RunLoop::nextDeadline(const PortKey&) const {
    if (queue_.empty()) return std::nullopt;
    return queue_.begin()->first.deadline;
}

std::vector<RunLoop::PendingCall> RunLoop::pendingCalls(const PortKey&) const {
    std::vector<PendingCall> out;
    out.reserve(queue_.size());
    for (const auto& [key, call] : queue_) out.push_back({key.sequence, key.deadline, call.group != nullptr});
    return out;
}

void RunLoop::clearQueue() {
    // Destroying a call's captures may schedule more, or destroy the groups they were posted
    // through: the groups let go of their calls first, and this repeats until nothing is left.
    while (!queue_.empty()) {
        auto calls = std::move(queue_);
        queue_.clear();
        deadlines_.clear();
        for (auto& [key, call] : calls) forget(key.sequence, call.group);
        calls.clear();
    }
}

void RunLoop::clear(const PortKey&) {
    clearQueue();
    for (size_t level = pools_.size(); level-- > 0;) drainPool(level);
}

RunLoop::Turn::Turn(const PortKey&, RunLoop& loop) : loop_(loop) {
    loop_.pools_.emplace_back();
}

RunLoop::Turn::~Turn() {
    loop_.drainPool(loop_.pools_.size() - 1);
    loop_.pools_.pop_back();
}

}  // namespace kit
