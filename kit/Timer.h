#pragma once

#include "kit/Object.h"
#include "kit/RunLoop.h"

#include <functional>
#include <memory>

namespace kit {

// A one-shot or repeating timer on the main run loop. The run loop keeps a valid timer alive;
// invalidate() stops it for good. A repeating timer keeps its rhythm: each firing is scheduled
// one interval after the previous deadline, not after the callback ran.
class Timer : public Object {
public:
    using Callback = std::function<void(Timer&)>;

    static std::shared_ptr<Timer> scheduled(double interval, bool repeats, Callback callback);

    // Fires now; a one-shot timer is then invalidated, a repeating one keeps its schedule.
    void fire();
    void invalidate();
    bool isValid() const { return valid_; }
    bool repeats() const { return repeats_; }
    double interval() const { return interval_; }
    // Monotonic seconds of the next firing.
    double fireTime() const { return fireTime_; }

    Timer(double interval, bool repeats, Callback callback);
    ~Timer() override;

private:
    void schedule();
    void timerFired();

    double interval_;
    bool repeats_;
    Callback callback_;
    bool valid_ = true;
    double fireTime_ = 0;
    RunLoop::CallId call_ = 0;
};

}  // namespace kit
