// The reference ad server over real HTTP on loopback: every endpoint, every fault, bad input.
#include "ads/ThirdParty/ZEBJSON.h"
#include "adserver/CreativeLibrary.h"
#include "adserver/HttpDate.h"
#include "adserver/QueryString.h"
#include "tests/adserver/RunningAdServer.h"

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <httplib.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <functional>
#include <future>
#include <regex>
#include <string>
#include <vector>

using adtest::RunningAdServer;
using kit::Value;

namespace {

// Sends `request` as it is and reads until the server closes the connection.
std::string rawExchange(int port, const std::string& request) {
    int sock = socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(uint16_t(port));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (connect(sock, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0) return "(no connection)";
    send(sock, request.data(), request.size(), MSG_NOSIGNAL);
    std::string answer;
    char buffer[4096];
    ssize_t n;
    while ((n = recv(sock, buffer, sizeof buffer, 0)) > 0) answer.append(buffer, size_t(n));
    close(sock);
    return answer;
}

std::string get(int port, const std::string& target, const std::string& host = "127.0.0.1") {
    return rawExchange(port,
                       "GET " + target + " HTTP/1.1\r\nHost: " + host + "\r\nConnection: close\r\n\r\n");
}

Value json(const std::string& text) {
    auto value = ZEBJSON().objectWithStringError(text);
    return value ? *value : Value();
}

const Value& at(const Value& value, const std::string& key) {
    static const Value none;
    const Value* found = value.map() ? value.map()->find(key) : nullptr;
    return found ? *found : none;
}

std::string text(const Value& value) {
    return value.string() ? *value.string() : "(not a string)";
}

}  // namespace

class AdServerTest : public ::testing::Test {
protected:
    explicit AdServerTest(SlotTable slots = SlotTable::builtIn()) : server(std::move(slots), 0.2) {
        client.set_url_encode(false);
    }

    httplib::Result fetch(const std::string& target, const httplib::Headers& headers = {}) {
        return client.Get(target, headers);
    }
    // The events the server stored, newest first.
    std::vector<Event> stored(size_t limit = 10) { return server.server().events().latest(0, limit); }
    int port() { return server.server().port(); }

