#include "kit/Reachability.h"

#include "kit/port/Platform.h"

namespace kit {

Reachability::~Reachability() = default;

std::shared_ptr<Reachability> Reachability::createWithName(const std::string& hostName) {
    return Platform::current().createReachability(hostName);
}

bool Reachability::scheduleWithRunLoop() {
    scheduled_ = true;
    return true;
}

void Reachability::unscheduleFromRunLoop() {
    scheduled_ = false;
    reports_.cancelAll();
}

void Reachability::report(Flags flags) {
    if (!scheduled_) return;
    reports_.post([this, flags] {
        if (!scheduled_ || !callback_) return;
        auto self = retained(this);  // the callback may let go of this handle
        Callback callback = callback_;
        callback(flags);
    });
}

}  // namespace kit
