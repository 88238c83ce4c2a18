// The cached download and click tracking on the Qt port, against a real HTTP server on loopback.
#include "ads/Network/ZEBCachedFile.h"
#include "ads/Network/ZEBClickTracker.h"
#include "kit/Clock.h"
#include "kit/FileManager.h"
#include "kit/RunLoop.h"
#include "tests/integration/support/LoopbackServer.h"
#include "tests/integration/support/QtTestApplication.h"
#include "tests/integration/support/WebTestSupport.h"
#include "tests/support/ReadOnlyFolder.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <atomic>
#include <cstdlib>
#include <filesystem>

namespace fs = std::filesystem;

namespace {

kit::Url url(const std::string& text) {
    return *kit::Url::parse(text);
}

class Listener : public ZEBCachedFileDelegate, public ZEBClickTrackerDelegate {
public:
    int ends = 0;
    int fails = 0;
    std::shared_ptr<const kit::Error> error;
    std::optional<std::string> trackedAt;

    void cachedFileDownloadDidEnd(ZEBCachedFile&) override { ++ends; }
    void cachedFileDownloadDidFail(ZEBCachedFile&, std::shared_ptr<const kit::Error> e) override {
        ++fails;
        error = std::move(e);
    }
    std::shared_ptr<const kit::Error> cachedFileShouldRedirectToURL(ZEBCachedFile&,
                                                                    const kit::Url&) override {
        return nullptr;
    }
    void trackerDidRedirect(ZEBClickTracker&, const kit::Url& to) override {
        ++ends;
        trackedAt = to.absoluteString();
    }
    void trackerDidFailWithError(ZEBClickTracker&, std::shared_ptr<const kit::Error> e) override {
        ++fails;
        error = std::move(e);
    }
    int outcomes() const { return ends + fails; }
};

std::string httpDateNow() {
    return ZEBCachedFile::formatterForHTTPDate().stringFromDate(kit::Clock::secondsSince1970()) + " GMT";
}

}  // namespace

class NetworkQtTest : public qttest::QtPlatformTest {
protected:
    void SetUp() override {
        home_ = fs::temp_directory_path() / ("quiblo-net-" + std::to_string(::getpid()));
        fs::remove_all(home_);
        fs::create_directories(home_);
        setenv("XDG_CACHE_HOME", (home_ / "cache").c_str(), 1);
        QtPlatformTest::SetUp();
    }
    void TearDown() override {
        QtPlatformTest::TearDown();
        fs::remove_all(home_);
    }

    // Runs the real loop until `listener` has heard `count` outcomes in all.
    void waitForOutcomes(int count) {
        ASSERT_TRUE(webtest::runUntil([&] { return listener->outcomes() >= count; })) << "no outcome in time";
    }
    std::shared_ptr<ZEBCachedFile> fetch(const std::string& address) {
        auto file = ZEBCachedFile::createWithDelegateURL(listener, url(address));
        file->validate();
        return file;
    }

    fs::path home_;
    qttest::LoopbackServer server;
    std::shared_ptr<Listener> listener = std::make_shared<Listener>();
};

TEST_F(NetworkQtTest, RevalidatesWithLastModifiedAndKeepsTheFileOn304) {
    server.server().Get("/sdk.js", [](const httplib::Request& request, httplib::Response& response) {
        if (request.has_header("If-Modified-Since")) {
            response.status = 304;
            return;
        }
        response.set_header("Last-Modified", "Tue, 15 Nov 2011 12:45:26 GMT");
        response.set_content("function QUOR_buildAdURL(p) { return p; }", "application/javascript");
    });
    auto file = fetch(server.url("/sdk.js"));
    waitForOutcomes(1);
    EXPECT_EQ(listener->ends, 1);
    EXPECT_EQ(file->httpStatusCode(), 200);
    EXPECT_EQ(file->content(), "function QUOR_buildAdURL(p) { return p; }");
    EXPECT_EQ(kit::FileManager::defaultManager().modificationTime(*file->filePath()), 1321361126.0);

    file->validate();
    waitForOutcomes(2);
    EXPECT_EQ(listener->ends, 2);
    EXPECT_EQ(file->httpStatusCode(), 304);
    EXPECT_EQ(server.hits(), 2);
    EXPECT_EQ(server.lastHeader("If-Modified-Since"), "Tue, 15 Nov 2011 12:45:26");
    EXPECT_EQ(file->content(), "function QUOR_buildAdURL(p) { return p; }");
}

