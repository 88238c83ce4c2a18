// The reference ad server's support script and creatives, run by the real web engine through kit's
// web view, as the ad client runs them.
#include "ads/Notification/ZEBNotification.h"
#include "ads/ThirdParty/ZEBJSON.h"
#include "adserver/QueryString.h"
#include "kit/WebView.h"
#include "tests/adserver/RunningAdServer.h"
#include "tests/integration/support/WebTestSupport.h"

#include <gtest/gtest.h>
#include <httplib.h>

#include <optional>
#include <string>
#include <vector>

using kit::Url;

namespace {

// Loads pages, keeps the bridge commands (and loads none of them), notes how pages end.
class BridgeDelegate : public kit::WebViewDelegate {
public:
    bool webViewShouldStartLoadWithRequestNavigationType(kit::WebView&, const Url& url,
                                                         kit::WebViewNavigationType) override {
        if (!ZEBNotification::isNotificationURL(url)) return true;
        commands.push_back(ZEBNotification::createWithNotificationURL(url));
        return false;
    }
    void webViewDidFinishLoad(kit::WebView&) override { ++finishes; }
    void webViewDidFailLoadWithError(kit::WebView&, std::shared_ptr<const kit::Error>) override {
        ++failures;
    }

    std::vector<std::shared_ptr<ZEBNotification>> commands;
    int finishes = 0, failures = 0;
};

std::string parameter(const ZEBNotification& command, const std::string& name) {
    const kit::Value* value = command.parameters() ? command.parameters()->find(name) : nullptr;
    return value && value->string() ? *value->string() : "(none)";
}

}  // namespace

class AdServerScriptQtTest : public qttest::QtPlatformTest {
protected:
    void SetUp() override {
        QtPlatformTest::SetUp();
        delegate = std::make_shared<BridgeDelegate>();
        view = std::make_shared<kit::WebView>(kit::Rect{0, 0, 1, 1});
        view->setDelegate(delegate);
        httplib::Client client(server.origin());
        auto script = client.Get("/sdk-core-v40.js");
        ASSERT_TRUE(script && script->status == 200);
        supportScript = script->body;
    }
    void TearDown() override {
        view.reset();
        QtPlatformTest::TearDown();
    }

    // Builds the ad URL as the ad object does: the script and its call in one page, whose base URL is
    // the server's origin; waits for the script's one answer.
    std::shared_ptr<ZEBNotification> buildAdURL(const std::string& parametersJson) {
        view->loadHtmlString("<html><head><script>" + supportScript + "</script><script>QUOR_buildAdURL(" +
                                 parametersJson + ");</script></head><body></body></html>",
                             Url::parse(server.url("/")));
        if (!webtest::runUntil([&] { return !delegate->commands.empty(); })) return nullptr;
        // Nothing answers twice.
        webtest::runUntil([] { return false; }, 0.2);
        EXPECT_EQ(delegate->commands.size(), 1u);
        return delegate->commands.front();
    }

    adtest::RunningAdServer server;
    std::string supportScript;
    std::shared_ptr<BridgeDelegate> delegate;
    std::shared_ptr<kit::WebView> view;
};

