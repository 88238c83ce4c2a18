#include "ads/Network/ZEBCachedFile.h"
#include "ads/Utility/ZEBNetworkUtilities.h"
#include "kit/FileManager.h"
#include "kit/UrlCache.h"
#include "kit/UrlError.h"
#include "tests/support/ReadOnlyFolder.h"
#include "tests/support/SimTest.h"

#include <fmt/format.h>

using kit::sim::SimAnswer;
namespace fs = std::filesystem;

namespace {

kit::Url url(std::string_view text) {
    return *kit::Url::parse(text);
}

class Listener : public ZEBCachedFileDelegate {
public:
    std::vector<std::string> events;
    std::vector<std::string> redirects;
    std::shared_ptr<const kit::Error> error;
    // Answer to a redirect to this URL.
    std::map<std::string, std::shared_ptr<const kit::Error>> refusals;
    std::function<void(ZEBCachedFile&)> onEnd;

    void cachedFileDownloadDidEnd(ZEBCachedFile& file) override {
        events.push_back(fmt::format("end {}", file.httpStatusCode()));
        if (onEnd) onEnd(file);
    }
    void cachedFileDownloadDidFail(ZEBCachedFile& file, std::shared_ptr<const kit::Error> e) override {
        events.push_back(fmt::format("fail {}{}", file.httpStatusCode(), e ? " with error" : ""));
        error = std::move(e);
    }
    std::shared_ptr<const kit::Error> cachedFileShouldRedirectToURL(ZEBCachedFile&,
                                                                    const kit::Url& to) override {
        redirects.push_back(to.absoluteString());
        auto refusal = refusals.find(to.absoluteString());
        return refusal == refusals.end() ? nullptr : refusal->second;
    }
};

using Events = std::vector<std::string>;

const char* kScript = "http://ads.test/sdk-core-v40.js";

}  // namespace

class ZEBCachedFileTest : public SimTest {
protected:
    kit::sim::SimHttp& http() { return sim().http(); }
    kit::FileManager& files() { return kit::FileManager::defaultManager(); }
    std::shared_ptr<ZEBCachedFile> download(std::string_view text = kScript) {
        return ZEBCachedFile::createWithDelegateURL(listener, url(text));
    }
    // The simulated wall clock, `secondsAgo` back, as a Date header writes it.
    std::string httpDate(double secondsAgo = 0) {
        return ZEBCachedFile::formatterForHTTPDate().stringFromDate(sim().secondsSince1970() - secondsAgo) +
               " GMT";
    }

    std::shared_ptr<Listener> listener = std::make_shared<Listener>();
};

TEST_F(ZEBCachedFileTest, SavesTheBodyThenRevalidatesWithTheServersOwnLastModified) {
    http().respondInTurn(kScript, {SimAnswer::ok("function QUOR_buildAdURL(){}",
                                                 {{"Last-Modified", "Tue, 15 Nov 2011 12:45:26 GMT"}}),
                                   SimAnswer::withStatus(304)});
    auto file = download();
    EXPECT_FALSE(file->hasContent());
    file->validate();
    EXPECT_TRUE(file->isFetching());
    runUntilIdle();
    EXPECT_EQ(listener->events, Events{"end 200"});
    EXPECT_EQ(file->content(), "function QUOR_buildAdURL(){}");
    EXPECT_EQ(files().modificationTime(*file->filePath()), 1321361126.0);
    EXPECT_EQ(file->fileModificationDate(), "Tue, 15 Nov 2011 12:45:26");
    EXPECT_FALSE(http().lastRequest(kScript)->valueForHttpHeaderField("If-Modified-Since"));

    file->validate();
    runUntilIdle();
    EXPECT_EQ(http().lastRequest(kScript)->valueForHttpHeaderField("If-Modified-Since"),
              "Tue, 15 Nov 2011 12:45:26");
    EXPECT_EQ(listener->events, (Events{"end 200", "end 304"}));
    EXPECT_EQ(file->content(), "function QUOR_buildAdURL(){}") << "a 304 leaves the file as it was";
    EXPECT_EQ(files().modificationTime(*file->filePath()), 1321361126.0);
    EXPECT_FALSE(file->isFetching());
}

