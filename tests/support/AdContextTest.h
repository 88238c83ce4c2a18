#pragma once

#include "ads/Network/ZEBNetworkChecker.h"
#include "ads/Signals/ZEBSignalsCollector.h"
#include "ads/Statistics/ZEBStatistics.h"
#include "ads/Utility/ZEBIdentifierUtilities.h"
#include "ads/Utility/ZEBNetworkUtilities.h"
#include "tests/support/SimTest.h"

#include <string>

// A simulated platform and fresh process-wide instances of the ad client's request context. The
// shared instances hold on to platform services, so they go before the platform does.
class AdContextTest : public SimTest {
protected:
    void SetUp() override {
        SimTest::SetUp();
        resetShared();
        sim().mainBundle().setInfoDictionary({{"CFBundleVersion", "1.0"},
                                          {"CFBundleIdentifier", "org.quiblo.soundboard"},
                                          {"DTPlatformName", "linux"},
                                          {"DTSDKName", "linux6.1"}});
    }
    void TearDown() override {
        resetShared();
        SimTest::TearDown();
    }

    static void resetShared() {
        ZEBStatistics::releaseSharedStatistics();
        ZEBNetworkChecker::reset();
        ZEBIdentifierUtilities::reset();
        ZEBNetworkUtilities::reset();
        ZEBSignalsCollector::setShared(nullptr);
    }
};

// A collector that gives what the test says.
class ScriptedSignals : public ZEBSignalsCollector {
public:
    std::string requestText;
    std::optional<std::string> clickText;
    std::string lastAi;
    std::string requestSignals() override { return requestText; }
    std::optional<std::string> clickSignals(std::string_view ai) override {
        lastAi = ai;
        return clickText;
    }
};
