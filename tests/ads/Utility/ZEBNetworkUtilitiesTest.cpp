#include "ads/Utility/ZEBNetworkUtilities.h"

#include "tests/support/SimTest.h"

using kit::Url;
using kit::Value;

namespace {
Url url(std::string_view text) {
    return *Url::parse(text);
}

std::string appended(const Value::Map& pairs, std::string_view base) {
    auto result = ZEBNetworkUtilities::appendQueryParametersToURL(pairs, url(base));
    return result ? result->absoluteString() : "<none>";
}
}  // namespace

TEST(ZEBNetworkUtilities, EncodeURLEscapesEverythingButUnreserved) {
    EXPECT_EQ(ZEBNetworkUtilities::encodeURL("aZ09-._~"), "aZ09-._~");
    EXPECT_EQ(ZEBNetworkUtilities::encodeURL("!*'();:@&=+$,/?%#[]"),
              "%21%2A%27%28%29%3B%3A%40%26%3D%2B%24%2C%2F%3F%25%23%5B%5D");
    EXPECT_EQ(ZEBNetworkUtilities::encodeURL("b c\"<>"), "b%20c%22%3C%3E");
    EXPECT_EQ(ZEBNetworkUtilities::encodeURL("\xC3\xA9"), "%C3%A9");
}

TEST(ZEBNetworkUtilities, AppendChoosesSeparatorFromExistingQuery) {
    EXPECT_EQ(appended({{"a", "b c"}}, "http://h/p"), "http://h/p?a=b%20c");
    EXPECT_EQ(appended({{"a", "b c"}}, "http://h/p?x=1"), "http://h/p?x=1&a=b%20c");
    // An empty query counts as none.
    EXPECT_EQ(appended({{"a", "1"}}, "http://h/p?"), "http://h/p??a=1");
    EXPECT_EQ(appended({{"z", "1"}, {"a", "2"}, {"m", 3}}, "http://h/"), "http://h/?z=1&a=2&m=3");
}

TEST(ZEBNetworkUtilities, AppendWritesEmptyValuesAsBareKeysAndGoesAfterFragment) {
    EXPECT_EQ(appended({{"flag", ""}}, "http://h/"), "http://h/?flag");
    EXPECT_EQ(appended({{"flag", nullptr}, {"k", "v"}}, "http://h/"), "http://h/?flag&k=v");
    EXPECT_EQ(appended({{"a", "1"}}, "http://h/p#frag"), "http://h/p#frag?a=1");
    auto one = ZEBNetworkUtilities::appendQueryKeyValueToURL("seq_num", std::nullopt, url("http://h/ad?x=1"));
    ASSERT_TRUE(one);
    EXPECT_EQ(one->absoluteString(), "http://h/ad?x=1&seq_num");
    // Keys are not encoded: one that no URL may hold leaves no URL.
    EXPECT_EQ(appended({{"a b", "1"}}, "http://h/"), "<none>");
}

TEST(ZEBNetworkUtilities, DictionaryFromQueryStringKeepsOnlyWellFormedPairs) {
    Value::Map parsed = ZEBNetworkUtilities::dictionaryFromQueryString("A=1;b=2&&c=x=y&d");
    EXPECT_EQ(parsed, (Value::Map{{"a", "1"}, {"b", "2"}}));

    parsed = ZEBNetworkUtilities::dictionaryFromQueryString("K%20Ey=v%20a+l&e=&x=1&X=2&;;&");
    EXPECT_EQ(parsed, (Value::Map{{"k ey", "v a+l"}, {"e", ""}, {"x", "2"}})) << "a plus stays a plus";

    // Bad escapes and decoded bytes that are not UTF-8 drop only their own piece.
    parsed = ZEBNetworkUtilities::dictionaryFromQueryString("a=%zz&b=%C3&c=%C3%A9&d=%ED%A0%80&e=%&f=%2");
    EXPECT_EQ(parsed, (Value::Map{{"c", "\xC3\xA9"}}));

    EXPECT_TRUE(ZEBNetworkUtilities::dictionaryFromQueryString(std::nullopt).empty());
    EXPECT_TRUE(ZEBNetworkUtilities::dictionaryFromQueryString("").empty());
    EXPECT_EQ(ZEBNetworkUtilities::dictionaryFromQueryString("="), (Value::Map{{"", ""}}));
}

TEST(ZEBNetworkUtilities, ParameterValueForKeyIsExactAndUndecoded) {
    EXPECT_EQ(ZEBNetworkUtilities::parameterValueForKeyFromURL("k", url("http://h/?k=a=b")), "a");
    EXPECT_EQ(ZEBNetworkUtilities::parameterValueForKeyFromURL("K", url("http://h/?k=a=b")), std::nullopt);
    EXPECT_EQ(ZEBNetworkUtilities::parameterValueForKeyFromURL("ai", url("http://h/?ai&x=1&ai=A%20B&ai=2")),
              "A%20B");
    EXPECT_EQ(ZEBNetworkUtilities::parameterValueForKeyFromURL("ai", url("http://h/?aix=1")), std::nullopt);
    EXPECT_EQ(ZEBNetworkUtilities::parameterValueForKeyFromURL("ai", url("http://h/p")), std::nullopt);
    EXPECT_EQ(ZEBNetworkUtilities::parameterValueForKeyFromURL("e", url("http://h/?e=")), "");
}

TEST(ZEBNetworkUtilities, WithoutHashFragment) {
    EXPECT_EQ(ZEBNetworkUtilities::urlStringWithoutHashFragment("http://h/p#a#b"), "http://h/p#a");
    EXPECT_EQ(ZEBNetworkUtilities::urlStringWithoutHashFragment("http://h/p"), "http://h/p");
}

using ZEBNetworkUtilitiesTest = SimTest;

TEST_F(ZEBNetworkUtilitiesTest, TheUserAgentIsKeptOnceAWebViewSentOne) {
    EXPECT_EQ(ZEBNetworkUtilities::userAgentString(), std::nullopt);
    ZEBNetworkUtilities::setUserAgentString("Agent/1");
    ZEBNetworkUtilities::setUserAgentString("");
    EXPECT_EQ(ZEBNetworkUtilities::userAgentString(), "Agent/1");
    ZEBNetworkUtilities::setUserAgentString("Agent/2");
    EXPECT_EQ(ZEBNetworkUtilities::userAgentString(), "Agent/2");
}