TEST_F(ZEBCachedFileTest, AnswerBodyInPiecesIsSavedWholeAndAUnparsableLastModifiedLeavesTheFilesTime) {
    SimAnswer answer = SimAnswer::ok("", {{"Last-Modified", "yesterday"}});
    answer.body = {"<html>", std::string(70000, 'x'), "</html>"};
    answer.pieceInterval = 1;
    http().respond(kScript, answer);
    auto file = download();
    file->validate();
    clock().advanceUntilIdle();
    EXPECT_EQ(file->content(), "<html>" + std::string(70000, 'x') + "</html>");
    EXPECT_GT(*files().modificationTime(*file->filePath()), 1600000000.0) << "the write's own time stays";
}

TEST_F(ZEBCachedFileTest, HttpErrorsFailWithoutAnErrorAndKeepTheLastGoodFile) {
    http().respondInTurn(kScript,
                         {SimAnswer::ok("good"), SimAnswer::withStatus(500, {{"X-Why", "down"}}, "oops"),
                          SimAnswer::failing(kit::UrlError::kTimedOut, 60)});
    auto file = download();
    file->validate();
    runUntilIdle();
    file->validate();
    runUntilIdle();
    EXPECT_EQ(listener->events, (Events{"end 200", "fail 500"}));
    EXPECT_FALSE(listener->error);
    EXPECT_EQ(file->httpHeaders()->value("X-Why"), "down");
    EXPECT_EQ(file->content(), "good");

    file->validate();
    clock().advanceUntilIdle();
    EXPECT_EQ(listener->events.back(), "fail 500 with error");
    EXPECT_EQ(listener->error->code(), kit::UrlError::kTimedOut);
    EXPECT_EQ(file->content(), "good");
}

TEST_F(ZEBCachedFileTest, AFreshCachedAnswerIsServedAtOnceWithoutAConnection) {
    http().respond(kScript, [this](const kit::UrlRequest&) {
        return SimAnswer::ok("script", {{"Date", httpDate(30)}, {"Cache-Control", "max-age=60"}});
    });
    auto file = download();
    file->validate();
    runUntilIdle();
    EXPECT_EQ(kit::UrlCache::shared().memoryCapacity(), ZEBCachedFile::kMinimumCacheCapacity);
    files().remove(*file->filePath());
    file->validate();
    EXPECT_EQ(listener->events, (Events{"end 200", "end 200"})) << "served inside validate";
    EXPECT_EQ(http().requestCount(kScript), 1u);
    EXPECT_EQ(file->content(), "script") << "the cached body is written to the file";
}

TEST_F(ZEBCachedFileTest, FreshnessNeedsADateAnUnexpiredMaxAgeAndNeitherNoCacheNorNoStore) {
    kit::UrlCache::shared().setMemoryCapacity(100000);
    const struct {
        const char* name;
        kit::HttpHeaders headers;
        bool fresh;
    } cases[] = {
        {"expires this very second", {{"Date", httpDate(60)}, {"Cache-Control", "max-age=60"}}, true},
        {"expired a second ago", {{"Date", httpDate(61)}, {"Cache-Control", "max-age=60"}}, false},
        {"blank after max-age=", {{"Date", httpDate(5)}, {"Cache-Control", "public, max-age= 5, x"}}, true},
        {"no-cache", {{"Date", httpDate()}, {"Cache-Control", "max-age=60, no-cache"}}, false},
        {"no-store", {{"Date", httpDate()}, {"Cache-Control", "no-store, max-age=60"}}, false},
        {"NO-CACHE is another word", {{"Date", httpDate()}, {"Cache-Control", "NO-CACHE, max-age=60"}}, true},
        {"no max-age expires before its Date", {{"Date", httpDate()}, {"Cache-Control", "public"}}, false},
        {"s-maxage", {{"Date", httpDate()}, {"Cache-Control", "s-maxage=60"}}, false},
        {"max-age without digits", {{"Date", httpDate()}, {"Cache-Control", "max-age=abc"}}, false},
        {"no Date", {{"Cache-Control", "max-age=60"}}, false},
        {"unreadable Date", {{"Date", "soon"}, {"Cache-Control", "max-age=60"}}, false},
    };
    int n = 0;
    for (const auto& c : cases) {
        std::string u = fmt::format("http://ads.test/{}", ++n);
        http().respond(u, SimAnswer::ok("fetched"));
        // Stored directly: a connection would not store a no-store answer.
        kit::UrlCache::shared().storeCachedResponseForRequest(
            std::make_shared<kit::CachedUrlResponse>(kit::UrlResponse(url(u), 200, c.headers), "cached"),
            kit::UrlRequest(url(u)));
        auto file = download(u);
        file->validate();
        runUntilIdle();
        EXPECT_EQ(http().requestCount(u), c.fresh ? 0u : 1u) << c.name;
        EXPECT_EQ(file->content(), c.fresh ? "cached" : "fetched") << c.name;
    }
}

