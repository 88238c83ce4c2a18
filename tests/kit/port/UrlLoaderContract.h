#pragma once

// What every port's UrlLoader promises (kit/port/UrlLoader.h), written once and run on each port.
#include "kit/RunLoop.h"
#include "kit/UrlError.h"
#include "kit/port/Platform.h"
#include "kit/port/UrlLoader.h"
#include "tests/kit/port/PortFixture.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace contract {

// Writes down each report, and whether it came inside start() or inside another report.
class RecordingClient : public kit::UrlLoader::Client {
public:
    std::vector<std::string> calls;
    std::string body;
    std::optional<kit::UrlResponse> response;
    std::shared_ptr<const kit::Error> error;
    bool nested = false;
    bool insideStart = false;
    std::function<void()> onData;

    bool ended() const { return !calls.empty() && (calls.back() == "finish" || calls.back() == "fail"); }

    void loaderDidReceiveResponse(const kit::UrlResponse& r) override {
        Report report(*this);
        calls.push_back(fmt::format("response {}", r.statusCode()));
        response = r;
    }
    void loaderDidReceiveData(std::string_view data) override {
        Report report(*this);
        if (calls.empty() || calls.back() != "data") calls.push_back("data");
        body += data;
        if (onData) onData();
    }
    void loaderDidFinish() override {
        Report report(*this);
        calls.push_back("finish");
    }
    void loaderDidFail(std::shared_ptr<const kit::Error> e) override {
        Report report(*this);
        calls.push_back("fail");
        error = std::move(e);
    }

private:
    struct Report {
        explicit Report(RecordingClient& c) : client(c) {
            if (client.depth++ > 0 || client.insideStart) client.nested = true;
        }
        ~Report() { --client.depth; }
        RecordingClient& client;
    };
    int depth = 0;
};

template <class Port>
class UrlLoaderContract : public ::testing::Test {
protected:
    void SetUp() override { port.setUp(); }
    void TearDown() override {
        loaders.clear();
        port.tearDown();
    }

    kit::UrlLoader& start(const kit::UrlRequest& request, RecordingClient& client) {
        loaders.push_back(kit::Platform::current().createUrlLoader(request, client));
        client.insideStart = true;
        loaders.back()->start();
        client.insideStart = false;
        return *loaders.back();
    }
    kit::UrlLoader& start(const std::string& url, RecordingClient& client) {
        return start(kit::UrlRequest(*kit::Url::parse(url)), client);
    }
    void runToEnd(RecordingClient& client) {
        ASSERT_TRUE(port.runUntil([&] { return client.ended(); }, 20)) << "the exchange never ended";
    }

    Port port;
    RecordingClient client;
    std::vector<std::unique_ptr<kit::UrlLoader>> loaders;
};

TYPED_TEST_SUITE_P(UrlLoaderContract);

TYPED_TEST_P(UrlLoaderContract, ReportsTheHeadTheBodyAndTheEndInTurnsOfTheirOwn) {
    Reply reply;
    reply.headers = {{"Content-Type", "text/html; charset=utf-8"}, {"X-Quor-Refresh-Rate", "30"}};
    reply.pieces = {"<html>", "<body>ad</body>", "</html>"};
    reply.headDelay = 0.05;
    reply.pieceGap = 0.05;
    this->start(this->port.serve("/page", reply), this->client);
    EXPECT_TRUE(this->client.calls.empty()) << "nothing is reported inside start()";
    this->runToEnd(this->client);
    EXPECT_EQ(this->client.calls, (std::vector<std::string>{"response 200", "data", "finish"}));
    EXPECT_FALSE(this->client.nested);
    EXPECT_EQ(this->client.body, "<html><body>ad</body></html>");
    EXPECT_EQ(this->client.response->allHeaderFields().value("x-quor-refresh-rate"), "30");
    EXPECT_EQ(this->client.response->mimeType(), "text/html");
}

TYPED_TEST_P(UrlLoaderContract, RedirectsAndHttpErrorsAreAnswersLikeAnyOther) {
    Reply moved;
    moved.status = 302;
    moved.headers = {{"Location", "/target"}};
    this->port.serve("/target", Reply{});
    this->start(this->port.serve("/moved", moved), this->client);
    this->runToEnd(this->client);
    EXPECT_EQ(this->client.calls.front(), "response 302");
    EXPECT_EQ(this->client.calls.back(), "finish");
    EXPECT_EQ(this->client.response->allHeaderFields().value("location"), "/target");
    EXPECT_TRUE(this->port.seen("/target").empty()) << "the port does not follow redirects";

    Reply missing;
    missing.status = 404;
    missing.pieces = {"nope"};
    RecordingClient other;
    this->start(this->port.serve("/missing", missing), other);
    this->runToEnd(other);
    EXPECT_EQ(other.calls, (std::vector<std::string>{"response 404", "data", "finish"}));
    EXPECT_EQ(other.body, "nope");
}