    RunningAdServer server;
    httplib::Client client{server.origin()};
};

TEST_F(AdServerTest, ACreativeCarriesTheResponseHeadersThatPointBackAtTheServer) {
    auto ad = fetch("/ad?slotname=a1b2c3d4e5f6a7b&creative=text&js=quor-sdk-i-v5.0.5");
    ASSERT_TRUE(ad);
    EXPECT_EQ(ad->status, 200);
    EXPECT_EQ(ad->get_header_value("Content-Type"), "text/html; charset=utf-8");
    auto request = stored(1).at(0);
    EXPECT_EQ(request.kind, "request");
    EXPECT_EQ(request.outcome, "fill");
    EXPECT_EQ(request.detail, "text");
    std::string rid = std::to_string(request.id);
    std::string tracking = server.url("/track?ev=imp&slot=a1b2c3d4e5f6a7b&c=text&rid=" + rid);
    EXPECT_EQ(ad->get_header_value("X-Quor-Tracking-Urls"), tracking);
    EXPECT_EQ(ad->get_header_value("X-Quor-Click-Tracking-Urls"),
              server.url("/track?ev=click&slot=a1b2c3d4e5f6a7b&c=text&rid=" + rid));
    EXPECT_EQ(ad->get_header_value("X-Quor-Refresh-Rate"), "30");
    EXPECT_EQ(ad->get_header_value("X-Quor-Orientation"), "any");
    EXPECT_EQ(ad->get_header_value("X-Quor-Interstitial-Timeout"), "5");
    EXPECT_NE(ad->body.find("href=\"" + server.url("/click?slot=a1b2c3d4e5f6a7b&amp;c=text&amp;rid=" + rid)),
              std::string::npos);

    // The client fires the tracking URL when the ad is shown.
    auto ping = fetch(tracking.substr(server.origin().size()));
    ASSERT_TRUE(ping);
    EXPECT_EQ(ping->get_header_value("Content-Type"), "image/gif");
    auto event = stored(1).at(0);
    EXPECT_EQ(event.kind, "ping");
    EXPECT_EQ(event.outcome, "imp");
    EXPECT_EQ(event.slot, "a1b2c3d4e5f6a7b");
}

TEST_F(AdServerTest, EveryCreativeIsWholeAndUsesOnlyTheServerInBothSizes) {
    const std::regex address(R"re((?:src|href)="(https?://[^"]*)")re");
    for (const char* slot : {"a1b2c3d4e5f6a7b", "a1f9e8d7c6b5a49"}) {
        for (const std::string& name : CreativeLibrary::names()) {
            SCOPED_TRACE(std::string(slot) + " " + name);
            auto ad = fetch(std::string("/ad?slotname=") + slot + "&creative=" + name);
            ASSERT_TRUE(ad);
            EXPECT_EQ(ad->status, 200);
            EXPECT_EQ(ad->body.find("{{"), std::string::npos);
            EXPECT_NE(ad->body.find("</html>"), std::string::npos);
            for (std::sregex_iterator it(ad->body.begin(), ad->body.end(), address), end; it != end; ++it)
                EXPECT_EQ((*it)[1].str().rfind(server.origin(), 0), 0u) << (*it)[1].str();
        }
    }
    auto wide = fetch("/ad?slotname=a1f9e8d7c6b5a49&creative=image");
    EXPECT_NE(wide->body.find("/img/house-768x90.svg"), std::string::npos);
    auto image = fetch("/img/house-768x90.svg");
    EXPECT_EQ(image->get_header_value("Content-Type"), "image/svg+xml");
    EXPECT_NE(image->body.find("width=\"768\""), std::string::npos);
    EXPECT_EQ(fetch("/img/house-1x1.svg")->status, 404);
}

TEST_F(AdServerTest, ASlotServesItsCreativesInTurnAndFullScreenRequestsGetTheInterstitial) {
    std::vector<std::string> served;
    for (size_t i = 0; i < CreativeLibrary::bannerNames().size() + 1; ++i) {
        ASSERT_TRUE(fetch("/ad?slotname=a1b2c3d4e5f6a7b"));
        served.push_back(stored(1).at(0).detail);
    }
    std::vector<std::string> expected = CreativeLibrary::bannerNames();
    expected.push_back(expected.front());
    EXPECT_EQ(served, expected);

    ASSERT_TRUE(fetch("/ad?slotname=a1b2c3d4e5f6a7b&format=interstitial_mb"));
    EXPECT_EQ(stored(1).at(0).detail, "interstitial");
}

TEST_F(AdServerTest, AMediatedSlotAnswersTheMediationDocument) {
    for (bool interstitial : {false, true}) {
        auto ad = fetch(std::string("/ad?slotname=demo-mediation") +
                        (interstitial ? "&format=interstitial_mb" : ""));
        ASSERT_TRUE(ad);
        EXPECT_EQ(ad->get_header_value("Content-Type"), "application/json");
        Value document = json(ad->body);
        const Value& network = at(document, "ad_networks").array()->at(0);
        EXPECT_EQ(text(at(network, "id")), "house");
        EXPECT_EQ(text(at(network, "adapters").array()->at(0)), "ZEBMAdapterHouse");
        EXPECT_EQ(text(at(at(network, "data"), "pubid")),
                  interstitial ? "house-interstitial" : "house-banner");
        EXPECT_EQ(text(at(document, "ad_type")), interstitial ? "interstitial" : "banner");
        EXPECT_EQ(at(at(document, "settings"), "refresh").integer(), 30);
        EXPECT_EQ(text(at(document, "qdata")), "demo-mediation:" + std::to_string(stored(1).at(0).id));
    }
}

class ConfiguredAdServerTest : public AdServerTest {
protected:
    static SlotTable configured() {
        std::string error;
        auto slots = SlotTable::withJson(R"({"slots": {
            "odd": {"answer": "mediation", "mediation": {"ad_networks": [], "settings": {"refresh": "30000"}}},
            "two": {"creatives": ["image", "app"], "refresh": 0, "orientation": "Portrait", "clickTracking": false,
                    "interstitialTimeout": 0}}})",
                                         &error);
        EXPECT_TRUE(slots) << error;
        return slots.value_or(SlotTable::builtIn());
    }
    ConfiguredAdServerTest() : AdServerTest(configured()) {}
};

