#include "kit/Value.h"

#include <gtest/gtest.h>

#include <cmath>

using kit::Decimal;
using kit::Value;

TEST(Value, TypedAccessorsAnswerNoneForOtherTypes) {
    Value s("text"), b(true), n(2.75);
    EXPECT_EQ(*s.string(), "text");
    EXPECT_FALSE(s.integer() || s.boolean() || s.date() || s.map() || s.array() || s.data());
    EXPECT_EQ(b.boolean(), true);
    EXPECT_FALSE(b.isNumber() || b.integer() || b.string()) << "a bool is not a number";
    EXPECT_EQ(n.integer(), 2) << "numbers read as integers truncate";
    EXPECT_EQ(Value(-2.75).integer(), -2);
    EXPECT_FALSE(n.boolean());
    EXPECT_TRUE(Value().isNull());
}

TEST(Value, NumbersCompareByValueAndDecimalsKeepEveryDigit) {
    EXPECT_EQ(Value(1), Value(1.0));
    EXPECT_EQ(Value(100), Value(*Decimal::parse("1e2")));
    EXPECT_EQ(Value(0.5), Value(*Decimal::parse("0.50")));
    EXPECT_NE(Value(1), Value(true));
    EXPECT_NE(Value(1), Value("1"));
    EXPECT_NE(Value(0.1 + 0.2), Value(*Decimal::parse("0.3")));
    EXPECT_NE(Value(*Decimal::parse("1.000000000000000005")), Value(1.0));
    for (const char* text : {"1.000000000000000005", "10000000000000000999"})
        EXPECT_EQ(Value(*Decimal::parse(text)).decimal()->toString(), text);
    EXPECT_EQ(Value(18446744073709551615ull).decimal()->toString(), "18446744073709551615");
    EXPECT_EQ(Value(*Decimal::parse("-12.5e-3")).decimal()->toString(), "-0.0125");
}

TEST(Value, CopiesAreDeep) {
    Value original(Value::Map{{"list", Value::Array{Value(Value::Map{{"k", 1}}), "x"}}});
    Value copy = original;
    (*copy.map()->find("list")->array())[0].map()->set("k", 2);
    EXPECT_EQ(*original.map()->find("list")->array()->at(0).map()->find("k"), Value(1));
    EXPECT_NE(copy, original);
}

// Large maps keep a hash index beside the entries: both must agree after every edit.
TEST(Value, MapsKeepInsertionOrderReplaceInPlaceAndCompareWithoutOrder) {
    Value::Map m;
    for (int i = 0; i < 100; ++i) m.set("key" + std::to_string(i), i);
    m.set("key0", -1);
    EXPECT_TRUE(m.erase("key50"));
    EXPECT_FALSE(m.erase("key50"));
    m["new"] = "value";
    Value::Map copy = m;
    EXPECT_EQ(copy.find("key50"), nullptr);
    EXPECT_EQ(*copy.find("key51"), Value(51));
    EXPECT_EQ(*copy.find("new"), Value("value"));
    EXPECT_EQ(copy.size(), 100u);
    EXPECT_EQ(copy.begin()->first, "key0");
    EXPECT_EQ(copy.begin()->second, Value(-1));
    EXPECT_EQ((copy.end() - 1)->first, "new");

    Value::Map a{{"x", 1}, {"y", "two"}}, b{{"y", "two"}, {"x", 1.0}};
    EXPECT_EQ(a, b);
    b.set("z", Value());
    EXPECT_NE(a, b);
}

TEST(Value, DescriptionReadsLikeAPropertyListAndDatesOutsideTheCalendarAsSeconds) {
    const std::pair<Value, const char*> cases[] = {
        {Value::Map{{"name", "two words"}, {"n", 3}, {"list", Value::Array{1, "a"}}},
         "{\n    name = \"two words\";\n    n = 3;\n    list = (\n        1,\n        a\n    );\n}"},
        {"plain text", "plain text"},
        {Value::Date{0}, "1970-01-01 00:00:00 +0000"},
        {Value::Date{-0.5}, "1969-12-31 23:59:59 +0000"},
        {Value::Date{std::nan("")}, "nan seconds since 1970"},
        {Value::Date{-HUGE_VAL}, "-inf seconds since 1970"},
        {Value::Date{1e300}, "1e+300 seconds since 1970"},
        {Value::Date{-9.3e18}, "-9.3e+18 seconds since 1970"},
    };
    for (const auto& [value, text] : cases) EXPECT_EQ(value.description(), text);
}
