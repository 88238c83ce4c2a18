#include "ads/Utility/ZEBNumberUtilities.h"

#include <gtest/gtest.h>

TEST(ZEBNumberUtilities, StringWithFloatTrimsZerosAndPoint) {
    EXPECT_EQ(ZEBNumberUtilities::stringWithFloat(2.0f), "2");
    EXPECT_EQ(ZEBNumberUtilities::stringWithFloat(1.5f), "1.5");
    EXPECT_EQ(ZEBNumberUtilities::stringWithFloat(320.0f), "320");
    EXPECT_EQ(ZEBNumberUtilities::stringWithFloat(0.0f), "0");
    EXPECT_EQ(ZEBNumberUtilities::stringWithFloat(100.0f), "100");
    EXPECT_EQ(ZEBNumberUtilities::stringWithFloat(-0.25f), "-0.25");
    // Six decimals, rounded, before trimming.
    EXPECT_EQ(ZEBNumberUtilities::stringWithFloat(0.0000004f), "0");
    EXPECT_EQ(ZEBNumberUtilities::stringWithFloat(1.1f), "1.1");
}
