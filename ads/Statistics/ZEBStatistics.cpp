#include "ads/Statistics/ZEBStatistics.h"

#include "ads/Notification/ZEBNotification.h"
#include "ads/Request/ZEBRequestParameters.h"
#include "ads/Signals/ZEBSignalsCollector.h"
#include "ads/Utility/ZEBDeployment.h"
#include "ads/Utility/ZEBIdentifierUtilities.h"
#include "ads/Utility/ZEBNetworkUtilities.h"
#include "kit/Clock.h"
#include "kit/SharedInstances.h"

#include <fmt/format.h>

#include <cmath>
#include <cstdlib>
#include <functional>

namespace {
// Whether random() has been seeded.
struct RandomSeed {
    bool seeded = false;
};

constexpr const char* kShared = "shared";
constexpr const char* kClickDate = "date";

double now() {
    return kit::Clock::secondsSince1970();
}
}  // namespace

ZEBStatistics& ZEBStatistics::sharedStatistics() {
    return kit::shared<ZEBStatistics>();
}

void ZEBStatistics::seedRandomIfNecessary() {
    bool& seeded = kit::shared<RandomSeed>().seeded;
    if (seeded) return;
    seeded = true;
    size_t deviceHash = std::hash<std::string>{}(ZEBIdentifierUtilities::deviceIdentifierOrSimulator());
    srandom(static_cast<unsigned>(static_cast<uint64_t>(now()) + deviceHash));
}

uint64_t ZEBStatistics::randomUInt64() {
    uint64_t low = static_cast<uint32_t>(random());
    uint64_t high = static_cast<uint32_t>(random());
    return low | (high << 32);
}

const std::array<const char*, 8>& ZEBStatistics::allTimingNames() {
    static const std::array<const char*, 8> names{
        kZEBParameterPriorRequestLatency,       kZEBParameterPriorClickLatency,
        kZEBParameterPriorClickString,          kZEBParameterPriorPreClickLatency,
        kZEBParameterPriorClickRedirectLatency, kZEBParameterPriorLandingPageLoad,
        kZEBParameterPriorLandingPageDuration,  kZEBParameterTimeSinceFirstRequest};
    return names;
}

ZEBStatistics::ZEBStatistics()
    : sessionId_(0), statistics_(kShared), timingMgr_(std::make_shared<ZEBTimingManager>(kShared)) {
    seedRandomIfNecessary();
    sessionId_ = randomUInt64();
}

void ZEBStatistics::synchronize() {
    statistics_.synchronize();
    timingMgr_->synchronize();
}

int64_t ZEBStatistics::adRequestCount() const {
    return static_cast<int64_t>(statistics_.numberForKey(kZEBParameterTotalAdRequests).value_or(0));
}

void ZEBStatistics::setAdRequestCount(int64_t count) {
    statistics_.setNumberForKey(count, kZEBParameterTotalAdRequests);
}

void ZEBStatistics::incrementAdRequestCount() {
    statistics_.addValueNumberForKey(1, kZEBParameterTotalAdRequests);
}
void ZEBStatistics::incrementClickCount() {
    statistics_.addValueNumberForKey(1, kZEBParameterPriorClickCount);
}
void ZEBStatistics::resetClickCount() {
    statistics_.setNumberForKey(0, kZEBParameterPriorClickCount);
}
void ZEBStatistics::incrementPageNavigationCount() {
    statistics_.addValueNumberForKey(1, kZEBParameterPriorLandingPageNavCount);
}
void ZEBStatistics::resetPageNavigationCount() {
    statistics_.setNumberForKey(0, kZEBParameterPriorLandingPageNavCount);
}
void ZEBStatistics::incrementSSLPageNavigationCount() {
    statistics_.addValueNumberForKey(1, kZEBParameterPriorLandingPageSSLNavCount);
}
void ZEBStatistics::resetSSLPageNavigationCount() {
    statistics_.setNumberForKey(0, kZEBParameterPriorLandingPageSSLNavCount);
}
void ZEBStatistics::setBreakOutToSafari() {
    setFlagWithParameterName(kZEBParameterPriorClickBreakOut);
}
void ZEBStatistics::resetBreakOutToSafari() {
    resetFlagWithParameterName(kZEBParameterPriorClickBreakOut);
}
void ZEBStatistics::setAppOpenInterstitialTimeOut() {
    setFlagWithParameterName(kZEBParameterAppOpenInterstitialTimedOut);
}
void ZEBStatistics::resetAppOpenInterstitialTimeOut() {
    resetFlagWithParameterName(kZEBParameterAppOpenInterstitialTimedOut);
}
void ZEBStatistics::setAppOpenInterstitialNoFill() {
    setFlagWithParameterName(kZEBParameterAppOpenInterstitialNoFill);
}
void ZEBStatistics::resetAppOpenInterstitialNoFill() {
    resetFlagWithParameterName(kZEBParameterAppOpenInterstitialNoFill);
}
void ZEBStatistics::setClickBackgroundedApp() {
    setFlagWithParameterName(kZEBParameterPriorClickBackgroundedApp);
}
void ZEBStatistics::resetClickBackgroundedApp() {
    resetFlagWithParameterName(kZEBParameterPriorClickBackgroundedApp);
}

