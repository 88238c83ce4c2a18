#pragma once

#include "kit/Reachability.h"

typedef struct _GCancellable GCancellable;
typedef struct _GNetworkMonitor GNetworkMonitor;

namespace kit::qt {

// Reachability through GLib's network monitor (netlink underneath): a route to the host makes it
// reachable, a metered connection counts as wide-area. Each change of the network asks again.
class NetworkMonitorReachability : public Reachability {
public:
    explicit NetworkMonitorReachability(std::string hostName);
    ~NetworkMonitorReachability() override;

    bool scheduleWithRunLoop() override;
    void unscheduleFromRunLoop() override;

private:
    void ask();
    void answered(bool reachable);
    void stop();

    GNetworkMonitor* monitor_ = nullptr;
    GCancellable* pending_ = nullptr;
    unsigned long handler_ = 0;
};

}  // namespace kit::qt