TYPED_TEST_P(UrlLoaderContract, ARefusedConnectionFailsWithTheUrl) {
    std::string url = this->port.unreachableUrl();
    this->start(url, this->client);
    this->runToEnd(this->client);
    ASSERT_EQ(this->client.calls, std::vector<std::string>{"fail"});
    EXPECT_EQ(this->client.error->domain(), kit::UrlError::kDomain);
    EXPECT_EQ(this->client.error->code(), kit::UrlError::kCannotConnectToHost);
    EXPECT_EQ(*this->client.error->userInfo().find(kit::UrlError::kFailingUrlKey)->string(), url);
}

TYPED_TEST_P(UrlLoaderContract, SendsTheMethodHeadersAndBodyItIsGiven) {
    kit::UrlRequest request(*kit::Url::parse(this->port.serve("/events", Reply{})));
    request.setHttpMethod("POST");
    request.setHttpBody("seq_num=4&network=house");
    request.setValueForHttpHeaderField("quor-probe", "User-Agent");
    this->start(request, this->client);
    this->runToEnd(this->client);
    auto seen = this->port.seen("/events");
    ASSERT_EQ(seen.size(), 1u);
    EXPECT_EQ(seen[0].method, "POST");
    EXPECT_EQ(seen[0].body, "seq_num=4&network=house");
    EXPECT_EQ(seen[0].headers.value("user-agent"), "quor-probe");
}

TYPED_TEST_P(UrlLoaderContract, NothingIsReportedAfterCancelOrDestructionEvenFromInsideAReport) {
    Reply slow;
    slow.pieces = {"a", "b", "c"};
    slow.pieceGap = 0.1;
    std::string url = this->port.serve("/slow", slow);
    kit::UrlLoader& loader = this->start(url, this->client);
    this->client.onData = [&] { loader.cancel(); };
    RecordingClient dropped;
    this->start(url, dropped);
    this->loaders.pop_back();
    ASSERT_TRUE(this->port.runUntil(
        [&] { return !this->client.calls.empty() && this->client.calls.back() == "data"; }, 20));
    this->port.settle();
    EXPECT_EQ(this->client.calls, (std::vector<std::string>{"response 200", "data"}));
    EXPECT_EQ(this->client.body, "a");
    EXPECT_TRUE(dropped.calls.empty());
}

TYPED_TEST_P(UrlLoaderContract, KeepsNoAnswersOfItsOwn) {
    Reply cacheable;
    cacheable.headers = {{"Cache-Control", "max-age=600"}};
    cacheable.pieces = {"once"};
    std::string url = this->port.serve("/cacheable", cacheable);
    RecordingClient second;
    this->start(url, this->client);
    this->runToEnd(this->client);
    this->start(url, second);
    this->runToEnd(second);
    EXPECT_EQ(this->port.seen("/cacheable").size(), 2u);
    EXPECT_EQ(second.body, "once");
}

TYPED_TEST_P(UrlLoaderContract, CookiesAreKeptAndSentWhenTheRequestAsks) {
    Reply setter;
    setter.headers = {{"Set-Cookie", "session=abc; Path=/"}};
    this->start(this->port.serve("/login", setter), this->client);
    this->runToEnd(this->client);
    std::string check = this->port.serve("/check", Reply{});
    RecordingClient with, without;
    this->start(check, with);
    this->runToEnd(with);
    kit::UrlRequest bare(*kit::Url::parse(check));
    bare.setHttpShouldHandleCookies(false);
    this->start(bare, without);
    this->runToEnd(without);
    auto seen = this->port.seen("/check");
    ASSERT_EQ(seen.size(), 2u);
    EXPECT_EQ(seen[0].headers.value("cookie"), "session=abc");
    EXPECT_FALSE(seen[1].headers.contains("cookie"));
}

TYPED_TEST_P(UrlLoaderContract, TheTimeOutCountsTimeWithoutProgress) {
    Reply silent;
    silent.headDelay = 3;
    kit::UrlRequest stalled(*kit::Url::parse(this->port.serve("/silent", silent)));
    stalled.setTimeoutInterval(0.5);
    Reply trickle;
    trickle.pieces = {"1", "2", "3", "4"};
    trickle.pieceGap = 0.3;
    kit::UrlRequest slow(*kit::Url::parse(this->port.serve("/trickle", trickle)));
    slow.setTimeoutInterval(0.5);
    RecordingClient progressing;
    this->start(stalled, this->client);
    this->start(slow, progressing);
    this->runToEnd(this->client);
    this->runToEnd(progressing);
    ASSERT_EQ(this->client.calls, std::vector<std::string>{"fail"});
    EXPECT_EQ(this->client.error->code(), kit::UrlError::kTimedOut);
    EXPECT_EQ(progressing.calls.back(), "finish") << "an answer that keeps coming is not cut off";
    EXPECT_EQ(progressing.body, "1234");
}

REGISTER_TYPED_TEST_SUITE_P(UrlLoaderContract, ReportsTheHeadTheBodyAndTheEndInTurnsOfTheirOwn,
                            RedirectsAndHttpErrorsAreAnswersLikeAnyOther, ARefusedConnectionFailsWithTheUrl,
                            SendsTheMethodHeadersAndBodyItIsGiven,
                            NothingIsReportedAfterCancelOrDestructionEvenFromInsideAReport,
                            KeepsNoAnswersOfItsOwn, CookiesAreKeptAndSentWhenTheRequestAsks,
                            TheTimeOutCountsTimeWithoutProgress);

}  // namespace contract
