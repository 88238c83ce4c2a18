// Messages to a creative on the real engine, and the creative's answers back through the bridge.
#include "ads/Notification/ZEBNotification.h"
#include "ads/Notification/ZEBNotificationCenter.h"
#include "ads/View/ZEBWebView.h"
#include "tests/integration/support/WebTestSupport.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using kit::Url;
using kit::Value;

namespace {

// A creative that answers each message by navigating to vmsg://x/<name>?<user info as a query>.
constexpr const char* kEchoingCreative = R"(<html><body>creative<script>
function QUOR_ReceiveMessage(name, info) {
  var pairs = [];
  for (var key in (info || {})) pairs.push(encodeURIComponent(key) + '=' + encodeURIComponent(info[key]));
  location = 'vmsg://x/' + encodeURIComponent(name) + (pairs.length ? '?' + pairs.join('&') : '');
}
</script></body></html>)";

// Loads web pages; keeps command URLs for the test and loads none of them.
class BridgeDelegate : public kit::WebViewDelegate {
public:
    bool webViewShouldStartLoadWithRequestNavigationType(kit::WebView&, const Url& url,
                                                         kit::WebViewNavigationType) override {
        if (!ZEBNotification::isNotificationURL(url)) return true;
        commands.push_back(url);
        return false;
    }
    void webViewDidStartLoad(kit::WebView&) override { ++starts; }
    void webViewDidFinishLoad(kit::WebView&) override { ++finishes; }

    std::vector<Url> commands;
    int starts = 0, finishes = 0;
};

}  // namespace

class ZEBNotificationCenterQtTest : public qttest::QtPlatformTest {
protected:
    void SetUp() override {
        QtPlatformTest::SetUp();
        delegate = std::make_shared<BridgeDelegate>();
        view = std::make_shared<ZEBWebView>(kit::Rect{0, 0, 320, 50});
        view->setDelegate(delegate);
        view->loadHtmlString(kEchoingCreative, Url::parse("http://127.0.0.1:9/creative/"));
        ASSERT_TRUE(webtest::runUntil([&] { return delegate->finishes == 1; }));
    }
    void TearDown() override {
        view.reset();
        QtPlatformTest::TearDown();
    }
    // Posts the message and waits for the creative's answer.
    std::shared_ptr<ZEBNotification> roundTrip(const std::string& name,
                                               const std::optional<Value::Map>& info) {
        size_t before = delegate->commands.size();
        ZEBNotificationCenter::defaultCenter().postJSNotificationUserInfoWebView(name, info, view.get());
        if (!webtest::runUntil([&] { return delegate->commands.size() > before; })) return nullptr;
        return ZEBNotification::notificationFromURL(delegate->commands.back());
    }

    std::shared_ptr<BridgeDelegate> delegate;
    std::shared_ptr<ZEBWebView> view;
};

TEST_F(ZEBNotificationCenterQtTest, AMessageWithUserInfoComesBackIntact) {
    // Quotes of both kinds, query separators and text beyond ASCII must survive the script string.
    Value::Map info{{"url", "http://a.example/landing?x=1&y=2"},
                    {"text", "don't \"stop\" \\ na\xC3\xAFve"},
                    {"empty", ""}};
    auto answer = roundTrip("expanded", info);
    ASSERT_TRUE(answer) << "the creative did not answer";
    EXPECT_EQ(answer->name(), "expanded");
    ASSERT_TRUE(answer->parameters());
    EXPECT_EQ(*answer->parameters(), info) << Value(*answer->parameters()).description();

    // The answer was a command, not a load: the creative is still there to take the next message.
    EXPECT_EQ(delegate->starts, 1);
    auto second = roundTrip("closed", Value::Map{{"reason", "user"}});
    ASSERT_TRUE(second);
    EXPECT_EQ(second->name(), "closed");
    EXPECT_EQ(*second->parameters(), (Value::Map{{"reason", "user"}}));
}

TEST_F(ZEBNotificationCenterQtTest, AMessageWithoutUserInfoCarriesOnlyItsName) {
    auto answer = roundTrip("onshow", std::nullopt);
    ASSERT_TRUE(answer) << "the creative did not answer";
    EXPECT_EQ(delegate->commands.back().absoluteString(), "vmsg://x/onshow");
    EXPECT_EQ(answer->name(), "onshow");
    EXPECT_TRUE(answer->parameters().value_or(Value::Map{{"?", "none"}}).empty());
}
