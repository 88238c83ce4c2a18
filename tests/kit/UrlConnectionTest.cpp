#include "kit/UrlCache.h"
#include "kit/UrlConnection.h"
#include "kit/UrlConnectionFactory.h"
#include "kit/UrlError.h"
#include "tests/support/SimTest.h"

#include <fmt/format.h>

using kit::UrlConnection;
using kit::UrlRequest;
using kit::UrlResponse;
using kit::sim::SimAnswer;

namespace {

kit::Url url(std::string_view text) {
    return *kit::Url::parse(text);
}

// Writes down every call with the virtual time and turn it came in.
class Recorder : public kit::UrlConnectionDelegate {
public:
    std::vector<std::string> calls;
    std::string body;
    std::shared_ptr<const kit::Error> error;
    std::optional<UrlResponse> response;
    // Redirect targets not to follow.
    std::vector<std::string> refuse;
    std::function<void()> onData;

    std::optional<UrlRequest> connectionWillSendRequestRedirectResponse(
        UrlConnection&, const UrlRequest& request, const UrlResponse* redirect) override {
        calls.push_back(fmt::format("send {}{}", request.url().absoluteString(),
                                    redirect ? fmt::format(" after {}", redirect->statusCode()) : ""));
        for (const auto& r : refuse)
            if (r == request.url().absoluteString()) return std::nullopt;
        return request;
    }
    void connectionDidReceiveResponse(UrlConnection&, const UrlResponse& r) override {
        calls.push_back(fmt::format("response {}", r.statusCode()));
        response = r;
    }
    void connectionDidReceiveData(UrlConnection&, std::string_view data) override {
        calls.push_back(fmt::format("data {}", data.size()));
        body += data;
        if (onData) onData();
    }
    void connectionDidFinishLoading(UrlConnection&) override { calls.push_back("finish"); }
    void connectionDidFailWithError(UrlConnection&, std::shared_ptr<const kit::Error> e) override {
        calls.push_back(fmt::format("fail {}", e->code()));
        error = std::move(e);
    }
};

using Calls = std::vector<std::string>;

}  // namespace

class UrlConnectionTest : public SimTest {
protected:
    kit::sim::SimHttp& network() { return sim().http(); }
    std::shared_ptr<UrlConnection> open(std::string_view text, bool start = true) {
        return UrlConnection::create(UrlRequest(url(text)), delegate, start);
    }
    std::shared_ptr<Recorder> delegate = std::make_shared<Recorder>();
};

TEST_F(UrlConnectionTest, AsksBeforeEachRequestAndHopThenPassesTheAnswerOnInLaterTurns) {
    SimAnswer answer = SimAnswer::ok("", {{"Content-Type", "text/html; charset=utf-8"}});
    answer.body = {"<html>", "</html>"};
    answer.delay = 2;
    network().respond("http://a.test/1", SimAnswer::redirect("/2", 301));
    network().respond("http://a.test/2", SimAnswer::redirect("http://b.test/3", 307));
    network().respond("http://b.test/3", answer);
    UrlRequest request(url("http://a.test/1"));
    request.setValueForHttpHeaderField("probe", "User-Agent");
    auto connection = UrlConnection::create(request, delegate);
    EXPECT_TRUE(delegate->calls.empty()) << "nothing happens inside create()";
    advance(1);
    EXPECT_EQ(delegate->calls, (Calls{"send http://a.test/1", "send http://a.test/2 after 301",
                                      "send http://b.test/3 after 307"}));
    advance(1);
    EXPECT_EQ(Calls(delegate->calls.begin() + 3, delegate->calls.end()),
              (Calls{"response 200", "data 6", "data 7", "finish"}));
    EXPECT_EQ(delegate->body, "<html></html>");
    EXPECT_FALSE(connection->isLoading());
    EXPECT_EQ(connection->currentRequest().url().absoluteString(), "http://b.test/3");
    EXPECT_EQ(connection->originalRequest().url().absoluteString(), "http://a.test/1");
    EXPECT_EQ(network().lastRequest("http://b.test/3")->valueForHttpHeaderField("user-agent"), "probe");
}

TEST_F(UrlConnectionTest, ARefusedRedirectIsTheAnswerAndOneThatCannotGoOnFails) {
    network().respond("http://a.test/1",
                      SimAnswer::withStatus(302, {{"Location", "http://a.test/2"}}, "moved"));
    network().respond("http://a.test/click", SimAnswer::redirect("itms-apps://store.test/app/1"));
    network().respond("http://a.test/loop", SimAnswer::redirect("http://a.test/loop"));
    delegate->refuse = {"http://a.test/2"};
    auto refused = open("http://a.test/1");
    runUntilIdle();
    EXPECT_EQ(delegate->calls, (Calls{"send http://a.test/1", "send http://a.test/2 after 302",
                                      "response 302", "data 5", "finish"}));
    EXPECT_EQ(network().requestCount("http://a.test/2"), 0u);

    delegate->calls.clear();
    auto store = open("http://a.test/click");
    runUntilIdle();
    EXPECT_EQ(delegate->calls,
              (Calls{"send http://a.test/click", "send itms-apps://store.test/app/1 after 302",
                     fmt::format("fail {}", kit::UrlError::kUnsupportedUrl)}));
    EXPECT_EQ(*delegate->error->userInfo().find(kit::UrlError::kFailingUrlKey)->string(),
              "itms-apps://store.test/app/1");

    auto loop = open("http://a.test/loop");
    runUntilIdle();
    EXPECT_EQ(delegate->calls.back(), fmt::format("fail {}", kit::UrlError::kTooManyRedirects));
    EXPECT_EQ(network().requestCount("http://a.test/loop"), size_t(UrlConnection::kMaximumRedirects) + 1);
}

