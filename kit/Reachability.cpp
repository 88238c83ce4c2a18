#include "kit/Reachability.h"

#include "kit/Platform.h"
#include "kit/RunLoop.h"

namespace kit {

Reachability::~Reachability() {
    // A handle may outlive the platform (a shared checker at exit): then nothing is pending.
    if (Platform::isInstalled()) RunLoop::main().cancelCallsForTarget(this);
}

std::shared_ptr<Reachability> Reachability::createWithName(const std::string& hostName) {
    return Platform::current().createReachability(hostName);
}

bool Reachability::scheduleWithRunLoop() {
    scheduled_ = true;
    return true;
}

void Reachability::unscheduleFromRunLoop() {
    scheduled_ = false;
    RunLoop::main().cancelCallsForTarget(this);
}

void Reachability::report(Flags flags) {
    if (!scheduled_) return;
    std::weak_ptr<Reachability> weak = weakly(this);
    RunLoop::main().post(
        [weak, flags] {
            auto self = weak.lock();
            if (self && self->scheduled_ && self->callback_) self->callback_(flags);
        },
        this);
}

}  // namespace kit
