#pragma once

#include "kit/Reachability.h"

#include <memory>
#include <optional>
#include <string>

// Watches the reachability of the ad server's host and keeps the coarse network type sent with
// every ad request.
class ZEBNetworkChecker {
public:
    enum NetworkType { kUnknown = 0, kNotReachable = 1, kLocal = 2, kCellular = 3 };

    // Made and enabled on first use; lives as long as the platform.
    static ZEBNetworkChecker& sharedChecker();

    ZEBNetworkChecker();
    ~ZEBNetworkChecker();
    ZEBNetworkChecker(const ZEBNetworkChecker&) = delete;
    ZEBNetworkChecker& operator=(const ZEBNetworkChecker&) = delete;

    bool isEnabled() const { return networkRef_ != nullptr; }
    void setEnabled(bool enabled);
    // The type stays unknown until the system's first report.
    void startNetworkChecking();
    void stopNetworkChecking();
    void setNetworkTypeFromFlags(kit::Reachability::Flags flags);

    int networkType() const { return networkType_; }
    int changeCount() const { return changeCount_; }
    // "wi" on a local network, "ed" on a cellular one, none otherwise.
    std::optional<std::string> networkTypeString() const;

private:
    std::shared_ptr<kit::Reachability> networkRef_;
    int networkType_ = kUnknown;
    int changeCount_ = 0;
};