TEST_F(ConfiguredAdServerTest, AConfiguredSlotShapesItsAnswers) {
    auto odd = fetch("/ad?slotname=odd");
    Value document = json(odd->body);
    EXPECT_TRUE(at(document, "ad_networks").array()->empty())
        << "the configured document replaces the server's";
    EXPECT_EQ(text(at(at(document, "settings"), "refresh")), "30000");
    EXPECT_EQ(text(at(document, "ad_type")), "banner") << "keys the configuration leaves alone stay";

    std::vector<std::string> served;
    for (int i = 0; i < 3; ++i) {
        auto ad = fetch("/ad?slotname=two");
        EXPECT_FALSE(ad->has_header("X-Quor-Refresh-Rate"));
        EXPECT_FALSE(ad->has_header("X-Quor-Click-Tracking-Urls"));
        EXPECT_FALSE(ad->has_header("X-Quor-Interstitial-Timeout"));
        EXPECT_EQ(ad->get_header_value("X-Quor-Orientation"), "Portrait");
        served.push_back(stored(1).at(0).detail);
    }
    EXPECT_EQ(served, (std::vector<std::string>{"image", "app", "image"}));
}

TEST_F(AdServerTest, NoFillIsAnEmptyCreativeThatStillSetsTheRefresh) {
    auto ad = fetch("/ad?slotname=demo-nofill");
    ASSERT_TRUE(ad);
    EXPECT_EQ(ad->status, 200);
    EXPECT_EQ(ad->body, "");
    EXPECT_EQ(ad->get_header_value("X-Quor-Refresh-Rate"), "30");
    EXPECT_FALSE(ad->has_header("X-Quor-Tracking-Urls"));
    EXPECT_EQ(stored(1).at(0).outcome, "nofill");
}

TEST_F(AdServerTest, RequestsTheServerCannotAnswerAreRefusedAndStillStored) {
    struct Case {
        std::string target;
        int status;
        std::string says, outcome;
    };
    const std::vector<Case> cases = {
        {"/ad?slotname=nobody", 400, "unknown slotname \"nobody\"", "invalid"},
        {"/ad?js=quor-sdk-i-v5.0.5", 400, "no slotname", "invalid"},
        {"/ad?slotname=a1b2c3d4e5f6a7b&fault=sometimes", 400, "unknown fault \"sometimes\"", "invalid"},
        {"/ad?slotname=a1b2c3d4e5f6a7b&creative=video", 400, "unknown creative \"video\"", "invalid"},
        {"/ad?slotname=demo-off", 503, "switched off", "off"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.target);
        auto answer = fetch(c.target);
        ASSERT_TRUE(answer);
        EXPECT_EQ(answer->status, c.status);
        EXPECT_NE(answer->body.find(c.says), std::string::npos) << answer->body;
        EXPECT_EQ(stored(1).at(0).outcome, c.outcome);
    }
}

