#include "kit/PropertyList.h"

#include <gtest/gtest.h>

using kit::PropertyList;
using kit::Value;

TEST(PropertyList, ReadsXmlValuesOfEveryKindAndRefusesWhatIsNoPropertyList) {
    auto value = PropertyList::read(R"(<?xml version="1.0" encoding="UTF-8"?>
<!DOCTYPE plist PUBLIC "-//Apple//DTD PLIST 1.0//EN" "http://www.apple.com/DTDs/PropertyList-1.0.dtd">
<plist version="1.0"><dict>
  <key>s</key><string>t&amp;x</string>
  <key>i</key><integer>-3</integer>
  <key>r</key><real>1.5</real>
  <key>b</key><true/>
  <key>d</key><date>2001-01-01T00:01:00Z</date>
  <key>data</key><data>AAEC</data>
  <key>a</key><array><integer>1</integer><dict/></array>
</dict></plist>)");
    ASSERT_TRUE(value);
    EXPECT_EQ(*value, Value(Value::Map{{"s", "t&x"},
                                       {"i", -3},
                                       {"r", 1.5},
                                       {"b", true},
                                       {"d", Value::Date{978307260}},
                                       {"data", Value::Data{0, 1, 2}},
                                       {"a", Value::Array{1, Value::Map{}}}}));
    EXPECT_FALSE(PropertyList::read(""));
    EXPECT_FALSE(PropertyList::read("bplist00\xff\xff"));
}
