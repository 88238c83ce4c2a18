#include "ads/Utility/ZEBMacros.h"

#include <gtest/gtest.h>

#include <cmath>

using kit::Value;

TEST(ZEBMacros, JsonifyWritesObjectsAndArraysAndEmptyTextOnAWriterError) {
    Value::Map params{{"js", "1.2"}, {"extras", Value(Value::Map{{"k", true}})}, {"kw", Value::Array{"a"}}};
    EXPECT_EQ(ZEBMacros::jsonify(Value(params)), R"({"js":"1.2","extras":{"k":true},"kw":["a"]})");
    EXPECT_EQ(ZEBMacros::jsonify(Value(Value::Array{})), "[]");
    Value list(Value::Array{1, 2});
    EXPECT_EQ(ZEBMacros::jsonify(&list), "[1,2]");
    EXPECT_EQ(ZEBMacros::jsonify(nullptr), std::nullopt);
    // A writer error gives empty text.
    EXPECT_EQ(ZEBMacros::jsonify(Value("scalar")), "");
    EXPECT_EQ(ZEBMacros::jsonify(Value(Value::Map{{"x", std::nan("")}})), "");
}

TEST(ZEBMacros, ReadJsonGivesOnlyMaps) {
    EXPECT_EQ(ZEBMacros::readJson(std::nullopt), std::nullopt);
    EXPECT_EQ(ZEBMacros::readJson("[1,2]"), std::nullopt);
    EXPECT_EQ(ZEBMacros::readJson("\"s\""), std::nullopt);
    EXPECT_EQ(ZEBMacros::readJson("{\"a\":1,}"), std::nullopt);
    auto empty = ZEBMacros::readJson("{}");
    ASSERT_TRUE(empty);
    EXPECT_TRUE(empty->empty());
    auto config = ZEBMacros::readJson(R"({"networks":[{"id":7}],"refresh":30.5})");
    ASSERT_TRUE(config);
    EXPECT_EQ(*config->find("refresh")->number(), 30.5);
    EXPECT_EQ(config->find("networks")->array()->at(0), Value(Value::Map{{"id", 7}}));
}