TEST_F(AdServerTest, EachFaultByItsSlotByTheRequestAndByTheRequestsExtras) {
    using Check = std::function<void(const httplib::Result&)>;
    auto status = [](int code) {
        return Check([code](const httplib::Result& r) { EXPECT_EQ(r->status, code); });
    };
    auto body = [](std::string expected) {
        return Check([expected](const httplib::Result& r) {
            EXPECT_EQ(r->status, 200);
            EXPECT_EQ(r->body, expected);
        });
    };
    auto redirect = [this](std::string to) {
        return Check([this, to](const httplib::Result& r) {
            EXPECT_EQ(r->status, 302);
            EXPECT_EQ(r->get_header_value("Location"), to == "loop" ? server.url("/redirect-loop/a") : to);
        });
    };
    const std::vector<std::pair<std::string, Check>> faults = {
        {"400", status(400)},
        {"404", status(404)},
        {"500", status(500)},
        {"503", status(503)},
        {"stall", status(503)},  // after the test server's short stall
        {"redirect-loop", redirect("loop")},
        {"store-redirect", redirect(CreativeLibrary::storeUrl())},
        {"empty", body("")},
        {"whitespace", body(" \n\t \r\n  ")},
        {"broken-page",
         [this](const httplib::Result& r) {
             EXPECT_NE(r->body.find("location.replace"), std::string::npos);
             EXPECT_NE(r->body.find(server.url("/broken")), std::string::npos);
         }},
    };
    for (const auto& [name, check] : faults) {
        for (std::string target :
             {"/ad?slotname=fault-" + name, "/ad?slotname=a1b2c3d4e5f6a7b&fault=" + name,
              "/ad?slotname=a1b2c3d4e5f6a7b&extras=" + QueryString::encode("{\"fault\":\"" + name + "\"}")}) {
            SCOPED_TRACE(target);
            auto answer = fetch(target);
            ASSERT_TRUE(answer);
            check(answer);
            EXPECT_EQ(answer->get_header_value("X-Quor-Refresh-Rate"), "30");
            auto request = stored(1).at(0);
            EXPECT_EQ(request.outcome, "fault");
            EXPECT_EQ(request.detail, name);
        }
    }
}

TEST_F(AdServerTest, ATruncatedAnswerPromisesMoreThanItSends) {
    for (const std::string& target : {std::string("/ad?slotname=fault-truncated"), std::string("/broken")}) {
        std::string answer = get(port(), target);
        std::smatch length;
        ASSERT_TRUE(std::regex_search(answer, length, std::regex("Content-Length: (\\d+)"))) << answer;
        size_t body = answer.size() - answer.find("\r\n\r\n") - 4;
        EXPECT_GT(body, 0u);
        EXPECT_LT(body, std::stoul(length[1])) << target;
    }
    EXPECT_FALSE(fetch("/ad?slotname=fault-truncated")) << "a client sees a broken answer";
}

TEST_F(AdServerTest, TheRedirectLoopNeverEnds) {
    std::string at = "/redirect-loop/a";
    for (int hop = 0; hop < 4; ++hop) {
        auto answer = fetch(at);
        ASSERT_EQ(answer->status, 302);
        std::string next = answer->get_header_value("Location").substr(server.origin().size());
        EXPECT_NE(next, at);
        at = next;
    }
    EXPECT_EQ(at, "/redirect-loop/a");
}

TEST_F(AdServerTest, StoppingEndsAStallAtOnce) {
    RunningAdServer stalling(SlotTable::builtIn(), 3600);
    auto answer = std::async(std::launch::async, [&] {
        httplib::Client patient(stalling.origin());
        return patient.Get("/ad?slotname=fault-stall");
    });
    while (stalling.server().events().latest(0, 1).empty()) std::this_thread::yield();
    // Without the server letting go, this would wait an hour.
    stalling.restart();
    auto stalled = answer.get();
    ASSERT_TRUE(stalled) << "the stalled request is answered on the way out";
    EXPECT_EQ(stalled->status, 503);
}

