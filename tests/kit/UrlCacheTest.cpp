#include "kit/UrlCache.h"
#include "tests/support/SimTest.h"

#include <fmt/format.h>

using kit::UrlRequest;
using kit::UrlResponse;

namespace {
kit::Url url(std::string_view text) {
    return *kit::Url::parse(text);
}
}  // namespace

// The shared cache belongs to the platform: a fresh one per test.
using UrlCacheTest = SimTest;

TEST_F(UrlCacheTest, DropsTheLeastRecentlyUsedAndNeverExceedsItsCapacity) {
    auto& cache = kit::UrlCache::shared();
    EXPECT_EQ(cache.memoryCapacity(), 0u);
    auto entry = [](std::string body) {
        return std::make_shared<kit::CachedUrlResponse>(UrlResponse(url("http://c.test/"), 200, {}),
                                                        std::move(body));
    };
    auto request = [](std::string_view path) {
        return UrlRequest(url(fmt::format("http://c.test/{}", path)));
    };
    cache.storeCachedResponseForRequest(entry("x"), request("zero"));
    EXPECT_FALSE(cache.cachedResponseForRequest(request("zero"))) << "no room until the cache is given some";

    size_t each = entry(std::string(100, 'a'))->cost();
    cache.setMemoryCapacity(3 * each);
    for (const char* path : {"a", "b", "c"})
        cache.storeCachedResponseForRequest(entry(std::string(100, 'a')), request(path));
    EXPECT_EQ(cache.currentMemoryUsage(), 3 * each);
    EXPECT_TRUE(cache.cachedResponseForRequest(request("a")));  // a is now the most recent
    cache.storeCachedResponseForRequest(entry(std::string(100, 'd')), request("d"));
    EXPECT_FALSE(cache.cachedResponseForRequest(request("b")));
    EXPECT_TRUE(cache.cachedResponseForRequest(request("a")));
    EXPECT_TRUE(cache.cachedResponseForRequest(request("c")));
    EXPECT_LE(cache.currentMemoryUsage(), cache.memoryCapacity());

    cache.storeCachedResponseForRequest(entry(std::string(4 * each, 'e')), request("e"));
    EXPECT_FALSE(cache.cachedResponseForRequest(request("e")));
    EXPECT_TRUE(cache.cachedResponseForRequest(request("a")))
        << "a response too big for the cache evicts nothing";

    cache.setMemoryCapacity(each);
    EXPECT_LE(cache.currentMemoryUsage(), each);
    cache.removeCachedResponseForRequest(request("a"));
    cache.removeCachedResponseForRequest(request("c"));
    cache.removeCachedResponseForRequest(request("d"));
    EXPECT_EQ(cache.currentMemoryUsage(), 0u);
}