void ZEBStatistics::setFlagWithParameterName(const std::string& name) {
    statistics_.setNumberForKey(1, name);
}

void ZEBStatistics::resetFlagWithParameterName(const std::string& name) {
    statistics_.removeObjectForKey(name);
}

std::shared_ptr<ZEBTiming> ZEBStatistics::timingNamed(std::string_view name) const {
    return timingMgr_->timingForCategory(name);
}

void ZEBStatistics::startTimingNamed(const std::string& name) {
    timingMgr_->removeTimingForCategory(name);
    timingMgr_->addTimingWithCategory(name)->start();
}

void ZEBStatistics::endTimingNamed(std::string_view name) {
    if (auto timing = timingNamed(name)) timing->end();
}

void ZEBStatistics::removeTimingNamed(std::string_view name) {
    timingMgr_->removeTimingForCategory(name);
}

bool ZEBStatistics::isTimingClick() const {
    auto click = timingNamed(kZEBParameterPriorClickLatency);
    return click && click->isActive();
}

kit::Url ZEBStatistics::urlForClick(const kit::Url& url) {
    // The creative's command URLs are not clicks.
    if (ZEBNotification::isNotificationURL(url) || url.absoluteString() == "about:blank") return url;
    incrementClickCount();
    startTimingNamed(kZEBParameterPriorClickLatency);
    startTimingNamed(kZEBParameterPriorClickRedirectLatency);
    endTimingNamed(kZEBParameterPriorPreClickLatency);
    auto click = timingNamed(kZEBParameterPriorClickLatency);
    click->setValueForKey(kit::Value::Date{now()}, kClickDate);

    kit::Url result = url;
    std::optional<std::string> ai = ZEBNetworkUtilities::parameterValueForKeyFromURL("ai", url);
    if (ai && !ai->empty()) {
        click->setValueForKey(*ai, kZEBParameterPriorClickString);
        if (std::optional<std::string> signals = ZEBSignalsCollector::shared().clickSignals(*ai)) {
            if (auto extended = ZEBNetworkUtilities::appendQueryKeyValueToURL(*signals, std::nullopt, url))
                result = *extended;
        }
    }
    endTimingNamed(kZEBParameterPriorClickRedirectLatency);
    return result;
}

void ZEBStatistics::addClickTrackingURL(const kit::Url& url) {
    std::optional<std::string> host = url.host();
    std::string path = url.path();
    if (!host || !host->ends_with(ZEBDeployment::current().adServerDomainSuffix) || path.size() < 5) return;
    auto click = timingNamed(kZEBParameterPriorClickLatency);
    if (click) click->setValueForKey(path.substr(4), kZEBParameterPriorImpressionTicketString);
}

kit::Value::Map ZEBStatistics::parameters() {
    kit::Value::Map p;
    p.set(kZEBParameterSessionID, fmt::format("{}", sessionId_));

    auto click = timingNamed(kZEBParameterPriorClickLatency);
    if (!click) removeTimingNamed(kZEBParameterPriorPreClickLatency);
    int64_t backgroundMilliseconds = 0;
    if (statistics_.numberForKey(kZEBParameterPriorClickBackgroundedApp)) {
        const kit::Value* date = click ? click->valueForKey(kClickDate) : nullptr;
        if (date && date->date()) {
            double milliseconds = std::fabs(now() - date->date()->secondsSince1970) * 1000;
            backgroundMilliseconds =
                std::isfinite(milliseconds) ? static_cast<int64_t>(std::min(milliseconds, 9e18)) : 0;
        }
    }
    if (click) click->removeValueForKey(kClickDate);

    for (const char* name : allTimingNames()) {
        auto timing = timingNamed(name);
        if (!timing) continue;
        p.set(name, timing->elapsedMillisecondsString());
        for (const auto& [key, value] : timing->keysAndValues()) p.set(key, value);
        if (std::string_view(name) != kZEBParameterTimeSinceFirstRequest) removeTimingNamed(name);
    }
    if (backgroundMilliseconds != 0) p.set(kZEBParameterPriorClickLatency, backgroundMilliseconds);

    for (const char* name : {kZEBParameterTotalAdRequests, kZEBParameterPriorClickBreakOut,
                             kZEBParameterAppOpenInterstitialTimedOut, kZEBParameterAppOpenInterstitialNoFill,
                             kZEBParameterPriorClickBackgroundedApp, kZEBParameterPriorLandingPageNavCount,
                             kZEBParameterPriorLandingPageSSLNavCount, kZEBParameterPriorClickCount}) {
        const kit::Value* value = statistics_.statistics().find(name);
        if (value && value->isNumber() && value->integer().value_or(0) != 0) p.set(name, *value);
    }

    resetBreakOutToSafari();
    resetAppOpenInterstitialTimeOut();
    resetAppOpenInterstitialNoFill();
    resetClickBackgroundedApp();
    resetPageNavigationCount();
    resetSSLPageNavigationCount();
    resetClickCount();
    return p;
}