TEST_F(AdServerTest, TheSupportScriptRevalidatesByItsLastModified) {
    auto script = fetch("/sdk-core-v40.js?cb=1700000000");
    ASSERT_TRUE(script);
    EXPECT_EQ(script->status, 200);
    EXPECT_EQ(script->get_header_value("Content-Type"), "application/javascript; charset=utf-8");
    EXPECT_NE(script->body.find("window.QUOR_buildAdURL"), std::string::npos);
    EXPECT_EQ(fetch("/sdk/v40/sdk-core-v40.js")->body, script->body) << "under any folder too";
    EXPECT_NE(script->body.find("var SERVER = \"" + server.origin() + "\";"), std::string::npos);
    std::string modified = script->get_header_value("Last-Modified");
    auto time = HttpDate::parse(modified);
    ASSERT_TRUE(time) << modified;

    const std::vector<std::pair<std::string, int>> cases = {
        {modified, 304},
        {modified.substr(0, modified.size() - 4), 304},  // as the client sends it: cut before "GMT"
        {HttpDate::format(*time + 3600), 304},
        {HttpDate::format(*time - 1), 200},
        {"yesterday", 200},
        {"", 200},
    };
    for (const auto& [since, status] : cases) {
        auto answer = fetch("/sdk-core-v40.js", {{"If-Modified-Since", since}});
        ASSERT_TRUE(answer);
        EXPECT_EQ(answer->status, status) << since;
        EXPECT_EQ(answer->body.empty(), status == 304) << since;
    }
}

TEST_F(AdServerTest, TheSupportScriptNamesTheServerAsTheClientNamedIt) {
    std::string answer = get(port(), "/sdk-core-v40.js", "ads.quiblo.test:8480");
    EXPECT_NE(answer.find("var SERVER = \"http://ads.quiblo.test:8480\";"), std::string::npos);
    // A Host that is no plain host name is not trusted into the script.
    answer = get(port(), "/sdk-core-v40.js", "x\";alert(1);//");
    EXPECT_NE(answer.find("var SERVER = \"" + server.origin() + "\";"), std::string::npos);
    EXPECT_EQ(answer.find("alert"), std::string::npos);
}

TEST_F(AdServerTest, TheSupportScriptFailsOnDemand) {
    EXPECT_EQ(fetch("/sdk-core-v40.js?fault=404")->status, 404);
    EXPECT_EQ(fetch("/sdk-core-v40.js?fault=whenever")->status, 400);
    EXPECT_NE(fetch("/sdk-core-v40.js?fault=broken-page")->body.find("throw"), std::string::npos);
    server.server().setScriptFault(Fault::Kind::NotFound);
    EXPECT_EQ(fetch("/sdk-core-v40.js")->status, 404);
    server.server().setScriptFault(std::nullopt);
    EXPECT_EQ(fetch("/sdk-core-v40.js")->status, 200);

    std::string error;
    auto missing = SlotTable::withJson(R"({"script": {"fault": "404"}})", &error);
    ASSERT_TRUE(missing) << error;
    RunningAdServer withoutScript(*missing);
    httplib::Client other(withoutScript.origin());
    EXPECT_EQ(other.Get("/sdk-core-v40.js")->status, 404);
}

TEST_F(AdServerTest, EventReportsAreStoredWithEveryParameterAsSent) {
    const std::string query =
        "slotname=demo-mediation&ad_network_id=house&qdata=demo-mediation%3A7&seq_num=3&session_id="
        "18446744073709551615&js=quor-sdk-i-v5.0.5&nr=1&isu=0123456789ABCDEF0123456789ABCDEF";
    for (std::string kind : {"imp", "clk", "nofill"}) {
        for (std::string prefix : {"", "/events"}) {
            SCOPED_TRACE(prefix + "/" + kind);
            auto answer = fetch(prefix + "/" + kind + "?" + query);
            ASSERT_TRUE(answer);
            EXPECT_EQ(answer->status, 200);
            auto event = stored(1).at(0);
            EXPECT_EQ(event.kind, kind);
            EXPECT_EQ(event.slot, "demo-mediation");
            EXPECT_EQ(event.network, "house");
            EXPECT_EQ(event.query, query);
        }
    }
    Value listed = json(fetch("/api/events?limit=1")->body);
    const Value& params = at(at(listed, "events").array()->at(0), "params");
    ASSERT_EQ(params.array()->size(), 8u);
    EXPECT_EQ(params.array()->at(2), (Value(Value::Array{"qdata", "demo-mediation:7"})));
}

