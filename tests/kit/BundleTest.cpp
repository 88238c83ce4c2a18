#include "kit/Bundle.h"
#include "tests/support/SimTest.h"

#include <fstream>

using BundleTest = SimTest;

TEST_F(BundleTest, LoadsItsInformationMapOrStaysEmpty) {
    auto file = sim().folder() / "Info.plist";
    std::ofstream(file) << R"(<?xml version="1.0"?><plist version="1.0"><dict>
<key>CFBundleIdentifier</key><string>org.quiblo.soundboard</string></dict></plist>)";
    kit::Bundle bundle;
    bundle.loadInfoDictionary(kPort, file);
    ASSERT_TRUE(bundle.objectForInfoDictionaryKey("CFBundleIdentifier"));
    EXPECT_EQ(*bundle.objectForInfoDictionaryKey("CFBundleIdentifier"), kit::Value("org.quiblo.soundboard"));
    std::ofstream(file) << R"(<?xml version="1.0"?><plist version="1.0"><string>x</string></plist>)";
    bundle.loadInfoDictionary(kPort, file);
    EXPECT_TRUE(bundle.infoDictionary().empty());
}
