// How the server reads and writes the text of HTTP: query strings, dates, escapes.
#include "adserver/Escape.h"
#include "adserver/HttpDate.h"
#include "adserver/QueryString.h"

#include <gtest/gtest.h>

namespace {

using Pairs = std::vector<QueryString::Pair>;

TEST(QueryStringTest, KeepsWhatIsMalformedLiterally) {
    const std::vector<std::pair<std::string, Pairs>> cases = {
        {"a=1&b=2", {{"a", "1"}, {"b", "2"}}},
        {"a=x+y%20z%2B", {{"a", "x y z+"}}},
        {"a=%zz&b=%4&c=%", {{"a", "%zz"}, {"b", "%4"}, {"c", "%"}}},
        {"&&a=1&&", {{"a", "1"}}},
        {"flag&=v&k=", {{"flag", ""}, {"", "v"}, {"k", ""}}},
        {"a=1=2&a=3", {{"a", "1=2"}, {"a", "3"}}},
        {"s=%FF%fe%00x", {{"s", std::string("\xff\xfe\0x", 4)}}},
        {"", {}},
    };
    for (const auto& [query, expected] : cases) EXPECT_EQ(QueryString::parse(query), expected) << query;
    EXPECT_EQ(QueryString::value({{"a", "1"}, {"a", "2"}}, "a"), "1");
    EXPECT_EQ(QueryString::value({{"a", "1"}}, "b"), std::nullopt);
}

TEST(QueryStringTest, EncodesAsTheWebEngineDoesAndRoundTrips) {
    EXPECT_EQ(QueryString::encode("AZaz09-_.!~*'()"), "AZaz09-_.!~*'()");
    EXPECT_EQ(QueryString::encode(" &=+;/?#%\"<>"), "%20%26%3D%2B%3B%2F%3F%23%25%22%3C%3E");
    EXPECT_EQ(QueryString::encode("caf\xc3\xa9"), "caf%C3%A9");
    EXPECT_EQ(QueryString::encode(std::string("\0", 1)), "%00");
    Pairs pairs = {{"kw", "[\"a\",\"b c\"]"}, {"x&y", "1=2"}, {"empty", ""}, {"bytes", "\xff\x01"}};
    EXPECT_EQ(QueryString::parse(QueryString::build(pairs)), pairs);
}

TEST(HttpDateTest, WritesAndReadsTheFixedForm) {
    EXPECT_EQ(HttpDate::format(1321361126), "Tue, 15 Nov 2011 12:45:26 GMT");
    EXPECT_EQ(HttpDate::format(0), "Thu, 01 Jan 1970 00:00:00 GMT");
    EXPECT_EQ(HttpDate::parse("Tue, 15 Nov 2011 12:45:26 GMT"), 1321361126);
    for (const char* bad :
         {"", "Tue, 15 Nov 2011 12:45", "Tue, 15 Nox 2011 12:45:26", "Tue, 32 Nov 2011 12:45:26",
          "Tue, 15 Nov 2011 24:45:26 GMT", "Tue, 15 Nov 2011 12:45:26 UTC", "Tuesday, 15-Nov-11 12:45:26",
          "Tue, +5 Nov 2011 12:45:26"})
        EXPECT_EQ(HttpDate::parse(bad), std::nullopt) << bad;
}

TEST(EscapeTest, DisplayableTextIsValidUtf8WithEveryGoodCharacterKept) {
    const std::string replacement = "\xef\xbf\xbd";
    const std::vector<std::pair<std::string, std::string>> cases = {
        {"plain", "plain"},
        {"caf\xc3\xa9 \xe2\x82\xac \xf0\x9f\x8e\xb5", "caf\xc3\xa9 \xe2\x82\xac \xf0\x9f\x8e\xb5"},
        {"\xff", replacement},
        {"\xc0\xaf", replacement + replacement},                                      // overlong "/"
        {"\xed\xa0\x80", replacement + replacement + replacement},                    // a surrogate
        {"\xf4\x90\x80\x80", replacement + replacement + replacement + replacement},  // above U+10FFFF
        {"a\xe2\x82", "a" + replacement + replacement},                               // cut short
    };
    for (const auto& [bytes, shown] : cases) EXPECT_EQ(Escape::displayable(bytes), shown);
}

TEST(EscapeTest, HtmlAndLogLines) {
    EXPECT_EQ(Escape::html("<a href=\"x\">'&'</a>"), "&lt;a href=&quot;x&quot;&gt;&#39;&amp;&#39;&lt;/a&gt;");
    EXPECT_EQ(Escape::forLog("a\r\nb\xff\\", 100), "a\\x0d\\x0ab\\xff\\x5c");
    EXPECT_EQ(Escape::forLog("abcdef", 3), "abc...(6 bytes)");
}

}  // namespace
