#include "kit/Url.h"

#include <gtest/gtest.h>

using kit::Url;

TEST(Url, SplitsIntoItsPartsAndTellsAbsentFromEmpty) {
    auto url = Url::parse("http://ads.example.com:8080/a%20b/c?x=1&y=%41#frag%20ment");
    ASSERT_TRUE(url);
    EXPECT_EQ(url->scheme(), "http");
    EXPECT_EQ(url->host(), "ads.example.com");
    EXPECT_EQ(url->port(), 8080);
    EXPECT_EQ(url->path(), "/a b/c") << "the path is decoded";
    EXPECT_EQ(url->query(), "x=1&y=%41") << "the query stays encoded";
    EXPECT_EQ(url->fragment(), "frag%20ment");
    EXPECT_EQ(url->absoluteString(), "http://ads.example.com:8080/a%20b/c?x=1&y=%41#frag%20ment");

    auto bare = Url::parse("vmsg://host/open");
    EXPECT_FALSE(bare->query() || bare->fragment() || bare->port());
    EXPECT_EQ(Url::parse("http://h/?")->query(), "");
    EXPECT_EQ(Url::parse("http://h/#")->fragment(), "");
    EXPECT_FALSE(Url::parse("mailto:a@b.c?subject=hi")->host());
    EXPECT_EQ(Url::parse("mailto:a@b.c?subject=hi")->path(), "a@b.c");
    for (const char* bad : {"http://bad host/", "http://h/a b", "%zz", "http://h/\x01"})
        EXPECT_FALSE(Url::parse(bad)) << bad;
}

TEST(Url, ResolvesReferencesAgainstABase) {
    auto base = *Url::parse("http://h.example/dir/page.html?q=1");
    const std::pair<const char*, const char*> cases[] = {
        {"other.js", "http://h.example/dir/other.js"},
        {"../up", "http://h.example/up"},
        {"//cdn.example/x", "http://cdn.example/x"},
        {"#top", "http://h.example/dir/page.html?q=1#top"},
        {"https://else/", "https://else/"},
    };
    for (const auto& [reference, resolved] : cases)
        EXPECT_EQ(Url::parse(reference, base)->absoluteString(), resolved) << reference;
    EXPECT_FALSE(Url::parse("x", *Url::parse("relative/only")));
}
