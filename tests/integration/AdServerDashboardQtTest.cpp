// The reference ad server's dashboard, loaded in the real web engine, following the server live.
#include "kit/WebView.h"
#include "tests/adserver/RunningAdServer.h"
#include "tests/integration/support/WebTestSupport.h"

#include <gtest/gtest.h>
#include <httplib.h>

#include <optional>
#include <string>

namespace {

class PageDelegate : public kit::WebViewDelegate {
public:
    void webViewDidFinishLoad(kit::WebView&) override { ++finishes; }
    void webViewDidFailLoadWithError(kit::WebView&, std::shared_ptr<const kit::Error>) override {
        ++failures;
    }
    int finishes = 0, failures = 0;
};

}  // namespace

class AdServerDashboardQtTest : public qttest::QtPlatformTest {
protected:
    void SetUp() override {
        QtPlatformTest::SetUp();
        delegate = std::make_shared<PageDelegate>();
        view = std::make_shared<kit::WebView>(kit::Rect{0, 0, 1024, 768});
        view->setDelegate(delegate);
        view->loadRequest(*kit::Url::parse(server.url("/")));
        ASSERT_TRUE(webtest::runUntil([&] { return delegate->finishes + delegate->failures > 0; }));
        ASSERT_EQ(delegate->failures, 0);
        // The page has read the server once.
        ASSERT_TRUE(showsWithin("document.getElementById('status').textContent", "live", 20));
    }
    void TearDown() override {
        view.reset();
        QtPlatformTest::TearDown();
    }

    // Whether `script` gives `expected` before `seconds` pass, asking the page again and again.
    bool showsWithin(const std::string& script, const std::string& expected, double seconds) {
        std::optional<std::string> answer;
        bool asking = false;
        bool shown = webtest::runUntil(
            [&] {
                if (answer == expected) return true;
                if (!asking) {
                    asking = true;
                    view->evaluateScript(script, [&](std::string result) {
                        answer = std::move(result);
                        asking = false;
                    });
                }
                return false;
            },
            seconds);
        if (!shown) lastAnswer = answer.value_or("(no answer)");
        return shown;
    }
    void report(const std::string& pathAndQuery) {
        httplib::Client client(server.origin());
        auto answer = client.Get(pathAndQuery);
        ASSERT_TRUE(answer);
        ASSERT_EQ(answer->status, 200);
    }

    adtest::RunningAdServer server;
    std::shared_ptr<PageDelegate> delegate;
    std::shared_ptr<kit::WebView> view;
    std::string lastAnswer;
};

TEST_F(AdServerDashboardQtTest, ANewImpressionShowsWithinASecond) {
    const std::string impressions =
        "(function(){var row = document.querySelector('#networks tr[data-name=\"house\"]');"
        "return row ? row.querySelector('.impressions').textContent : 'no row';})()";
    ASSERT_TRUE(showsWithin(impressions, "no row", 2)) << lastAnswer;

    report("/events/imp?slotname=demo-mediation&ad_network_id=house&qdata=demo-mediation%3A1&seq_num=1");
    EXPECT_TRUE(showsWithin(impressions, "1", 1.0)) << lastAnswer;
    EXPECT_TRUE(showsWithin("document.querySelector('#totals .impressions').textContent", "1", 1.0));
    EXPECT_TRUE(
        showsWithin("(function(){var chip = document.querySelector('#events tbody tr .param');"
                    "return chip ? chip.title : 'none';})()",
                    "slotname=demo-mediation", 1.0))
        << lastAnswer;

    report("/imp?slotname=demo-mediation&ad_network_id=house&seq_num=2");
    EXPECT_TRUE(showsWithin(impressions, "2", 1.0)) << lastAnswer;
}

TEST_F(AdServerDashboardQtTest, ParametersShowAsTextNeverAsMarkup) {
    report(
        "/track?ev=imp&slot=%3Cb%3Ebold%3C%2Fb%3E&note=%3Cimg%20src%3Dx%20onerror%3D%22document.title%3D'"
        "owned'%22%3E");
    const std::string note =
        "(function(){var chips = document.querySelectorAll('#events tbody tr:first-child .param');"
        "return chips.length ? chips[chips.length - 1].textContent : 'none';})()";
    ASSERT_TRUE(showsWithin(note, "note=<img src=x onerror=\"document.title='owned'\">", 2)) << lastAnswer;
    EXPECT_TRUE(showsWithin("String(document.querySelectorAll('#events img, #slots b').length)", "0", 1));
    EXPECT_TRUE(showsWithin("document.querySelector('#slots tbody tr').dataset.name", "<b>bold</b>", 1));
    EXPECT_TRUE(showsWithin("document.title", "Vantor reference ad server", 1));
}
