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

#include <cctype>
#include <future>
#include <map>
#include <regex>
#include <string>
#include <vector>

using adtest::RunningAdServer;
using kit::Value;

namespace {

constexpr auto npos = std::string::npos;

// Sends `request` as it is (a target alone as a GET with that Host) and reads until the server closes
// the connection.
std::string rawExchange(int port, std::string request, const std::string& host = "127.0.0.1") {
    if (request[0] == '/')
        request = "GET " + request + " HTTP/1.1\r\nHost: " + host + "\r\nConnection: close\r\n\r\n";
    int sock = socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address{AF_INET, htons(uint16_t(port)), {htonl(INADDR_LOOPBACK)}, {}};
    if (connect(sock, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0) return "(no connection)";
    send(sock, request.data(), request.size(), MSG_NOSIGNAL);
    std::string answer;
    char buffer[4096];
    ssize_t n;
    while ((n = recv(sock, buffer, sizeof buffer, 0)) > 0) answer.append(buffer, size_t(n));
    close(sock);
    return answer;
}

Value json(const std::string& text) {
    auto value = ZEBJSON().objectWithStringError(text);
    return value ? *value : Value();
}

// What is at a path of keys and array indexes ("events/0/slot"); null when nothing is.
const Value& at(const Value& value, std::string_view path) {
    static const Value none;
    const Value* here = &value;
    while (here && !path.empty()) {
        std::string step(path.substr(0, path.find('/')));
        path.remove_prefix(std::min(path.size(), step.size() + 1));
        const Value::Array* array = here->array();
        size_t index = array && std::isdigit(uint8_t(step[0])) ? std::stoul(step) : npos;
        if (array) here = index < array->size() ? &(*array)[index] : nullptr;
        if (!array) here = here->map() ? here->map()->find(step) : nullptr;
    }
    return here ? *here : none;
}

const Value::Array& list(const Value& value, std::string_view path) {
    static const Value::Array none;
    return at(value, path).array() ? *at(value, path).array() : none;
}

std::string text(const Value& value, std::string_view path) {
    const Value& found = at(value, path);
    return found.string() ? *found.string() : "(not a string)";
}

// An event as "kind/outcome/detail/slot/network", to compare in one go.
std::string summary(const Event& e) {
    return e.kind + "/" + e.outcome + "/" + e.detail + "/" + e.slot + "/" + e.network;
}

}  // namespace

class AdServerTest : public ::testing::Test {
protected:
    AdServerTest() { serve(); }

    // A server with the slots of this configuration, whose stalls last `stallSeconds`, in place of the
    // one before.
    void serve(const std::string& config = "{}", double stallSeconds = 0.2) {
        std::string error;
        auto slots = SlotTable::withJson(config, &error);
        EXPECT_TRUE(slots) << error;
        server = std::make_unique<RunningAdServer>(slots.value_or(SlotTable::builtIn()), stallSeconds);
        client = std::make_unique<httplib::Client>(server->origin());
        client->set_url_encode(false);
    }
    httplib::Result fetch(const std::string& target, const httplib::Headers& headers = {}) {
        return client->Get(target, headers);
    }
    // The events the server stored, newest first.
    std::vector<Event> stored(size_t limit = 10) { return server->server().events().latest(0, limit); }
    // The newest event; an empty one when there is none.
    Event last() { return stored(1).empty() ? Event() : stored(1)[0]; }
    // The creative (or fault) that the server stored for an ad request.
    std::string served(const std::string& target) { return fetch(target) ? last().detail : "(no answer)"; }
    int port() { return server->server().port(); }

