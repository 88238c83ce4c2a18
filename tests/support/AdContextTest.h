#pragma once

#include "ads/Signals/ZEBSignalsCollector.h"
#include "tests/support/SimTest.h"

#include <optional>
#include <string>

// A simulated platform with the application's bundle; every shared instance of the ad client is
// made afresh in it and goes with it.
class AdContextTest : public SimTest {
protected:
    void SetUp() override {
        SimTest::SetUp();
        sim().mainBundle().setInfoDictionary(kPort, {{"CFBundleVersion", "1.0"},
                                                     {"CFBundleIdentifier", "org.quiblo.soundboard"},
                                                     {"DTPlatformName", "linux"},
                                                     {"DTSDKName", "linux6.1"}});
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