TEST_F(ZEBCachedFileTest, TheCacheBusterAddsTheTimeAndBypassesTheCache) {
    http().respond(kScript, SimAnswer::ok("x"));
    ZEBNetworkUtilities::setUserAgentString("Mozilla/5.0 (probe)");
    auto file = download();
    file->validateWithCacheBuster();
    runUntilIdle();
    ASSERT_EQ(http().sentRequests().size(), 1u);
    const kit::UrlRequest& sent = http().sentRequests()[0].request;
    EXPECT_EQ(sent.url().absoluteString(),
              fmt::format("{}?unique={:.0f}", kScript, sim().secondsSince1970()));
    EXPECT_EQ(sent.cachePolicy(), kit::UrlRequest::CachePolicy::ReloadIgnoringLocalCacheData);
    EXPECT_EQ(sent.valueForHttpHeaderField("User-Agent"), "Mozilla/5.0 (probe)");
    EXPECT_TRUE(sent.httpShouldHandleCookies());
    EXPECT_EQ(file->content(), "x") << "the file is still the source URL's";
}

TEST_F(ZEBCachedFileTest, RedirectsAreFollowedAsTheDelegateAllows) {
    http().respond("http://t.test/1", SimAnswer::redirect("http://t.test/2", 301));
    http().respond("http://t.test/2", SimAnswer::redirect("http://t.test/3", 302));
    http().respond("http://t.test/3", SimAnswer::ok("landed"));
    auto file = download("http://t.test/1");
    file->validate();
    runUntilIdle();
    EXPECT_EQ(listener->redirects, (std::vector<std::string>{"http://t.test/2", "http://t.test/3"}));
    EXPECT_EQ(file->httpDestinationURL().absoluteString(), "http://t.test/3");
    EXPECT_EQ(file->content(), "landed");

    auto refusal = kit::Error::make("test", 7);
    listener->refusals["http://t.test/2"] = refusal;
    listener->events.clear();
    auto other = download("http://t.test/1");
    other->validate();
    runUntilIdle();
    EXPECT_EQ(listener->events, Events{"fail 0 with error"});
    EXPECT_EQ(listener->error, refusal);
    EXPECT_EQ(other->httpDestinationURL().absoluteString(), "http://t.test/2");
    EXPECT_EQ(other->httpHeaders()->value("Location"), "http://t.test/2") << "the redirect's headers";
    EXPECT_EQ(http().requestCount("http://t.test/2"), 1u) << "only the first download went on";
    EXPECT_FALSE(other->isFetching());
}

