#pragma once

#include "kit/port/PortKey.h"
#include "kit/sim/SimPlatform.h"

#include <gtest/gtest.h>

// Tests drive the platform as a port does: touches, application states, the device's facts.
inline constexpr kit::PortKey kPort;

// Base fixture for unit tests: a fresh simulated platform per test, gone after it.
class SimTest : public ::testing::Test {
protected:
    void SetUp() override { platform_ = &kit::sim::SimPlatform::install(); }
    void TearDown() override { kit::Platform::uninstall(); }

    kit::sim::SimPlatform& sim() { return *platform_; }
    kit::sim::SimRunLoop& clock() { return platform_->clock(); }
    void runUntilIdle() { platform_->clock().runUntilIdle(); }
    void advance(double seconds) { platform_->clock().advance(seconds); }

private:
    kit::sim::SimPlatform* platform_ = nullptr;
};
