#pragma once

#include "ads/Statistics/ZEBStatisticsCore.h"
#include "ads/Timing/ZEBTimingManager.h"
#include "kit/Url.h"

#include <array>
#include <cstdint>
#include <memory>
#include <string>

// What happened since the last ad request (clicks, landing-page navigations, latencies), kept
// across launches and sent with the next request, after which the one-shot values are cleared.
// Counters and flags are read from the settings at creation and written back only by
// synchronize(); the timings are saved when the application terminates.
class ZEBStatistics {
public:
    // Made on first use; lives as long as the platform.
    static ZEBStatistics& sharedStatistics();
    // Seeds random() once, from the clock and the device.
    static void seedRandomIfNecessary();
    static uint64_t randomUInt64();
    static const std::array<const char*, 8>& allTimingNames();

    ZEBStatistics();

    uint64_t sessionId() const { return sessionId_; }
    ZEBStatisticsCore& statistics() { return statistics_; }
    ZEBTimingManager& timingManager() { return *timingMgr_; }
    void synchronize();

    int64_t adRequestCount() const;
    void setAdRequestCount(int64_t count);
    void incrementAdRequestCount();
    void incrementClickCount();
    void resetClickCount();
    void incrementPageNavigationCount();
    void resetPageNavigationCount();
    void incrementSSLPageNavigationCount();
    void resetSSLPageNavigationCount();
    void setBreakOutToSafari();
    void resetBreakOutToSafari();
    void setAppOpenInterstitialTimeOut();
    void resetAppOpenInterstitialTimeOut();
    void setAppOpenInterstitialNoFill();
    void resetAppOpenInterstitialNoFill();
    void setClickBackgroundedApp();
    void resetClickBackgroundedApp();
    void setFlagWithParameterName(const std::string& name);
    void resetFlagWithParameterName(const std::string& name);

    std::shared_ptr<ZEBTiming> timingNamed(std::string_view name) const;
    // Replaces any timing of that name with a new, running one.
    void startTimingNamed(const std::string& name);
    void endTimingNamed(std::string_view name);
    void removeTimingNamed(std::string_view name);
    bool isTimingClick() const;

    // Counts a click and starts its timings; the URL comes back unchanged unless the signals
    // collector has something to append for the click's "ai" value.
    kit::Url urlForClick(const kit::Url& url);
    // Keeps the impression ticket from a click-tracking URL of the ad server's own domain.
    void addClickTrackingURL(const kit::Url& url);
    // The statistics part of the next ad request; clears the one-shot values.
    kit::Value::Map parameters();

private:
    uint64_t sessionId_;
    ZEBStatisticsCore statistics_;
    std::shared_ptr<ZEBTimingManager> timingMgr_;
};
