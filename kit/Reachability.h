#pragma once

#include "kit/CallGroup.h"
#include "kit/Object.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

namespace kit {

// Whether a host can be reached, and how. Once scheduled, the port reports flags on the main run
// loop whenever the system's view of the network changes (and once soon after scheduling, when it
// has an answer); no report comes before.
class Reachability : public Object {
public:
    using Flags = uint32_t;
    static constexpr Flags kReachable = 1u << 1;
    // Over a wide-area (metered, cellular) link.
    static constexpr Flags kIsWWAN = 1u << 18;

    using Callback = std::function<void(Flags)>;

    ~Reachability() override;

    // A handle for `hostName` from the installed platform.
    static std::shared_ptr<Reachability> createWithName(const std::string& hostName);

    const std::string& hostName() const { return hostName_; }
    void setCallback(Callback callback) { callback_ = std::move(callback); }
    bool isScheduled() const { return scheduled_; }

    // Starts and stops the reports. Returns whether reports will come.
    virtual bool scheduleWithRunLoop();
    virtual void unscheduleFromRunLoop();

protected:
    explicit Reachability(std::string hostName) : hostName_(std::move(hostName)) {}
    // For ports: hands flags to the callback in a turn of the main run loop, if still scheduled.
    void report(Flags flags);

private:
    std::string hostName_;
    Callback callback_;
    bool scheduled_ = false;
    CallGroup reports_;
};

}  // namespace kit