TEST_F(AdServerTest, HostileValuesAreStoredByteForByte) {
    const std::vector<std::string> queries = {
        "slotname=x%27%3B%20DROP%20TABLE%20events%3B--&ad_network_id=%22%29%3B",
        "slotname=\xff\xfe\xc0\x80&ad_network_id=caf\xc3\xa9",
        "slotname=%zz%&a=%&&=b&&a=2&noequals",
        "slotname=" + std::string(6000, 'v'),
    };
    for (const std::string& query : queries) {
        std::string answer = get(port(), "/imp?" + query);
        EXPECT_EQ(answer.rfind("HTTP/1.1 200", 0), 0u) << answer.substr(0, 80);
        EXPECT_EQ(stored(1).at(0).query, query);
    }
    EXPECT_EQ(stored(1).at(0).slot, std::string(6000, 'v'));
    auto hostile = stored(4).at(3);
    EXPECT_EQ(hostile.slot, "x'; DROP TABLE events;--");
    EXPECT_EQ(stored(4).at(2).slot, "\xff\xfe\xc0\x80");

    // Shown as valid UTF-8, with the bytes that are not replaced.
    Value listed = json(fetch("/api/events?limit=4")->body);
    ASSERT_TRUE(listed.map()) << "the answer is valid JSON";
    EXPECT_EQ(text(at(at(listed, "events").array()->at(2), "slot")),
              "\xef\xbf\xbd\xef\xbf\xbd\xef\xbf\xbd\xef\xbf\xbd");
    EXPECT_EQ(text(at(at(listed, "events").array()->at(2), "network")), "caf\xc3\xa9");
}

TEST_F(AdServerTest, WhatIsNoHttpRequestGetsAClear4xxAndTheServerGoesOn) {
    const std::vector<std::pair<std::string, std::string>> cases = {
        {"GARBAGE\r\n\r\n", "HTTP/1.1 400"},
        {"GET /imp?slotname=" + std::string(20000, 'x') + " HTTP/1.1\r\nHost: a\r\nConnection: close\r\n\r\n",
         "HTTP/1.1 414"},
        {"GET /nowhere HTTP/1.1\r\nHost: a\r\nConnection: close\r\n\r\n", "HTTP/1.1 404"},
        {"GET /api/events?after=1e9 HTTP/1.1\r\nHost: a\r\nConnection: close\r\n\r\n", "HTTP/1.1 400"},
        {"GET /house/ad?size=1x1 HTTP/1.1\r\nHost: a\r\nConnection: close\r\n\r\n", "HTTP/1.1 400"},
        {"GET /landing/nowhere HTTP/1.1\r\nHost: a\r\nConnection: close\r\n\r\n", "HTTP/1.1 404"},
        {"POST /imp HTTP/1.1\r\nHost: a\r\nConnection: close\r\nContent-Length: 99999999\r\n\r\n",
         "HTTP/1.1 413"},
    };
    for (const auto& [request, status] : cases) {
        std::string answer = rawExchange(port(), request);
        EXPECT_EQ(answer.substr(0, status.size()), status) << request.substr(0, 60);
        size_t body = answer.find("\r\n\r\n");
        EXPECT_GT(answer.size(), body + 4) << "says why: " << answer.substr(0, 80);
    }
    EXPECT_EQ(fetch("/")->status, 200);
}