    std::unique_ptr<RunningAdServer> server;
    std::unique_ptr<httplib::Client> client;
};

TEST_F(AdServerTest, ACreativeCarriesHeadersThatPointBackAtTheServerAndNoFillOnlyTheRefresh) {
    auto ad = fetch("/ad?slotname=a1b2c3d4e5f6a7b&creative=text&js=quor-sdk-i-v5.0.5");
    ASSERT_TRUE(ad);
    EXPECT_EQ(ad->status, 200);
    EXPECT_EQ(ad->get_header_value("Content-Type"), "text/html; charset=utf-8");
    Event request = last();
    EXPECT_EQ(summary(request), "request/fill/text/a1b2c3d4e5f6a7b/");
    std::string tags = "slot=a1b2c3d4e5f6a7b&c=text&rid=" + std::to_string(request.id);
    EXPECT_EQ(ad->get_header_value("X-Quor-Tracking-Urls"), server->url("/track?ev=imp&" + tags));
    EXPECT_EQ(ad->get_header_value("X-Quor-Click-Tracking-Urls"), server->url("/track?ev=click&" + tags));
    EXPECT_EQ(ad->get_header_value("X-Quor-Refresh-Rate"), "30");
    EXPECT_EQ(ad->get_header_value("X-Quor-Orientation"), "any");
    EXPECT_EQ(ad->get_header_value("X-Quor-Interstitial-Timeout"), "5");
    std::string click = server->url("/click?" + std::regex_replace(tags, std::regex("&"), "&amp;"));
    EXPECT_NE(ad->body.find("href=\"" + click), npos) << ad->body;
    ASSERT_TRUE(fetch("/track?ev=imp&" + tags));
    EXPECT_EQ(summary(last()), "ping/imp/text/a1b2c3d4e5f6a7b/") << "the tracking ping is stored";

    auto none = fetch("/ad?slotname=demo-nofill");
    ASSERT_TRUE(none);
    EXPECT_EQ(none->status, 200);
    EXPECT_EQ(none->body, "");
    EXPECT_EQ(none->get_header_value("X-Quor-Refresh-Rate"), "30");
    EXPECT_FALSE(none->has_header("X-Quor-Tracking-Urls"));
    EXPECT_EQ(last().outcome, "nofill");
}

TEST_F(AdServerTest, EveryCreativeIsWholeAndUsesOnlyTheServerInBothSizes) {
    const std::regex address(R"re((?:src|href)="(https?://[^"]*)")re");
    for (std::string slot : {"a1b2c3d4e5f6a7b", "a1f9e8d7c6b5a49"}) {
        for (const std::string& name : CreativeLibrary::names()) {
            SCOPED_TRACE(slot + " " + name);
            auto ad = fetch("/ad?slotname=" + slot + "&creative=" + name);
            ASSERT_TRUE(ad);
            EXPECT_EQ(ad->status, 200);
            EXPECT_EQ(ad->body.find("{{"), npos);
            EXPECT_NE(ad->body.find("</html>"), npos);
            for (std::sregex_iterator it(ad->body.begin(), ad->body.end(), address), end; it != end; ++it)
                EXPECT_EQ((*it)[1].str().rfind(server->origin(), 0), 0u) << (*it)[1].str();
        }
    }
    EXPECT_NE(fetch("/ad?slotname=a1f9e8d7c6b5a49&creative=image")->body.find("/img/house-768x90.svg"), npos);
    auto image = fetch("/img/house-768x90.svg");
    EXPECT_EQ(image->get_header_value("Content-Type"), "image/svg+xml");
    EXPECT_NE(image->body.find("width=\"768\""), npos);
}

TEST_F(AdServerTest, SlotsServeTheirCreativesInTurnShapedByTheConfiguration) {
    std::vector<std::string> turns, expected = CreativeLibrary::bannerNames();
    expected.push_back(expected.front());
    while (turns.size() < expected.size()) turns.push_back(served("/ad?slotname=a1b2c3d4e5f6a7b"));
    EXPECT_EQ(turns, expected);
    EXPECT_EQ(served("/ad?slotname=a1b2c3d4e5f6a7b&format=interstitial_mb"), "interstitial")
        << "full-screen requests get the interstitial";

    serve(R"({"slots": {
        "odd": {"answer": "mediation", "mediation": {"ad_networks": [], "settings": {"refresh": "30000"}}},
        "two": {"creatives": ["image", "app"], "refresh": 0, "orientation": "Portrait", "clickTracking": false,
                "interstitialTimeout": 0}}})");
    Value document = json(fetch("/ad?slotname=odd")->body);
    EXPECT_EQ(at(document, "ad_networks"), Value(Value::Array{})) << "the configured document replaces";
    EXPECT_EQ(text(document, "settings/refresh"), "30000");
    EXPECT_EQ(text(document, "ad_type"), "banner") << "keys the configuration leaves alone stay";

    auto ad = fetch("/ad?slotname=two");
    ASSERT_TRUE(ad);
    for (const char* absent :
         {"X-Quor-Refresh-Rate", "X-Quor-Click-Tracking-Urls", "X-Quor-Interstitial-Timeout"})
        EXPECT_FALSE(ad->has_header(absent)) << absent;
    EXPECT_EQ(ad->get_header_value("X-Quor-Orientation"), "Portrait");
    turns = {last().detail, served("/ad?slotname=two"), served("/ad?slotname=two")};
    EXPECT_EQ(turns, (std::vector<std::string>{"image", "app", "image"}));
}

TEST_F(AdServerTest, AMediatedSlotNamesTheHouseNetworkWhichFillsOrAnswersNoFill) {
    for (std::string type : {"banner", "interstitial"}) {
        auto ad = fetch("/ad?slotname=demo-mediation" +
                        std::string(type == "banner" ? "" : "&format=interstitial_mb"));
        ASSERT_TRUE(ad);
        EXPECT_EQ(ad->get_header_value("Content-Type"), "application/json");
        Value document = json(ad->body);
        EXPECT_EQ(text(document, "ad_networks/0/id"), "house");
        EXPECT_EQ(text(document, "ad_networks/0/adapters/0"), "ZEBMAdapterHouse");
        EXPECT_EQ(text(document, "ad_networks/0/data/pubid"), "house-" + type);
        EXPECT_EQ(text(document, "ad_type"), type);
        EXPECT_EQ(at(document, "settings/refresh").integer(), 30);
        EXPECT_EQ(text(document, "qdata"), "demo-mediation:" + std::to_string(last().id));
    }
    Value ad = json(fetch("/house/ad?pubid=house-banner&size=768x90&slot=demo-mediation")->body);
    EXPECT_EQ(text(ad, "image"), server->url("/img/house-768x90.svg"));
    EXPECT_EQ(text(ad, "click"), server->url("/landing/links"));
    EXPECT_EQ(at(ad, "width").integer(), 768);
    EXPECT_EQ(summary(last()), "house/fill/house-banner/demo-mediation/house");
    EXPECT_EQ(fetch("/house/ad?pubid=nofill")->status, 204);
}

TEST_F(AdServerTest, AdRequestsTheServerCannotAnswerAreRefusedAndStillStored) {
    const std::vector<std::tuple<std::string, int, std::string, std::string>> cases = {
        {"/ad?slotname=nobody", 400, "unknown slotname \"nobody\"", "invalid"},
        {"/ad?js=quor-sdk-i-v5.0.5", 400, "no slotname", "invalid"},
        {"/ad?slotname=a1b2c3d4e5f6a7b&fault=sometimes", 400, "unknown fault \"sometimes\"", "invalid"},
        {"/ad?slotname=a1b2c3d4e5f6a7b&creative=video", 400, "unknown creative \"video\"", "invalid"},
        {"/ad?slotname=demo-off", 503, "switched off", "off"},
    };
    for (const auto& [target, status, says, outcome] : cases) {
        SCOPED_TRACE(target);
        auto answer = fetch(target);
        ASSERT_TRUE(answer);
        EXPECT_EQ(answer->status, status);
        EXPECT_NE(answer->body.find(says), npos) << answer->body;
        EXPECT_EQ(last().outcome, outcome);
    }
}

TEST_F(AdServerTest, EachFaultByItsSlotByTheRequestAndByTheRequestsExtrasAsPromised) {
    // The fault, the status, the Location and the body, all of it or (whole false) a part.
    const std::vector<std::tuple<std::string, int, std::string, std::string, bool>> cases = {
        {"400", 400, "", "fault \"400\"", false},
        {"404", 404, "", "fault \"404\"", false},
        {"500", 500, "", "fault \"500\"", false},
        {"503", 503, "", "fault \"503\"", false},
        {"stall", 503, "", "fault \"stall\"", false},  // after the test server's short stall
        {"redirect-loop", 302, server->url("/redirect-loop/a"), "", false},
        {"store-redirect", 302, "appstore://app/org.quiblo.kazoo", "", false},
        {"empty", 200, "", "", true},
        {"whitespace", 200, "", " \n\t \r\n  ", true},
        {"broken-page", 200, "", "\"" + server->url("/broken") + "\"", false},
    };
    for (const auto& [fault, status, location, body, whole] : cases) {
        for (std::string target :
             {"/ad?slotname=fault-" + fault, "/ad?slotname=a1b2c3d4e5f6a7b&fault=" + fault,
              "/ad?slotname=a1b2c3d4e5f6a7b&extras=" +
                  QueryString::encode("{\"fault\":\"" + fault + "\"}")}) {
            SCOPED_TRACE(target);
            auto answer = fetch(target);
            ASSERT_TRUE(answer);
            EXPECT_EQ(answer->status, status);
            EXPECT_EQ(answer->get_header_value("Location"), location);
            EXPECT_TRUE(whole ? answer->body == body : answer->body.find(body) != npos) << answer->body;
            EXPECT_EQ(answer->get_header_value("X-Quor-Refresh-Rate"), "30");
            EXPECT_EQ(last().outcome + " " + last().detail, "fault " + fault);
        }
    }
    // Truncated answers and the redirect loop never complete.
    for (const std::string& target : {std::string("/ad?slotname=fault-truncated"), std::string("/broken")}) {
        std::string answer = rawExchange(port(), target);
        std::smatch length;
        ASSERT_TRUE(std::regex_search(answer, length, std::regex("Content-Length: (\\d+)"))) << answer;
        size_t body = answer.size() - answer.find("\r\n\r\n") - 4;
        EXPECT_GT(body, 0u);
        EXPECT_LT(body, std::stoul(length[1])) << target;
    }
    EXPECT_FALSE(fetch("/ad?slotname=fault-truncated")) << "a client sees a broken answer";
    for (auto [from, to] : {std::pair{"a", "b"}, std::pair{"b", "a"}}) {
        auto answer = fetch(std::string("/redirect-loop/") + from);
        EXPECT_EQ(answer->status, 302);
        EXPECT_EQ(answer->get_header_value("Location"), server->url(std::string("/redirect-loop/") + to));
    }
}

TEST_F(AdServerTest, TheSupportScriptRevalidatesNamesTheServerAsTheClientDidAndFailsOnDemand) {
    auto script = fetch("/sdk-core-v40.js?cb=1700000000");
    ASSERT_TRUE(script);
    EXPECT_EQ(script->get_header_value("Content-Type"), "application/javascript; charset=utf-8");
    EXPECT_NE(script->body.find("window.QUOR_buildAdURL"), npos);
    EXPECT_EQ(fetch("/sdk/v40/sdk-core-v40.js")->body, script->body) << "under any folder too";
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

    std::string answer = rawExchange(port(), "/sdk-core-v40.js", "ads.quiblo.test:8480");
    EXPECT_NE(answer.find("var SERVER = \"http://ads.quiblo.test:8480\";"), npos);
    // A Host that is no plain host name is not trusted into the script.
    answer = rawExchange(port(), "/sdk-core-v40.js", "x\";alert(1);//");
    EXPECT_NE(answer.find("var SERVER = \"" + server->origin() + "\";"), npos);
    EXPECT_EQ(answer.find("alert"), npos);

    EXPECT_EQ(fetch("/sdk-core-v40.js?fault=404")->status, 404);
    EXPECT_EQ(fetch("/sdk-core-v40.js?fault=whenever")->status, 400);
    EXPECT_NE(fetch("/sdk-core-v40.js?fault=broken-page")->body.find("throw"), npos);
    serve(R"({"script": {"fault": "404"}})");
    EXPECT_EQ(fetch("/sdk-core-v40.js")->status, 404);
    server->server().setScriptFault(std::nullopt);
    EXPECT_EQ(fetch("/sdk-core-v40.js")->status, 200);
}

TEST_F(AdServerTest, EventReportsAreStoredWithEveryParameterByteForByte) {
    const std::string query =
        "slotname=demo-mediation&ad_network_id=house&qdata=demo-mediation%3A7&seq_num=3&session_id="
        "18446744073709551615&js=quor-sdk-i-v5.0.5&nr=1&isu=0123456789ABCDEF0123456789ABCDEF";
    for (std::string kind : {"imp", "clk", "nofill"}) {
        for (std::string prefix : {"", "/events"}) {
            SCOPED_TRACE(prefix + "/" + kind);
            auto answer = fetch(prefix + "/" + kind + "?" + query);
            ASSERT_TRUE(answer);
            EXPECT_EQ(answer->status, 200);
            EXPECT_EQ(answer->get_header_value("Content-Type"), "image/gif");
            EXPECT_EQ(summary(last()), kind + "/reported//demo-mediation/house");
            EXPECT_EQ(last().query, query);
        }
    }
    Value listed = json(fetch("/api/events?limit=1")->body);
    EXPECT_EQ(list(listed, "events/0/params").size(), 8u);
    EXPECT_EQ(at(listed, "events/0/params/2"), (Value(Value::Array{"qdata", "demo-mediation:7"})));

    // Hostile values too.
    const std::vector<std::string> queries = {
        "slotname=x%27%3B%20DROP%20TABLE%20events%3B--&ad_network_id=%22%29%3B",
        "slotname=\xff\xfe\xc0\x80&ad_network_id=caf\xc3\xa9",
        "slotname=%zz%&a=%&&=b&&a=2&noequals",
        "slotname=" + std::string(6000, 'v'),
    };
    for (const std::string& query : queries) {
        std::string answer = rawExchange(port(), "/imp?" + query);
        EXPECT_EQ(answer.rfind("HTTP/1.1 200", 0), 0u) << answer.substr(0, 80);
        EXPECT_EQ(last().query, query);
    }
    auto events = stored(4);
    EXPECT_EQ(events.at(0).slot, std::string(6000, 'v'));
    EXPECT_EQ(events.at(2).slot, "\xff\xfe\xc0\x80");
    EXPECT_EQ(events.at(3).slot, "x'; DROP TABLE events;--");

    // Shown as valid UTF-8, with the bytes that are not replaced.
    listed = json(fetch("/api/events?limit=4")->body);
    EXPECT_EQ(text(listed, "events/2/slot"), "\xef\xbf\xbd\xef\xbf\xbd\xef\xbf\xbd\xef\xbf\xbd");
    EXPECT_EQ(text(listed, "events/2/network"), "caf\xc3\xa9");
}

TEST_F(AdServerTest, WhatTheServerCannotAnswerGetsAClear4xxAndTheServerGoesOn) {
    // A target alone is sent as a GET; anything else as it is.
    const std::vector<std::pair<std::string, int>> cases = {
        {"GARBAGE\r\n\r\n", 400},
        {"/imp?slotname=" + std::string(20000, 'x'), 414},
        {"/nowhere", 404},
        {"/landing/nowhere", 404},
        {"/img/house-1x1.svg", 404},
        {"/api/events?after=1e9", 400},
        {"/api/events?limit=-1", 400},
        {"/api/stats?wait=soon", 400},
        {"/house/ad?size=1x1", 400},
        {"POST /imp HTTP/1.1\r\nHost: a\r\nConnection: close\r\nContent-Length: 99999999\r\n\r\n", 413},
    };
    for (const auto& [request, status] : cases) {
        std::string answer = rawExchange(port(), request);
        EXPECT_EQ(answer.substr(0, 12), "HTTP/1.1 " + std::to_string(status)) << request.substr(0, 60);
        EXPECT_GT(answer.size(), answer.find("\r\n\r\n") + 4) << "says why: " << answer.substr(0, 80);
    }
    EXPECT_EQ(fetch("/")->status, 200);
}

TEST_F(AdServerTest, TheClickRedirectorRecordsAndLandsOnlyOnItsOwnPagesWhichServe) {
    const std::vector<std::pair<std::string, std::string>> cases = {
        {"form", "/landing/form"},
        {"long", "/landing/long"},
        {"media", "/landing/media"},
        {"http%3A%2F%2Fanywhere.example%2F", "/landing/links"},
        {"..%2Fapi%2Fstats", "/landing/links"},
    };
    for (const auto& [to, landing] : cases) {
        SCOPED_TRACE(to);
        auto answer = fetch("/click?slot=a1b2c3d4e5f6a7b&c=text&rid=4&to=" + to);
        ASSERT_TRUE(answer);
        EXPECT_EQ(answer->status, 302);
        EXPECT_EQ(answer->get_header_value("Location"), server->url(landing));
        EXPECT_EQ(summary(last()), "click/redirect/text/a1b2c3d4e5f6a7b/");
        auto page = fetch(landing);
        EXPECT_EQ(page->status, 200);
        EXPECT_EQ(page->get_header_value("Content-Type"), "text/html; charset=utf-8");
    }
    EXPECT_NE(fetch("/landing/media")->body.find("src=\"/media/tone.wav\""), npos);
    auto tone = fetch("/media/tone.wav");
    EXPECT_EQ(tone->body.substr(0, 4), "RIFF");
    EXPECT_EQ(tone->body.size(), 44u + 22050u * 2);
    auto thanks = fetch("/landing/thanks?name=%3Cscript%3ESam&sound=Kaboom%21");
    EXPECT_NE(thanks->body.find("<dt>name</dt><dd>&lt;script&gt;Sam</dd>"), npos);
    EXPECT_NE(thanks->body.find("<dd>Kaboom!</dd>"), npos);
}

TEST_F(AdServerTest, TheStatsCountEachSlotAndNetworkAsTheDashboardShowsThemAndWaitForNews) {
    for (const char* target :
         {"/ad?slotname=a1b2c3d4e5f6a7b", "/ad?slotname=a1b2c3d4e5f6a7b", "/ad?slotname=demo-nofill",
          "/ad?slotname=fault-500", "/track?ev=imp&slot=a1b2c3d4e5f6a7b",
          "/track?ev=click&slot=a1b2c3d4e5f6a7b", "/click?slot=a1b2c3d4e5f6a7b&c=text",
          "/nofill?slotname=demo-nofill", "/house/ad?pubid=house-banner&slot=demo-mediation",
          "/house/ad?pubid=nofill&slot=demo-mediation", "/imp?slotname=demo-mediation&ad_network_id=house",
          "/clk?slotname=demo-mediation&ad_network_id=house"})
        ASSERT_TRUE(fetch(target));
    Value stats = json(fetch("/api/stats")->body);
    // Requests, fills, impressions, clicks, no-fills and pings by slot and by network.
    std::map<std::string, std::vector<int64_t>> rows;
    for (std::string table : {"slot", "network"}) {
        for (const Value& row : list(stats, table + "s"))
            for (const char* column : {"requests", "fills", "impressions", "clicks", "nofills", "pings"})
                rows[text(row, table)].push_back(at(row, column).integer().value_or(-1));
    }
    EXPECT_EQ(rows["a1b2c3d4e5f6a7b"], (std::vector<int64_t>{2, 2, 1, 1, 0, 2}));
    EXPECT_EQ(rows["demo-nofill"], (std::vector<int64_t>{1, 0, 0, 0, 2, 0}));
    EXPECT_EQ(rows["fault-500"], (std::vector<int64_t>{1, 0, 0, 0, 0, 0}));
    EXPECT_EQ(rows["demo-mediation"], (std::vector<int64_t>{0, 0, 1, 1, 0, 0}))
        << "house requests are no slot's";
    EXPECT_EQ(rows["house"], (std::vector<int64_t>{2, 1, 1, 1, 1, 0}));
    EXPECT_EQ(at(stats, "totals/requests").integer(), 4);
    EXPECT_EQ(at(stats, "lastEventId").integer(), last().id);

    Value newer = json(fetch("/api/events?after=" + std::to_string(stored(3).at(2).id) + "&limit=5")->body);
    EXPECT_EQ(list(newer, "events").size(), 2u);
    EXPECT_EQ(text(newer, "events/0/kind"), "clk") << "newest first";

    // Asked to, the stats wait for the next event.
    int64_t lastId = last().id;
    auto waiting = std::async(std::launch::async, [origin = server->origin(), lastId] {
        return httplib::Client(origin).Get("/api/stats?wait=30&after=" + std::to_string(lastId));
    });
    EXPECT_EQ(waiting.wait_for(std::chrono::milliseconds(200)), std::future_status::timeout)
        << "nothing new yet: the answer waits";
    ASSERT_TRUE(fetch("/imp?slotname=demo-mediation&ad_network_id=house"));
    auto answer = waiting.get();
    ASSERT_TRUE(answer);
    EXPECT_EQ(at(json(answer->body), "lastEventId").integer(), lastId + 1);
}

TEST_F(AdServerTest, StopsAtOnceKeepsEveryEventAcrossARestartAndNeverSharesItsPort) {
    serve("{}", 3600);
    for (const char* target :
         {"/ad?slotname=a1b2c3d4e5f6a7b", "/imp?slotname=demo-mediation&ad_network_id=house",
          "/track?ev=imp&slot=a1b2c3d4e5f6a7b"})
        ASSERT_TRUE(fetch(target));
    auto stall = std::async(std::launch::async, [origin = server->origin()] {
        return httplib::Client(origin).Get("/ad?slotname=fault-stall");
    });
    auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    while (last().detail != "stall" && std::chrono::steady_clock::now() < deadline) std::this_thread::yield();
    std::string stats = fetch("/api/stats")->body;
    std::vector<Event> events = stored();

    server->restart();  // without the server letting go of the stall, this would wait an hour
    auto stalled = stall.get();
    ASSERT_TRUE(stalled) << "the stalled request is answered on the way out";
    EXPECT_EQ(stalled->status, 503);
    client = std::make_unique<httplib::Client>(server->origin());
    EXPECT_EQ(fetch("/api/stats")->body, stats);
    std::vector<Event> after = stored();
    ASSERT_EQ(after.size(), events.size());
    auto keep = [](const Event& e) { return std::make_tuple(e.id, e.time, e.query, summary(e)); };
    for (size_t i = 0; i < events.size(); ++i) EXPECT_EQ(keep(after[i]), keep(events[i]));
    ASSERT_TRUE(fetch("/clk?slotname=demo-mediation&ad_network_id=house"));
    EXPECT_EQ(last().id, events.front().id + 1);

    AdServer::Settings second;
    second.port = port();
    second.dbPath = server->dbPath();
    std::string error;
    EXPECT_FALSE(AdServer::create(second, &error)) << "the port is not shared";
    EXPECT_EQ(error, "cannot listen on 127.0.0.1:" + std::to_string(port()) + ": Address already in use");
}

TEST_F(AdServerTest, TheDashboardIsOnePageWithNothingFromOutside) {
    auto page = fetch("/");
    ASSERT_TRUE(page);
    EXPECT_EQ(page->get_header_value("Content-Type"), "text/html; charset=utf-8");
    for (const char* outside : {"src=", "href=", "<link", "@import", "url(", "http:", "https:"})
        EXPECT_EQ(page->body.find(outside), npos) << outside;
    for (const char* api : {"/api/stats", "/api/events"}) EXPECT_NE(page->body.find(api), npos);
}