TEST_F(ZEBCachedFileTest, CancelTellsNobodyAndInvalidateAlsoDeletesTheFile) {
    SimAnswer slow = SimAnswer::ok("body");
    slow.delay = 5;
    http().respond(kScript, slow);
    auto file = download();
    file->validate();
    file->validate();
    advance(1);
    file->cancel();
    advance(10);
    EXPECT_TRUE(listener->events.empty());
    EXPECT_EQ(http().openExchanges(), 0u);

    file->validate();
    clock().advanceUntilIdle();
    EXPECT_EQ(http().requestCount(kScript), 2u) << "a validate while fetching does nothing";
    ASSERT_TRUE(file->hasContent());
    file->validate();
    file->invalidate();
    clock().advanceUntilIdle();
    EXPECT_FALSE(file->hasContent());
    EXPECT_EQ(listener->events, Events{"end 200"});
}

TEST_F(ZEBCachedFileTest, ADelegateMayLetGoOfTheDownloadInsideACallback) {
    http().respond(kScript, SimAnswer::ok("x", {{"Last-Modified", "Tue, 15 Nov 2011 12:45:26 GMT"}}));
    auto file = download();
    std::weak_ptr<ZEBCachedFile> watch = file;
    listener->onEnd = [&](ZEBCachedFile&) { file.reset(); };
    file->validate();
    runUntilIdle();
    EXPECT_EQ(listener->events, Events{"end 200"});
    EXPECT_TRUE(watch.expired()) << "released once the turn is over";
}

TEST_F(ZEBCachedFileTest, NoConnectionFailsAtOnceWithoutAnError) {
    class NoConnections : public kit::UrlConnectionFactory {
    public:
        std::shared_ptr<kit::UrlConnection> newConnectionWithRequestDelegateStartImmediately(
            const kit::UrlRequest&, std::weak_ptr<kit::UrlConnectionDelegate>, bool) override {
            return nullptr;
        }
    };
    ZEBCachedFile::overrideConnectionFactoryWith(std::make_shared<NoConnections>());
    auto file = download();
    file->validate();
    EXPECT_EQ(listener->events, Events{"fail 0"});
    EXPECT_FALSE(listener->error);
    EXPECT_FALSE(file->isFetching());
}

TEST_F(ZEBCachedFileTest, AFailedWriteReportsTheWriteErrorAndKeepsTheOldFile) {
    http().respondInTurn(kScript, {SimAnswer::ok("old"), SimAnswer::ok("new")});
    auto file = download();
    file->validate();
    runUntilIdle();
    {
        ReadOnlyFolder locked(file->filePath()->parent_path());
        if (!locked.usable()) GTEST_SKIP() << "this file system lets us write anywhere";
        file->validate();
        runUntilIdle();
    }
    EXPECT_EQ(listener->events, (Events{"end 200", "fail 200 with error"}));
    ASSERT_TRUE(listener->error);
    EXPECT_EQ(listener->error->domain(), kit::FileManager::kErrorDomain);
    EXPECT_EQ(file->content(), "old");
}

TEST_F(ZEBCachedFileTest, TheFileStaysInsideTheCachesFolderWhateverTheHost) {
    fs::path caches = files().cachesFolder();
    auto pathOf = [&](std::string_view text) { return *download(text)->filePath(); };
    EXPECT_EQ(pathOf("http://ads.test/a"), pathOf("http://ads.test/a")) << "same URL, same file";
    EXPECT_NE(pathOf("http://ads.test/a"), pathOf("http://ads.test/b"));
    EXPECT_EQ(pathOf("http://ads.test/a").parent_path(), caches / "ads.test");
    for (const char* hostile :
         {"http://../x", "http://./x", "http://%2e%2e%2f%2e%2e%2fetc/x", "http://a%2fb/x", "http://%00/x",
          "http://[::1]:8080/x", "itms-apps:app/1", "file:///etc/passwd", "http://.hidden/x"}) {
        fs::path path = pathOf(hostile);
        EXPECT_EQ(path.parent_path().parent_path(), caches) << hostile;
        EXPECT_EQ(path.lexically_normal().parent_path().parent_path(), caches) << hostile;
        EXPECT_NE(path.parent_path().filename().string().front(), '.') << hostile;
    }
    EXPECT_LE(pathOf("http://" + std::string(250, 'h') + "/x").parent_path().filename().string().size(),
              255u);
}
