#include "ads/Utility/ZEBIdentifierUtilities.h"

#include "kit/FileManager.h"
#include "tests/support/AdContextTest.h"

#include <fstream>

using kit::Value;

class ZEBIdentifierUtilitiesTest : public AdContextTest {
protected:
    ZEBIdentifierUtilities& ids() { return ZEBIdentifierUtilities::sharedInstance(); }
};

TEST_F(ZEBIdentifierUtilitiesTest, VersionsParseAndCompare) {
    auto check = [](std::string_view text, int major, int minor, int bug) {
        auto v = ZEBIdentifierUtilities::parseOSVersion(text);
        EXPECT_EQ(v.major, major) << text;
        EXPECT_EQ(v.minor, minor) << text;
        EXPECT_EQ(v.bugFix, bug) << text;
    };
    check("4.3", 4, 3, 0);
    check("5", 5, 0, 0);
    check("6.1.0-13-amd64", 6, 1, 0);
    check("5.15.90.1-microsoft", 5, 15, 90);
    check("", 0, 0, 0);
    check("x.2", 0, 2, 0);
    sim().device().setSystemVersion(kPort, "4.0");
    EXPECT_TRUE(ZEBIdentifierUtilities::isOSAtLeastMajorMinorBug(4, 0, 0));
    EXPECT_FALSE(ZEBIdentifierUtilities::isOSAtLeastMajorMinorBug(4, 0, 1));
    sim().device().setSystemVersion(kPort, "3.2.1");
    EXPECT_FALSE(ZEBIdentifierUtilities::isOSAtLeastMajorMinorBug(4, 0, 0));
    EXPECT_TRUE(ZEBIdentifierUtilities::isOSAtLeastMajorMinorBug(3, 1, 9));
}

TEST_F(ZEBIdentifierUtilitiesTest, IdentifierIsUpperCaseMd5KeptForTheProcess) {
    sim().device().setUniqueIdentifier(kPort, "abc");
    EXPECT_EQ(ids().deviceIdentifier(), "900150983CD24FB0D6963F7D28E17F72");
    sim().device().setUniqueIdentifier(kPort, "changed");
    EXPECT_EQ(ids().deviceIdentifier(), "900150983CD24FB0D6963F7D28E17F72");
    EXPECT_EQ(ZEBIdentifierUtilities::deviceIdentifierOrSimulator(), "changed");
}

TEST_F(ZEBIdentifierUtilitiesTest, ScreenRouteAndLocaleAsTheDeviceReportsThem) {
    sim().device().setPreferredLanguages(kPort, {"pt-BR", "en"});
    sim().screen().setBounds(kPort, {0, 0, 1024, 768});
    sim().screen().setScale(kPort, 1.5);
    sim().application().setStatusBarOrientation(kit::InterfaceOrientation::Portrait);
    Value::Map p = ids().parameters();
    EXPECT_EQ(*p.find("hl"), Value("pt-br"));
    EXPECT_EQ(*p.find("u_w"), Value("1024"));
    EXPECT_EQ(*p.find("u_h"), Value("768"));
    EXPECT_EQ(*p.find("u_sd"), Value("1.5"));
    EXPECT_EQ(*p.find("u_so"), Value("p"));
    EXPECT_EQ(*p.find("platform"), Value("Simulator"));
    EXPECT_EQ(*p.find("submodel"), Value("x86_64"));
    EXPECT_FALSE(p.contains("ios_jb"));
    EXPECT_FALSE(p.contains("ios_ipadc"));

    const std::pair<std::optional<std::string>, int> routes[] = {
        {"Speaker", 1}, {std::nullopt, 1}, {"Headphone", 2}, {"Headset", 2},
        {"", 3},        {"HDMI", 5},       {"headphone", 5}};
    for (const auto& [route, code] : routes) {
        sim().simAudioSession().setCurrentRoute(route);
        EXPECT_EQ(ids().audioRoute(), code) << route.value_or("<none>");
    }
    EXPECT_EQ(*ids().parameters().find("u_audio"), Value("5"));
}

