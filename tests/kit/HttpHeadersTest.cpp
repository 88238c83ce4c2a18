#include "kit/HttpHeaders.h"

#include <gtest/gtest.h>

using kit::HttpHeaders;

TEST(HttpHeaders, HeaderNamesIgnoreCaseAndRepeatedFieldsFold) {
    HttpHeaders headers{{"Set-Cookie", "a=1"}, {"content-type", "text/plain"}};
    headers.add("set-cookie", "b=2");
    EXPECT_EQ(headers.value("SET-COOKIE"), "a=1, b=2");
    headers.set("Content-Type", "text/html");
    EXPECT_EQ(headers.size(), 2u);
    EXPECT_EQ(headers.fields()[1].first, "content-type") << "the first spelling stays";
    headers.remove("CONTENT-TYPE");
    EXPECT_FALSE(headers.contains("content-type"));
    EXPECT_EQ(headers, (HttpHeaders{{"set-cookie", "a=1, b=2"}}));
    EXPECT_NE(headers, (HttpHeaders{{"set-cookie", "a=1"}}));
}
