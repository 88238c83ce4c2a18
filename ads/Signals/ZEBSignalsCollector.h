#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

// Gathers device and application signals into opaque text for the request, click URLs and the
// creative's "touch" command. This base class is the empty collector: it accepts every call and
// gives no signals, which keeps requests and clicks working unchanged.
class ZEBSignalsCollector {
public:
    virtual ~ZEBSignalsCollector();

    // The platform's collector: the empty one unless another was installed.
    static ZEBSignalsCollector& shared();
    // Installs another collector for as long as the platform lives; null puts the empty one back.
    static void setShared(std::shared_ptr<ZEBSignalsCollector> collector);

    // One "key=value" text to send with an ad request; empty for none.
    virtual std::string requestSignals() { return {}; }
    // The ad URL has been built with this request type and client version.
    virtual void adURLBuilt(int /*requestType*/, std::string_view /*sdkVersion*/) {}
    // The signal text to append to a click URL for the click's "ai" value; none for none.
    virtual std::optional<std::string> clickSignals(std::string_view /*ai*/) { return std::nullopt; }
};
