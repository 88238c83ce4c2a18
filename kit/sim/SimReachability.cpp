#include "kit/sim/SimReachability.h"

#include <algorithm>

namespace kit::sim {

std::shared_ptr<Reachability> SimNetwork::create(const std::string& hostName) {
    std::erase_if(handles_, [](const auto& h) { return h.expired(); });
    auto handle = std::make_shared<SimReachability>(hostName);
    handles_.push_back(handle);
    lastHostName_ = hostName;
    return handle;
}

void SimNetwork::setFlags(Reachability::Flags flags) {
    for (const auto& weak : handles_) {
        if (auto handle = weak.lock()) handle->deliver(flags);
    }
}

size_t SimNetwork::scheduledCount() const {
    return std::count_if(handles_.begin(), handles_.end(), [](const auto& weak) {
        auto handle = weak.lock();
        return handle && handle->isScheduled();
    });
}

}  // namespace kit::sim