TEST_F(UrlConnectionTest, FailuresCarryTheErrorAndTheUrl) {
    auto unreachable = open("http://nowhere.test/");
    runUntilIdle();
    ASSERT_TRUE(delegate->error);
    EXPECT_EQ(delegate->error->domain(), kit::UrlError::kDomain);
    EXPECT_EQ(delegate->error->code(), kit::UrlError::kCannotConnectToHost);
    EXPECT_EQ(*delegate->error->userInfo().find(kit::UrlError::kFailingUrlKey)->string(),
              "http://nowhere.test/");

    auto other = std::make_shared<Recorder>();
    SimAnswer cut = SimAnswer::ok("first half");
    cut.failure = kit::UrlError::make(kit::UrlError::kNetworkConnectionLost, "");
    network().respond("http://a.test/cut", cut);
    auto connection = UrlConnection::create(UrlRequest(url("http://a.test/cut")), other);
    runUntilIdle();
    EXPECT_EQ(other->calls, (Calls{"send http://a.test/cut", "response 200", "data 10",
                                   fmt::format("fail {}", kit::UrlError::kNetworkConnectionLost)}));
}

TEST_F(UrlConnectionTest, CancelInsideACallbackStopsEverythingAndClosesTheExchange) {
    SimAnswer answer = SimAnswer::ok("");
    answer.body = {"a", "b", "c"};
    network().respond("http://a.test/", answer);
    std::shared_ptr<UrlConnection> connection = open("http://a.test/");
    delegate->onData = [&] { connection.reset(); };  // the owner lets go mid-body
    runUntilIdle();
    EXPECT_EQ(delegate->calls, (Calls{"send http://a.test/", "response 200", "data 1"}));
    EXPECT_EQ(network().openExchanges(), 0u);

    auto other = open("http://a.test/");
    other->cancel();
    runUntilIdle();
    EXPECT_EQ(delegate->calls.size(), 3u);
}

TEST_F(UrlConnectionTest, AConnectionWhoseDelegateIsGoneStopsQuietly) {
    SimAnswer answer = SimAnswer::ok("body");
    answer.delay = 1;
    network().respond("http://a.test/", answer);
    auto connection = open("http://a.test/");
    runUntilIdle();
    delegate.reset();
    advance(2);
    EXPECT_FALSE(connection->isLoading());
    EXPECT_EQ(network().openExchanges(), 0u);
}

TEST_F(UrlConnectionTest, StoresComplete200AnswersToGetInTheSharedCache) {
    auto& cache = kit::UrlCache::shared();
    cache.setMemoryCapacity(100000);
    network().respond("http://a.test/ok",
                      SimAnswer::ok("cached", {{"Date", "Mon, 01 Jan 2024 00:00:00 GMT"}}));
    network().respond("http://a.test/private",
                      SimAnswer::ok("secret", {{"Cache-Control", "private, No-Store"}}));
    network().respond("http://a.test/missing", SimAnswer::withStatus(404, {}, "nope"));
    network().respond("http://a.test/moved", SimAnswer::redirect("http://a.test/ok"));
    auto keep = {open("http://a.test/ok"), open("http://a.test/private"), open("http://a.test/missing")};
    runUntilIdle();
    auto stored = cache.cachedResponseForRequest(UrlRequest(url("http://a.test/ok#part")));
    ASSERT_TRUE(stored);
    EXPECT_EQ(stored->data(), "cached");
    EXPECT_EQ(stored->response().allHeaderFields().value("date"), "Mon, 01 Jan 2024 00:00:00 GMT");
    EXPECT_FALSE(cache.cachedResponseForRequest(UrlRequest(url("http://a.test/private"))));
    EXPECT_FALSE(cache.cachedResponseForRequest(UrlRequest(url("http://a.test/missing"))));

    // A redirected load stores the answer under the URL that gave it.
    cache.removeAllCachedResponses();
    auto redirected = open("http://a.test/moved");
    runUntilIdle();
    EXPECT_FALSE(cache.cachedResponseForRequest(UrlRequest(url("http://a.test/moved"))));
    EXPECT_TRUE(cache.cachedResponseForRequest(UrlRequest(url("http://a.test/ok"))));
}

TEST_F(UrlConnectionTest, AConnectionMadeNotToStartWaitsUntilToldOnce) {
    network().respond("http://a.test/", SimAnswer::ok("x"));
    auto factory = kit::UrlConnectionFactory::plain();
    auto later = factory->newConnectionWithRequestDelegateStartImmediately(UrlRequest(url("http://a.test/")),
                                                                           delegate, false);
    runUntilIdle();
    EXPECT_EQ(network().requestCount("http://a.test/"), 0u);
    EXPECT_FALSE(later->isLoading());
    later->start();
    later->start();
    runUntilIdle();
    EXPECT_EQ(network().requestCount("http://a.test/"), 1u);
    EXPECT_EQ(delegate->calls.back(), "finish");
}
