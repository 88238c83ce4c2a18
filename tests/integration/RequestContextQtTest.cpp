// A real ad request's parameters on this machine, from the Qt port: printed for a reader, and
// checked for values that make sense on Linux.
#include "ads/Network/ZEBNetworkChecker.h"
#include "ads/Request/ZEBRequestPrivate.h"
#include "ads/Statistics/ZEBStatistics.h"
#include "ads/Utility/ZEBIdentifierUtilities.h"
#include "ads/Utility/ZEBMacros.h"
#include "tests/integration/support/WebTestSupport.h"

#include <gtest/gtest.h>
#include <sys/utsname.h>

#include <cctype>
#include <cstdio>

using kit::Value;

using RequestContextQtTest = qttest::QtPlatformTest;

TEST_F(RequestContextQtTest, ParametersOfARealRequestOnThisMachine) {
    // The checker starts watching on first use; give the system a moment to report on the route.
    ZEBNetworkChecker& checker = ZEBNetworkChecker::sharedChecker();
    EXPECT_TRUE(webtest::runUntil([&] { return checker.networkType() != ZEBNetworkChecker::kUnknown; }, 5))
        << "no reachability report for the ad server's host";

    auto request = std::static_pointer_cast<ZEBRequestPrivate>(ZEBRequest::request());
    request->setLocationWithLatitudeLongitudeAccuracy(52.52f, 13.405f, 20);
    request->addKeyword("soundboard");
    Value::Map p = request->parameters();
    std::printf("Request parameters on this machine:\n%s\n", ZEBMacros::jsonify(Value(p)).c_str());

    auto text = [&](const char* key) {
        const Value* v = p.find(key);
        return v && v->string() ? *v->string() : std::string("<missing>");
    };
    std::string isu = text("isu");
    EXPECT_EQ(isu.size(), 32u);
    for (char c : isu)
        EXPECT_TRUE(std::isdigit(static_cast<unsigned char>(c)) || (c >= 'A' && c <= 'F')) << isu;

    struct utsname names {};
    ASSERT_EQ(uname(&names), 0);
    EXPECT_EQ(text("submodel"), names.machine);
    EXPECT_FALSE(text("platform").empty());
    std::string hl = text("hl");
    EXPECT_FALSE(hl.empty());
    for (char c : hl) EXPECT_FALSE(std::isupper(static_cast<unsigned char>(c))) << hl;
    EXPECT_TRUE(text("u_audio") == "1" || text("u_audio") == "2" || text("u_audio") == "3" ||
                text("u_audio") == "5");
    EXPECT_EQ(text("u_w"), "480");
    EXPECT_EQ(text("u_h"), "320");
    EXPECT_EQ(text("u_so"), "l");
    EXPECT_EQ(text("app_name"), "1.0.iphone.org.quiblo.soundboard");
    EXPECT_TRUE(text("ios_base_sdk").starts_with("6.")) << "the toolkit's version";
    EXPECT_TRUE(p.find("ios_metadata") && p.find("ios_metadata")->isMap());
    EXPECT_EQ(text("js"), "quor-sdk-i-v5.0.5");
    EXPECT_TRUE(text("uule").starts_with("e1+"));
    EXPECT_EQ(text("net"), "wi") << "the loopback ad server is reachable";
    EXPECT_FALSE(text("session_id").empty());
}