TEST_F(NetworkQtTest, AFreshAnswerIsServedWithoutAConnectionButNoCacheRevalidates) {
    server.server().Get("/fresh", [](const httplib::Request&, httplib::Response& response) {
        response.set_header("Date", httpDateNow());
        response.set_header("Cache-Control", "max-age=60");
        response.set_content("fresh", "text/plain");
    });
    server.server().Get("/nocache", [](const httplib::Request&, httplib::Response& response) {
        response.set_header("Date", httpDateNow());
        response.set_header("Cache-Control", "max-age=60, no-cache");
        response.set_content("again", "text/plain");
    });
    auto fresh = fetch(server.url("/fresh"));
    waitForOutcomes(1);
    fresh->validate();
    EXPECT_EQ(listener->ends, 2) << "served at once from the shared cache";
    EXPECT_EQ(server.hits(), 1);

    auto again = fetch(server.url("/nocache"));
    waitForOutcomes(3);
    again->validate();
    waitForOutcomes(4);
    EXPECT_EQ(listener->ends, 4);
    EXPECT_EQ(server.hits(), 3);
}

TEST_F(NetworkQtTest, ARedirectToAnApplicationStoreEndsTrackingThereAsSuccess) {
    server.server().Get("/clk", [&](const httplib::Request&, httplib::Response& response) {
        response.set_redirect(server.url("/hop"));
    });
    server.server().Get("/hop", [](const httplib::Request&, httplib::Response& response) {
        response.set_redirect("itms-apps://itunes.test/app/id42");
    });
    auto tracker = std::make_shared<ZEBClickTracker>();
    tracker->setDelegate(listener);
    tracker->trackURL(url(server.url("/clk")));
    waitForOutcomes(1);
    EXPECT_EQ(listener->ends, 1);
    EXPECT_EQ(listener->trackedAt, "itms-apps://itunes.test/app/id42");
    EXPECT_EQ(tracker->trackingURL()->absoluteString(), "itms-apps://itunes.test/app/id42");
    EXPECT_EQ(server.hits(), 2);
    EXPECT_EQ(kit::Application::shared().openBackgroundTaskCount(), 0u);
}

TEST_F(NetworkQtTest, AnUnwritableCachesFolderFailsWithTheWriteErrorAndKeepsTheOldFile) {
    std::atomic<int> version{0};
    server.server().Get("/ad", [&](const httplib::Request&, httplib::Response& response) {
        response.set_content("<html>version " + std::to_string(++version) + "</html>", "text/html");
    });
    auto file = fetch(server.url("/ad"));
    waitForOutcomes(1);
    ASSERT_EQ(file->content(), "<html>version 1</html>");
    {
        ReadOnlyFolder locked(file->filePath()->parent_path());
        if (!locked.usable()) GTEST_SKIP() << "this file system lets us write anywhere";
        file->validate();
        waitForOutcomes(2);
    }
    EXPECT_EQ(listener->fails, 1);
    ASSERT_TRUE(listener->error);
    EXPECT_EQ(listener->error->domain(), kit::FileManager::kErrorDomain);
    EXPECT_EQ(server.hits(), 2);
    EXPECT_EQ(file->content(), "<html>version 1</html>");
}

TEST_F(NetworkQtTest, ABodyOfSeveralMegabytesArrivesWhole) {
    std::string body(6 * 1024 * 1024, '\0');
    for (size_t i = 0; i < body.size(); ++i) body[i] = static_cast<char>('a' + (i * 7919) % 26);
    server.server().Get("/big", [&](const httplib::Request&, httplib::Response& response) {
        response.set_content(body, "application/octet-stream");
    });
    auto file = fetch(server.url("/big"));
    waitForOutcomes(1);
    EXPECT_EQ(listener->ends, 1);
    auto saved = kit::FileManager::defaultManager().read(*file->filePath());
    ASSERT_TRUE(saved);
    EXPECT_EQ(saved->size(), body.size());
    EXPECT_TRUE(*saved == body);
}
