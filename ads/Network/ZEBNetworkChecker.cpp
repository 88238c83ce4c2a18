#include "ads/Network/ZEBNetworkChecker.h"

#include "ads/Utility/ZEBDeployment.h"
#include "kit/SharedInstances.h"

ZEBNetworkChecker& ZEBNetworkChecker::sharedChecker() {
    return kit::SharedInstances::current().get<ZEBNetworkChecker>([] {
        auto checker = std::make_shared<ZEBNetworkChecker>();
        checker->setEnabled(true);
        return checker;
    });
}

ZEBNetworkChecker::ZEBNetworkChecker() = default;

ZEBNetworkChecker::~ZEBNetworkChecker() {
    if (networkRef_) networkRef_->setCallback(nullptr);
}

void ZEBNetworkChecker::setEnabled(bool enabled) {
    if (enabled == isEnabled()) return;
    if (enabled) {
        startNetworkChecking();
    } else {
        stopNetworkChecking();
    }
}

void ZEBNetworkChecker::startNetworkChecking() {
    networkType_ = kUnknown;
    if (networkRef_) return;
    networkRef_ = kit::Reachability::createWithName(ZEBDeployment::current().reachabilityHostName);
    if (!networkRef_) return;
    // The handle belongs to this checker and is dropped with it, so the callback never outlives it.
    networkRef_->setCallback([this](kit::Reachability::Flags flags) { setNetworkTypeFromFlags(flags); });
    networkRef_->scheduleWithRunLoop();
}

void ZEBNetworkChecker::stopNetworkChecking() {
    if (networkRef_) {
        networkRef_->unscheduleFromRunLoop();
        networkRef_->setCallback(nullptr);
        networkRef_.reset();
    }
    networkType_ = kUnknown;
}

void ZEBNetworkChecker::setNetworkTypeFromFlags(kit::Reachability::Flags flags) {
    ++changeCount_;
    if (!(flags & kit::Reachability::kReachable)) {
        networkType_ = kNotReachable;
    } else {
        networkType_ = (flags & kit::Reachability::kIsWWAN) ? kCellular : kLocal;
    }
}

std::optional<std::string> ZEBNetworkChecker::networkTypeString() const {
    switch (networkType_) {
        case kLocal:
            return "wi";
        case kCellular:
            return "ed";
        default:
            return std::nullopt;
    }
}