TEST_F(AdServerScriptQtTest, ValidParametersGiveLoadAdURLWithEveryParameterAndTheAdAnswers) {
    // Strings, numbers, nested maps and lists, as the ad client's request parameters are; text that
    // needs encoding; a character outside ASCII.
    const std::string parameters =
        R"({"isu":"0123456789ABCDEF0123456789ABCDEF","js":"quor-sdk-i-v5.0.5","u_w":480,"u_sd":1.5,)"
        R"("kw":["drums","caf\u00e9"],"extras":{"mood":"none?","a&b":"c=d"},"preqs":0,)"
        R"("slotname":"a1b2c3d4e5f6a7b","ad_frame":{"x":80,"y":256,"w":320,"h":50},"hl":"en us+;"})";
    auto command = buildAdURL(parameters);
    ASSERT_TRUE(command);
    EXPECT_EQ(command->name(), "loadAdURL");
    EXPECT_EQ(parameter(*command, "type"), "pelko");
    std::vector<QueryString::Pair> expected = {
        {"isu", "0123456789ABCDEF0123456789ABCDEF"},
        {"js", "quor-sdk-i-v5.0.5"},
        {"u_w", "480"},
        {"u_sd", "1.5"},
        {"kw", "[\"drums\",\"caf\xc3\xa9\"]"},
        {"extras", R"({"mood":"none?","a&b":"c=d"})"},
        {"preqs", "0"},
        {"slotname", "a1b2c3d4e5f6a7b"},
        {"ad_frame", R"({"x":80,"y":256,"w":320,"h":50})"},
        {"hl", "en us+;"},
    };
    EXPECT_EQ(parameter(*command, "url"), server.url("/ad?") + QueryString::build(expected));

    // The URL is one the server answers; what it stored is every parameter, as sent.
    auto url = Url::parse(parameter(*command, "url"));
    ASSERT_TRUE(url);
    httplib::Client client(server.origin());
    auto ad = client.Get(url->path() + "?" + url->query().value_or(""));
    ASSERT_TRUE(ad);
    EXPECT_EQ(ad->status, 200);
    EXPECT_NE(ad->get_header_value("X-Quor-Tracking-Urls"), "");
    auto stored = server.server().events().latest(0, 1);
    ASSERT_EQ(stored.size(), 1u);
    EXPECT_EQ(stored[0].kind, "request");
    EXPECT_EQ(stored[0].outcome, "fill");
    EXPECT_EQ(QueryString::parse(stored[0].query), expected);
}

TEST_F(AdServerScriptQtTest, EachRejectionGivesItsCommand) {
    struct Case {
        std::string parameters;
        std::string command;
        std::string key, value;
    };
    const std::vector<Case> cases = {
        {R"({"slotname":"nobody-has-this"})", "invalidRequest", "slotname", "nobody-has-this"},
        {R"({"js":"quor-sdk-i-v5.0.5"})", "invalidRequest", "reason", "no slotname"},
        {R"({"slotname":""})", "invalidRequest", "reason", "no slotname"},
        // The ad client hands over "" when its parameters do not serialise.
        {"", "invalidRequest", "reason", "the parameters are not a map"},
        {R"({"slotname":"demo-off"})", "unableToServe", "slotname", "demo-off"},
        {R"({"slotname":"demo-errors"})", "loadAdURL", "errors", "the slot answers with errors"},
        {R"({"slotname":"demo-mediation"})", "loadAdURL", "type", "tessar"},
        // A name that only an object's prototype has is no slot.
        {R"({"slotname":"toString"})", "invalidRequest", "reason", "unknown slotname"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.parameters);
        delegate->commands.clear();
        auto command = buildAdURL(c.parameters);
        ASSERT_TRUE(command);
        EXPECT_EQ(command->name(), c.command);
        EXPECT_EQ(parameter(*command, c.key), c.value);
        if (c.key == "errors") {
            EXPECT_EQ(parameter(*command, "url"), "(none)");
        }
    }
}

TEST_F(AdServerScriptQtTest, AnImageCreativeRendersWithItsPictureFromTheServer) {
    httplib::Client client(server.origin());
    auto ad = client.Get("/ad?slotname=a1b2c3d4e5f6a7b&creative=image");
    ASSERT_TRUE(ad && ad->status == 200);
    view->setFrame({0, 0, 320, 50});
    view->loadHtmlString(ad->body, Url::parse(server.url("/ad")));
    ASSERT_TRUE(webtest::runUntil([&] { return delegate->finishes + delegate->failures > 0; }));
    EXPECT_EQ(delegate->failures, 0);
    std::optional<std::string> width;
    view->evaluateScript("document.images[0].complete ? String(document.images[0].naturalWidth) : 'loading'",
                         [&](std::string result) { width = result; });
    ASSERT_TRUE(webtest::runUntil([&] { return width.has_value(); }));
    EXPECT_EQ(*width, "320");
}

TEST_F(AdServerScriptQtTest, ABrokenPageCreativeFailsToLoad) {
    httplib::Client client(server.origin());
    auto ad = client.Get("/ad?slotname=fault-broken-page");
    ASSERT_TRUE(ad && ad->status == 200);
    view->loadHtmlString(ad->body, Url::parse(server.url("/ad")));
    ASSERT_TRUE(webtest::runUntil([&] { return delegate->finishes + delegate->failures > 0; }));
    webtest::runUntil([] { return false; }, 0.3);
    EXPECT_EQ(delegate->failures, 1);
    EXPECT_EQ(delegate->finishes, 0);
}
