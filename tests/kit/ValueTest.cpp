#include "kit/Value.h"

#include <gtest/gtest.h>

#include <cmath>

using kit::Decimal;
using kit::Value;

TEST(Value, TypedAccessorsAnswerNoneForOtherTypes) {
    Value s("text");
    EXPECT_EQ(*s.string(), "text");
    EXPECT_FALSE(s.integer());
    EXPECT_FALSE(s.boolean());
    EXPECT_FALSE(s.date());
    EXPECT_EQ(s.map(), nullptr);
    EXPECT_EQ(s.array(), nullptr);
    EXPECT_EQ(s.data(), nullptr);

    Value b(true);
    EXPECT_EQ(b.boolean(), true);
    EXPECT_FALSE(b.isNumber()) << "a bool is not a number";
    EXPECT_FALSE(b.integer());
    EXPECT_EQ(b.string(), nullptr);

    Value n(2.75);
    EXPECT_EQ(n.integer(), 2) << "numbers read as integers truncate";
    EXPECT_EQ(Value(-2.75).integer(), -2);
    EXPECT_FALSE(n.boolean());
    EXPECT_TRUE(Value().isNull());
}

TEST(Value, NumbersCompareByValueAcrossRepresentations) {
    EXPECT_EQ(Value(1), Value(1.0));
    EXPECT_EQ(Value(100), Value(*Decimal::parse("1e2")));
    EXPECT_EQ(Value(0.5), Value(*Decimal::parse("0.50")));
    EXPECT_NE(Value(1), Value(true));
    EXPECT_NE(Value(1), Value("1"));
    EXPECT_NE(Value(0.1 + 0.2), Value(*Decimal::parse("0.3")));
}

TEST(Value, ExactDecimalsKeepEveryDigit) {
    Value v(*Decimal::parse("1.000000000000000005"));
    EXPECT_EQ(v.decimal()->toString(), "1.000000000000000005");
    EXPECT_NE(v, Value(1.0));
    EXPECT_EQ(Value(*Decimal::parse("10000000000000000999")).decimal()->toString(), "10000000000000000999");
    EXPECT_EQ(Value(18446744073709551615ull).decimal()->toString(), "18446744073709551615");
    EXPECT_EQ(Value(*Decimal::parse("-12.5e-3")).decimal()->toString(), "-0.0125");
}

TEST(Value, CopiesAreDeep) {
    Value::Map inner{{"k", 1}};
    Value original(Value::Map{{"list", Value::Array{Value(inner), "x"}}});
    Value copy = original;
    (*copy.map()->find("list")->array())[0].map()->set("k", 2);
    EXPECT_EQ(*original.map()->find("list")->array()->at(0).map()->find("k"), Value(1));
    EXPECT_NE(copy, original);
}

TEST(Value, MapKeepsInsertionOrderAndReplacesInPlace) {
    Value::Map m;
    m.set("b", 1);
    m.set("a", 2);
    m.set("c", 3);
    m.set("a", 20);
    std::vector<std::string> keys;
    for (const auto& [k, v] : m) keys.push_back(k);
    EXPECT_EQ(keys, (std::vector<std::string>{"b", "a", "c"}));
    EXPECT_EQ(*m.find("a"), Value(20));
    EXPECT_TRUE(m.erase("b"));
    EXPECT_FALSE(m.erase("b"));
    EXPECT_EQ(m.size(), 2u);
}

TEST(Value, MapEqualityIgnoresOrder) {
    Value::Map a{{"x", 1}, {"y", "two"}};
    Value::Map b{{"y", "two"}, {"x", 1.0}};
    EXPECT_EQ(a, b);
    b.set("z", Value());
    EXPECT_NE(a, b);
}

TEST(Value, LargeMapsStayConsistentThroughEditsAndCopies) {
    Value::Map m;
    for (int i = 0; i < 100; ++i) m.set("key" + std::to_string(i), i);
    EXPECT_TRUE(m.erase("key50"));
    m.set("key99", -1);
    m["new"] = "value";
    Value::Map copy = m;
    EXPECT_EQ(copy.find("key50"), nullptr);
    EXPECT_EQ(*copy.find("key51"), Value(51));
    EXPECT_EQ(*copy.find("key99"), Value(-1));
    EXPECT_EQ(*copy.find("new"), Value("value"));
    EXPECT_EQ(copy.size(), 100u);
    EXPECT_EQ((copy.end() - 1)->first, "new");
}

TEST(Value, DescriptionReadsLikeAPropertyList) {
    Value v(Value::Map{{"name", "two words"}, {"n", 3}, {"list", Value::Array{1, "a"}}});
    EXPECT_EQ(v.description(),
              "{\n    name = \"two words\";\n    n = 3;\n    list = (\n        1,\n        a\n    );\n}");
    EXPECT_EQ(Value("plain text").description(), "plain text");
    EXPECT_EQ(Value(Value::Date{0}).description(), "1970-01-01 00:00:00 +0000");
}

TEST(Value, DatesOutsideTheCalendarAreDescribedBySeconds) {
    EXPECT_EQ(Value(Value::Date{-0.5}).description(), "1969-12-31 23:59:59 +0000");
    EXPECT_EQ(Value(Value::Date{std::nan("")}).description(), "nan seconds since 1970");
    EXPECT_EQ(Value(Value::Date{-HUGE_VAL}).description(), "-inf seconds since 1970");
    EXPECT_EQ(Value(Value::Date{1e300}).description(), "1e+300 seconds since 1970");
    EXPECT_EQ(Value(Value::Date{-9.3e18}).description(), "-9.3e+18 seconds since 1970");
}
