#include "kit/Value.h"

#include <gtest/gtest.h>

using kit::Value;

TEST(Value, TypedAccessorsAnswerNoneForOtherTypes) {
    Value s("text");
    EXPECT_EQ(*s.string(), "text");
    EXPECT_FALSE(s.integer());
    EXPECT_FALSE(s.boolean());
    EXPECT_EQ(s.map(), nullptr);
    Value b(true);
    EXPECT_EQ(b.boolean(), true);
    EXPECT_FALSE(b.isNumber());
    EXPECT_FALSE(b.integer());
}