TEST_F(ZEBIdentifierUtilitiesTest, BookStoreCapabilitiesFollowWhatOpens) {
    const std::pair<std::set<std::string>, std::optional<int>> cases[] = {
        {{"itms-books", "kindle"}, 3}, {{"kindle"}, 2}, {{"itms-books"}, 1}, {{"http"}, std::nullopt}};
    for (const auto& [schemes, expected] : cases) {
        sim().simApplication().setOpenableSchemes(schemes);
        Value::Map p = ids().parameters();
        EXPECT_EQ(p.contains("cap_bs") ? p.find("cap_bs")->integer() : std::nullopt, expected);
    }
}

TEST_F(ZEBIdentifierUtilitiesTest, BundleInformationGivesSdkAndApplicationName) {
    EXPECT_EQ(ids().baseSdkVersion(), "6.1");
    sim().mainBundle().setInfoDictionary(
        kPort, {{"DTSDKName", "iphoneos4.3"}, {"DTPlatformName", "iphoneos"}, {"CFBundleIdentifier", "a.b"}});
    EXPECT_EQ(ids().baseSdkVersion(), "6.1") << "read once";
    ZEBIdentifierUtilities fresh;
    EXPECT_EQ(fresh.baseSdkVersion(), "4.3");
    EXPECT_EQ(*fresh.parameters().find("app_name"), Value("iphone.a.b")) << "no version, no leading point";
    sim().mainBundle().setInfoDictionary(kPort, {{"DTSDKName", 43}});
    ZEBIdentifierUtilities noSdk;
    EXPECT_EQ(noSdk.baseSdkVersion(), std::nullopt);
    EXPECT_FALSE(noSdk.parameters().contains("ios_base_sdk"));
}

TEST_F(ZEBIdentifierUtilitiesTest, StoreMetadataIsAMapOrNothing) {
    auto file = sim().folder() / "iTunesMetadata.plist";
    EXPECT_TRUE(ids().iTunesMetadata().empty());
    EXPECT_EQ(*ids().parameters().find("ios_metadata"), Value(Value::Map{}));

    auto write = [&](std::string_view text) { std::ofstream(file, std::ios::binary) << text; };
    write(R"(<?xml version="1.0" encoding="UTF-8"?>
<plist version="1.0"><dict><key>itemId</key><integer>42</integer><key>itemName</key><string>Quiblo</string></dict></plist>)");
    EXPECT_EQ(ZEBIdentifierUtilities::readITunesMetadataFileAt(file),
              (Value::Map{{"itemId", 42}, {"itemName", "Quiblo"}}));
    EXPECT_EQ(ZEBIdentifierUtilities().iTunesMetadata().size(), 2u)
        << "read from beside the documents folder";

    write(R"(<?xml version="1.0"?><plist version="1.0"><array><string>x</string></array></plist>)");
    EXPECT_TRUE(ZEBIdentifierUtilities::readITunesMetadataFileAt(file).empty());
    write("not a property list \xff\x00");
    EXPECT_TRUE(ZEBIdentifierUtilities::readITunesMetadataFileAt(file).empty());
    EXPECT_TRUE(ZEBIdentifierUtilities::readITunesMetadataFileAt(sim().folder() / "missing.plist").empty());
}

TEST_F(ZEBIdentifierUtilitiesTest, TabletModelOnAPhoneIdiomAndSuperuser) {
    sim().device().setModel(kPort, "iPad");
    sim().device().setSuperuser(kPort, true);
    Value::Map p = ZEBIdentifierUtilities().parameters();
    EXPECT_EQ(*p.find("ios_ipadc"), Value("1"));
    EXPECT_EQ(*p.find("ios_jb"), Value("1"));
    sim().device().setUserInterfaceIdiom(kPort, kit::UserInterfaceIdiom::Pad);
    EXPECT_FALSE(ZEBIdentifierUtilities().parameters().contains("ios_ipadc"));
}
