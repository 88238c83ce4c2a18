#include "ads/Notification/ZEBNotification.h"
#include "ads/Notification/ZEBNotificationCenter.h"
#include "kit/WebView.h"
#include "kit/sim/SimWebPage.h"
#include "tests/support/SimTest.h"

using kit::Url;
using kit::Value;

namespace {
std::shared_ptr<ZEBNotification> parse(const char* text) {
    return ZEBNotification::notificationFromURL(*Url::parse(text));
}
}  // namespace

using ZEBNotificationTest = SimTest;

TEST_F(ZEBNotificationTest, VmsgNamesTheCommandByItsPathAndIgnoresTheHost) {
    auto n = parse("vmsg://anything/click?u=http%3A%2F%2Fx.example%2Fa%3Fb%3D1&extra=2");
    ASSERT_TRUE(n);
    EXPECT_EQ(n->name(), "click");
    EXPECT_EQ(n->parameters(), (Value::Map{{"u", "http://x.example/a?b=1"}, {"extra", "2"}}));
    EXPECT_EQ(parse("vmsg://other/click?u=1")->parameters(), (Value::Map{{"u", "1"}}));
    // Names keep their case; a command without a query has an empty map.
    auto open = parse("vmsg://x/openURL");
    EXPECT_EQ(open->name(), "openURL");
    EXPECT_TRUE(open->parameters() && open->parameters()->empty());
}

TEST_F(ZEBNotificationTest, PelkoHostsSelectTheCommand) {
    auto launch = parse("pelko://launch?url=http%3A%2F%2Fland.example%2F&x=1");
    ASSERT_TRUE(launch);
    EXPECT_EQ(launch->name(), "open");
    EXPECT_EQ(launch->parameters(), (Value::Map{{"a", "browser"}, {"u", "http://land.example/"}}));
    EXPECT_EQ(parse("pelko://launch")->parameters(), (Value::Map{{"a", "browser"}}));

    auto close = parse("pelko://closecanvas?x=1");
    EXPECT_EQ(close->name(), "close");
    EXPECT_FALSE(close->parameters());

    auto log = parse("pelko://log?string=hello%20there&level=2");
    EXPECT_EQ(log->name(), "log");
    EXPECT_EQ(log->parameters(), (Value::Map{{"string", "hello there"}, {"level", "2"}}));

    EXPECT_FALSE(parse("pelko://other?url=x"));
}

TEST_F(ZEBNotificationTest, OnlyTheTwoSchemesWrittenInLowerCaseAreCommands) {
    for (const char* text : {"PELKO://log?string=x", "Vmsg://x/click", "http://x/click", "about:blank"}) {
        auto url = *Url::parse(text);
        EXPECT_FALSE(ZEBNotification::isNotificationURL(url)) << text;
        EXPECT_FALSE(ZEBNotification::notificationFromURL(url)) << text;
    }
    EXPECT_TRUE(ZEBNotification::isVMSGNotificationURL(*Url::parse("vmsg://x/y")));
    EXPECT_FALSE(ZEBNotification::isPelkoNotificationURL(*Url::parse("vmsg://x/y")));
    EXPECT_TRUE(ZEBNotification::isNotificationURL(*Url::parse("pelko://other")));
}

TEST_F(ZEBNotificationTest, TheCenterPostsCommandsNowOrAfterTheirDelay) {
    auto& center = ZEBNotificationCenter::defaultCenter();
    EXPECT_EQ(&center, &ZEBNotificationCenter::defaultCenter());
    std::vector<std::string> heard;
    std::vector<const void*> objects;
    auto resize = center.addObserver("resize", nullptr, [&](const kit::Notification& n) {
        heard.push_back(n.userInfo.find("w")->string() ? *n.userInfo.find("w")->string() : "?");
        objects.push_back(n.object);
    });
    auto web = std::make_shared<kit::WebView>();
    center.postNotificationFromURLObject(*Url::parse("vmsg://x/resize?w=1"), web.get());
    EXPECT_EQ(heard, (std::vector<std::string>{"1"}));
    EXPECT_EQ(objects.back(), web.get());
    center.postNotificationFromURLObject(*Url::parse("pelko://nothing?w=9"), web.get());
    EXPECT_EQ(heard.size(), 1u);

    center.postNotificationFromURLObjectWithDelay(*Url::parse("vmsg://x/resize?w=2"), web, 0);
    center.postNotificationFromURLObjectWithDelay(*Url::parse("vmsg://x/resize?w=3"), nullptr, 0.5);
    std::weak_ptr<kit::WebView> weak = web;
    web.reset();
    EXPECT_EQ(heard.size(), 1u) << "a delayed posting never runs inside the call";
    EXPECT_FALSE(weak.expired()) << "the posting keeps its object";
    runUntilIdle();
    EXPECT_EQ(heard, (std::vector<std::string>{"1", "2"}));
    EXPECT_TRUE(weak.expired());
    advance(0.5);
    EXPECT_EQ(heard, (std::vector<std::string>{"1", "2", "3"}));
    EXPECT_EQ(objects.back(), nullptr);
}

TEST_F(ZEBNotificationTest, MessagesToTheCreativeAreScriptCalls) {
    auto web = std::make_shared<kit::WebView>();
    auto& center = ZEBNotificationCenter::defaultCenter();
    center.postJSNotificationUserInfoWebView("onshow", std::nullopt, web.get());
    center.postJSNotificationUserInfoWebView("openableURLs",
                                             Value::Map{{"urls", Value::Array{"tel:", "sms:"}}}, web.get());
    center.postJSNotificationUserInfoWebView("it's", std::nullopt, nullptr);
    EXPECT_EQ(
        kit::sim::SimWebPage::of(*web).scripts(),
        (std::vector<std::string>{"QUOR_ReceiveMessage('onshow');",
                                  "QUOR_ReceiveMessage('openableURLs', {\"urls\":[\"tel:\",\"sms:\"]});"}));
}