TEST_F(AdServerTest, TheClickRedirectorRecordsAndLandsOnlyOnItsOwnPages) {
    const std::vector<std::pair<std::string, std::string>> cases = {
        {"form", "/landing/form"},
        {"media", "/landing/media"},
        {"http%3A%2F%2Fanywhere.example%2F", "/landing/links"},
        {"..%2Fapi%2Fstats", "/landing/links"},
    };
    for (const auto& [to, landing] : cases) {
        auto answer = fetch("/click?slot=a1b2c3d4e5f6a7b&c=text&rid=4&to=" + to);
        ASSERT_TRUE(answer);
        EXPECT_EQ(answer->status, 302);
        EXPECT_EQ(answer->get_header_value("Location"), server.url(landing)) << to;
        auto event = stored(1).at(0);
        EXPECT_EQ(event.kind, "click");
        EXPECT_EQ(event.detail, "text");
    }
}

TEST_F(AdServerTest, LandingPagesServeAndTheFormAnswerShowsWhatWasSent) {
    for (std::string page : {"links", "form", "long", "media"}) {
        auto answer = fetch("/landing/" + page);
        ASSERT_TRUE(answer);
        EXPECT_EQ(answer->status, 200) << page;
        EXPECT_EQ(answer->get_header_value("Content-Type"), "text/html; charset=utf-8");
    }
    EXPECT_NE(fetch("/landing/media")->body.find("src=\"/media/tone.wav\""), std::string::npos);
    auto tone = fetch("/media/tone.wav");
    EXPECT_EQ(tone->body.substr(0, 4), "RIFF");
    EXPECT_EQ(tone->body.size(), 44u + 22050u * 2);
    auto thanks = fetch("/landing/thanks?name=%3Cscript%3ESam&sound=Kaboom%21");
    EXPECT_NE(thanks->body.find("<dt>name</dt><dd>&lt;script&gt;Sam</dd>"), std::string::npos);
    EXPECT_NE(thanks->body.find("<dd>Kaboom!</dd>"), std::string::npos);
}

TEST_F(AdServerTest, TheHouseNetworkFillsOrAnswersNoFill) {
    auto ad = fetch("/house/ad?pubid=house-banner&size=768x90&slot=demo-mediation");
    ASSERT_TRUE(ad);
    Value answer = json(ad->body);
    EXPECT_EQ(text(at(answer, "image")), server.url("/img/house-768x90.svg"));
    EXPECT_EQ(text(at(answer, "click")), server.url("/landing/links"));
    EXPECT_EQ(at(answer, "width").integer(), 768);
    EXPECT_EQ(fetch("/house/ad?pubid=nofill")->status, 204);
    fetch("/imp?slotname=demo-mediation&ad_network_id=house");

    Value stats = json(fetch("/api/stats")->body);
    const Value& house = at(stats, "networks").array()->at(0);
    EXPECT_EQ(text(at(house, "network")), "house");
    EXPECT_EQ(at(house, "requests").integer(), 2);
    EXPECT_EQ(at(house, "fills").integer(), 1);
    EXPECT_EQ(at(house, "nofills").integer(), 1);
    EXPECT_EQ(at(house, "impressions").integer(), 1);
    EXPECT_EQ(at(at(stats, "totals"), "requests").integer(), 0)
        << "the house network's requests are not ad requests";
}

TEST_F(AdServerTest, TheStatsCountEachSlotAsTheDashboardShowsThem) {
    const std::vector<std::string> targets = {
        "/ad?slotname=a1b2c3d4e5f6a7b",       "/ad?slotname=a1b2c3d4e5f6a7b",
        "/ad?slotname=demo-nofill",           "/ad?slotname=fault-500",
        "/track?ev=imp&slot=a1b2c3d4e5f6a7b", "/track?ev=click&slot=a1b2c3d4e5f6a7b",
        "/click?slot=a1b2c3d4e5f6a7b&c=text", "/nofill?slotname=demo-nofill",
    };
    for (const std::string& target : targets) ASSERT_TRUE(fetch(target));
    Value stats = json(fetch("/api/stats")->body);
    std::map<std::string, std::vector<int64_t>> slots;
    for (const Value& row : *at(stats, "slots").array()) {
        for (const char* column : {"requests", "fills", "impressions", "clicks", "nofills", "pings"})
            slots[text(at(row, "slot"))].push_back(*at(row, column).integer());
    }
    EXPECT_EQ(slots["a1b2c3d4e5f6a7b"], (std::vector<int64_t>{2, 2, 1, 1, 0, 2}));
    EXPECT_EQ(slots["demo-nofill"], (std::vector<int64_t>{1, 0, 0, 0, 2, 0}));
    EXPECT_EQ(slots["fault-500"], (std::vector<int64_t>{1, 0, 0, 0, 0, 0}));
    EXPECT_EQ(at(stats, "lastEventId").integer(), stored(1).at(0).id);

    Value newer = json(fetch("/api/events?after=" + std::to_string(stored(3).at(2).id) + "&limit=5")->body);
    ASSERT_EQ(at(newer, "events").array()->size(), 2u);
    EXPECT_EQ(text(at(at(newer, "events").array()->at(0), "kind")), "nofill") << "newest first";
}

