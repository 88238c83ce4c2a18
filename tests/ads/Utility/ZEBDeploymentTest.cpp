#include "ads/Utility/ZEBDeployment.h"

#include <gtest/gtest.h>

TEST(ZEBDeployment, BuildValuesPointAtLoopbackWithAWholeKey) {
    ZEBDeployment built = ZEBDeployment::withOverride(std::nullopt);
    EXPECT_TRUE(built.adServerURL.starts_with("http://127.0.0.1:")) << built.adServerURL;
    EXPECT_EQ(built.reachabilityHostName, "127.0.0.1");
    EXPECT_TRUE(built.eventReportURL.starts_with(built.adServerURL));
    EXPECT_NE(built.locationKey, (std::array<uint8_t, 16>{}))
        << "every key byte comes from the build's hex digits";
}

TEST(ZEBDeployment, AnOverrideMovesTheServerAndItsHosts) {
    ZEBDeployment moved = ZEBDeployment::withOverride("https://ads.example.test:8443/");
    EXPECT_EQ(moved.adServerURL, "https://ads.example.test:8443");
    EXPECT_EQ(moved.adServerDomainSuffix, "ads.example.test");
    EXPECT_EQ(moved.clickDomainSuffix, "ads.example.test");
    EXPECT_EQ(moved.reachabilityHostName, "ads.example.test");
    EXPECT_EQ(moved.eventReportURL, "https://ads.example.test:8443/events");
    EXPECT_EQ(moved.locationKey, ZEBDeployment::withOverride(std::nullopt).locationKey);

    for (const char* bad : {"ftp://h/", "not a url", "http:///path", "/relative"})
        EXPECT_EQ(ZEBDeployment::withOverride(bad).adServerURL,
                  ZEBDeployment::withOverride(std::nullopt).adServerURL)
            << bad;
}
