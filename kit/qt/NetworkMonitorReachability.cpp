#include "kit/qt/NetworkMonitorReachability.h"

#include <gio/gio.h>

#include <memory>

namespace kit::qt {

namespace {
// Any port will do: the monitor answers whether there is a route, not whether a service listens.
constexpr guint16 kProbePort = 80;
}  // namespace

NetworkMonitorReachability::NetworkMonitorReachability(std::string hostName)
    : Reachability(std::move(hostName)) {}

NetworkMonitorReachability::~NetworkMonitorReachability() {
    stop();
}

bool NetworkMonitorReachability::scheduleWithRunLoop() {
    if (isScheduled()) return true;
    monitor_ = g_network_monitor_get_default();
    if (!monitor_) return false;
    Reachability::scheduleWithRunLoop();
    auto changed = +[](GNetworkMonitor*, gboolean, gpointer self) {
        static_cast<NetworkMonitorReachability*>(self)->ask();
    };
    handler_ = g_signal_connect(monitor_, "network-changed", G_CALLBACK(changed), this);
    ask();
    return true;
}

void NetworkMonitorReachability::unscheduleFromRunLoop() {
    stop();
    Reachability::unscheduleFromRunLoop();
}

void NetworkMonitorReachability::stop() {
    if (monitor_ && handler_) g_signal_handler_disconnect(monitor_, handler_);
    handler_ = 0;
    monitor_ = nullptr;
    if (pending_) {
        g_cancellable_cancel(pending_);
        g_object_unref(pending_);
        pending_ = nullptr;
    }
}

void NetworkMonitorReachability::ask() {
    if (!monitor_) return;
    if (pending_) {
        g_cancellable_cancel(pending_);
        g_object_unref(pending_);
    }
    pending_ = g_cancellable_new();
    GSocketConnectable* address = g_network_address_new(hostName().c_str(), kProbePort);
    // The answer comes after a cancel too; the weak reference and the cancel flag keep it from a
    // handle that is gone or has asked again.
    auto* self = new std::weak_ptr<Reachability>(weakly(static_cast<Reachability*>(this)));
    auto done = +[](GObject* source, GAsyncResult* result, gpointer data) {
        std::unique_ptr<std::weak_ptr<Reachability>> weak(static_cast<std::weak_ptr<Reachability>*>(data));
        GError* error = nullptr;
        gboolean reachable = g_network_monitor_can_reach_finish(G_NETWORK_MONITOR(source), result, &error);
        bool cancelled = error && g_error_matches(error, G_IO_ERROR, G_IO_ERROR_CANCELLED);
        if (error) g_error_free(error);
        if (cancelled) return;
        if (auto handle = std::static_pointer_cast<NetworkMonitorReachability>(weak->lock()))
            handle->answered(reachable);
    };
    g_network_monitor_can_reach_async(monitor_, address, pending_, done, self);
    g_object_unref(address);
}

void NetworkMonitorReachability::answered(bool reachable) {
    if (!monitor_) return;
    Flags flags = 0;
    if (reachable) {
        flags |= kReachable;
        if (g_network_monitor_get_network_metered(monitor_)) flags |= kIsWWAN;
    }
    report(flags);
}

}  // namespace kit::qt