TEST_F(AdServerTest, TheStatsWaitForTheNextEventWhenAsked) {
    ASSERT_TRUE(fetch("/track?ev=imp&slot=a1b2c3d4e5f6a7b"));
    int64_t last = stored(1).at(0).id;
    auto waiting = std::async(std::launch::async, [&] {
        httplib::Client dashboard(server.origin());
        return dashboard.Get("/api/stats?wait=30&after=" + std::to_string(last));
    });
    EXPECT_EQ(waiting.wait_for(std::chrono::milliseconds(200)), std::future_status::timeout)
        << "nothing new yet: the answer waits";
    ASSERT_TRUE(fetch("/imp?slotname=demo-mediation&ad_network_id=house"));
    auto answer = waiting.get();
    ASSERT_TRUE(answer);
    EXPECT_EQ(at(json(answer->body), "lastEventId").integer(), last + 1);
    EXPECT_EQ(fetch("/api/stats?wait=soon")->status, 400);
}

TEST_F(AdServerTest, EventsSurviveARestart) {
    for (const char* target :
         {"/ad?slotname=a1b2c3d4e5f6a7b", "/imp?slotname=demo-mediation&ad_network_id=house",
          "/track?ev=imp&slot=a1b2c3d4e5f6a7b"})
        ASSERT_TRUE(fetch(target));
    std::string before = fetch("/api/stats")->body;
    std::vector<Event> events = stored();

    server.restart();
    httplib::Client again(server.origin());
    EXPECT_EQ(again.Get("/api/stats")->body, before);
    std::vector<Event> after = stored();
    ASSERT_EQ(after.size(), events.size());
    for (size_t i = 0; i < events.size(); ++i) {
        EXPECT_EQ(after[i].id, events[i].id);
        EXPECT_EQ(after[i].query, events[i].query);
        EXPECT_EQ(after[i].time, events[i].time);
    }
    ASSERT_TRUE(again.Get("/clk?slotname=demo-mediation&ad_network_id=house"));
    EXPECT_EQ(stored(1).at(0).id, events.front().id + 1);
}

TEST_F(AdServerTest, ASecondServerOnTheSamePortIsRefused) {
    AdServer::Settings settings;
    settings.port = port();
    settings.dbPath = server.dbPath();
    std::string error;
    EXPECT_FALSE(AdServer::create(settings, &error)) << "the port is not shared";
    EXPECT_EQ(error, "cannot listen on 127.0.0.1:" + std::to_string(port()) + ": Address already in use");
}

TEST_F(AdServerTest, TheDashboardIsOnePageWithNothingFromOutside) {
    auto page = fetch("/");
    ASSERT_TRUE(page);
    EXPECT_EQ(page->get_header_value("Content-Type"), "text/html; charset=utf-8");
    for (const char* outside : {"src=", "href=", "<link", "@import", "url(", "http:", "https:"})
        EXPECT_EQ(page->body.find(outside), std::string::npos) << outside;
    for (const char* api : {"/api/stats", "/api/events"}) EXPECT_NE(page->body.find(api), std::string::npos);
}
