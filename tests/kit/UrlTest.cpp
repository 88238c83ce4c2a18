#include "kit/Url.h"

#include <gtest/gtest.h>

using kit::Url;

TEST(Url, SplitsIntoItsParts) {
    auto url = Url::parse("http://ads.example.com:8080/a%20b/c?x=1&y=%41#frag%20ment");
    ASSERT_TRUE(url);
    EXPECT_EQ(url->scheme(), "http");
    EXPECT_EQ(url->host(), "ads.example.com");
    EXPECT_EQ(url->port(), 8080);
    EXPECT_EQ(url->path(), "/a b/c") << "the path is decoded";
    EXPECT_EQ(url->query(), "x=1&y=%41") << "the query stays encoded";
    EXPECT_EQ(url->fragment(), "frag%20ment");
    EXPECT_EQ(url->absoluteString(), "http://ads.example.com:8080/a%20b/c?x=1&y=%41#frag%20ment");
}

TEST(Url, AbsentPartsAreNoneAndEmptyPartsArePresent) {
    auto url = Url::parse("vmsg://host/open");
    ASSERT_TRUE(url);
    EXPECT_FALSE(url->query());
    EXPECT_FALSE(url->fragment());
    EXPECT_FALSE(url->port());
    EXPECT_EQ(Url::parse("http://h/?")->query(), "");
    EXPECT_EQ(Url::parse("http://h/#")->fragment(), "");
    EXPECT_FALSE(Url::parse("mailto:a@b.c?subject=hi")->host());
    EXPECT_EQ(Url::parse("mailto:a@b.c?subject=hi")->path(), "a@b.c");
}

TEST(Url, KeepsTheSchemeAsWritten) {
    EXPECT_EQ(Url::parse("PELKO://log")->scheme(), "PELKO");
    EXPECT_EQ(Url::parse("itms-apps://itunes.example/app/id1")->scheme(), "itms-apps");
}

TEST(Url, RefusesTextThatIsNotAUrl) {
    EXPECT_FALSE(Url::parse("http://bad host/"));
    EXPECT_FALSE(Url::parse("http://h/a b"));
    EXPECT_FALSE(Url::parse("%zz"));
    EXPECT_FALSE(Url::parse("http://h/\x01"));
}

TEST(Url, ResolvesReferencesAgainstABase) {
    auto base = *Url::parse("http://h.example/dir/page.html?q=1");
    EXPECT_EQ(Url::parse("other.js", base)->absoluteString(), "http://h.example/dir/other.js");
    EXPECT_EQ(Url::parse("../up", base)->absoluteString(), "http://h.example/up");
    EXPECT_EQ(Url::parse("//cdn.example/x", base)->absoluteString(), "http://cdn.example/x");
    EXPECT_EQ(Url::parse("#top", base)->absoluteString(), "http://h.example/dir/page.html?q=1#top");
    EXPECT_EQ(Url::parse("https://else/", base)->absoluteString(), "https://else/");
    EXPECT_FALSE(Url::parse("x", *Url::parse("relative/only")));
}

TEST(Url, PercentEncodingRoundTrips) {
    EXPECT_EQ(Url::percentEncode("b c!*'();:@&=+$,/?%#[]~é"),
              "b%20c%21%2A%27%28%29%3B%3A%40%26%3D%2B%24%2C%2F%3F%25%23%5B%5D~%C3%A9");
    EXPECT_EQ(Url::percentEncode("a/b c", "/"), "a/b%20c");
    EXPECT_EQ(Url::percentDecode("b%20c%C3%A9"), "b c\xC3\xA9");
    EXPECT_EQ(Url::percentDecode("plus+stays"), "plus+stays");
    EXPECT_FALSE(Url::percentDecode("bad%2"));
    EXPECT_FALSE(Url::percentDecode("bad%g0"));
}
