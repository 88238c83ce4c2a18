#include "kit/Timer.h"

#include <utility>

namespace kit {

namespace {
// A repeating timer with no interval would fire forever within one instant.
constexpr double kMinimumRepeatInterval = 0.0001;
}  // namespace

Timer::Timer(double interval, bool repeats, Callback callback)
    : interval_(interval < 0 ? 0 : interval), repeats_(repeats), callback_(std::move(callback)) {
    if (repeats_ && interval_ < kMinimumRepeatInterval) interval_ = kMinimumRepeatInterval;
}

Timer::~Timer() = default;

std::shared_ptr<Timer> Timer::scheduled(double interval, bool repeats, Callback callback) {
    auto timer = std::make_shared<Timer>(interval, repeats, std::move(callback));
    timer->fireTime_ = RunLoop::main().now() + timer->interval_;
    timer->schedule();
    return timer;
}

void Timer::schedule() {
    RunLoop& loop = RunLoop::main();
    call_ = loop.postAfter(fireTime_ - loop.now(), [self = retained(this)] { self->timerFired(); });
}

void Timer::timerFired() {
    call_ = 0;
    if (!valid_) return;
    auto self = retained(this);
    if (repeats_) {
        fireTime_ += interval_;
        schedule();
    } else {
        valid_ = false;
    }
    Callback callback = callback_;  // the callback may invalidate or drop the timer
    callback(*this);
    if (!valid_) callback_ = nullptr;  // a spent one-shot timer holds nothing
}

void Timer::fire() {
    if (!valid_) return;
    auto self = retained(this);
    Callback callback = callback_;
    callback(*this);
    if (!repeats_) invalidate();
}

void Timer::invalidate() {
    valid_ = false;
    Callback dropped = std::move(callback_);  // let go of what the callback holds
    callback_ = nullptr;
    if (RunLoop::CallId id = std::exchange(call_, 0)) {
        RunLoop::main().cancel(id);  // may release the last reference to this timer: touch nothing after
    }
}

}  // namespace kit
