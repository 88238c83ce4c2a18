#pragma once

#include "kit/Reachability.h"

#include <memory>
#include <vector>

namespace kit::sim {

// Reachability as a test scripts it: the test changes the network with SimNetwork::setFlags, and
// every scheduled handle reports the new flags on the run loop.
class SimReachability : public Reachability {
public:
    explicit SimReachability(std::string hostName) : Reachability(std::move(hostName)) {}
    void deliver(Flags flags) { report(flags); }
};

class SimNetwork {
public:
    std::shared_ptr<Reachability> create(const std::string& hostName);
    // Reports `flags` to every scheduled handle that is still alive.
    void setFlags(Reachability::Flags flags);
    // Handles made so far that are alive and scheduled.
    size_t scheduledCount() const;
    const std::string& lastHostName() const { return lastHostName_; }

private:
    std::vector<std::weak_ptr<SimReachability>> handles_;
    std::string lastHostName_;
};

}  // namespace kit::sim
