#include "ads/Utility/ZEBNumberUtilities.h"

#include <gtest/gtest.h>

TEST(ZEBNumberUtilities, StringWithFloatRoundsToSixDecimalsThenTrimsZerosAndPoint) {
    const std::pair<float, const char*> cases[] = {{2.0f, "2"},  {1.5f, "1.5"},     {320.0f, "320"},
                                                   {0.0f, "0"},  {-0.25f, "-0.25"}, {0.0000004f, "0"},
                                                   {1.1f, "1.1"}};
    for (const auto& [value, text] : cases)
        EXPECT_EQ(ZEBNumberUtilities::stringWithFloat(value), text) << text;
}
