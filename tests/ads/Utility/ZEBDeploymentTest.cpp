#include "ads/Utility/ZEBDeployment.h"

#include <gtest/gtest.h>

TEST(ZEBDeployment, AnOverrideMovesTheServerAndItsHostsButNotTheKey) {
    ZEBDeployment built = ZEBDeployment::withOverride(std::nullopt);
    EXPECT_NE(built.locationKey, (std::array<uint8_t, 16>{})) << "every key byte comes from the build";
    ZEBDeployment moved = ZEBDeployment::withOverride("https://ads.example.test:8443/");
    EXPECT_EQ(moved.adServerURL, "https://ads.example.test:8443");
    EXPECT_EQ(moved.adServerDomainSuffix, "ads.example.test");
    EXPECT_EQ(moved.clickDomainSuffix, "ads.example.test");
    EXPECT_EQ(moved.reachabilityHostName, "ads.example.test");
    EXPECT_EQ(moved.eventReportURL, "https://ads.example.test:8443/events");
    EXPECT_EQ(moved.locationKey, built.locationKey);
    for (const char* bad : {"ftp://h/", "not a url", "http:///path", "/relative"})
        EXPECT_EQ(ZEBDeployment::withOverride(bad).adServerURL, built.adServerURL) << bad;
}
