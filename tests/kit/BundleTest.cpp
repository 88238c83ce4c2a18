#include "kit/Bundle.h"
#include "tests/support/SimTest.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include <unistd.h>

using kit::Value;

TEST(Bundle, LoadsItsInformationMapOrStaysEmpty) {
    auto folder = std::filesystem::temp_directory_path() / ("quiblo-bundle-" + std::to_string(getpid()));
    std::filesystem::create_directories(folder);
    auto file = folder / "Info.plist";
    std::ofstream(file) << R"(<?xml version="1.0"?><plist version="1.0"><dict>
<key>CFBundleIdentifier</key><string>org.quiblo.soundboard</string></dict></plist>)";
    kit::Bundle bundle;
    bundle.loadInfoDictionary(kPort, file);
    ASSERT_TRUE(bundle.objectForInfoDictionaryKey("CFBundleIdentifier"));
    EXPECT_EQ(*bundle.objectForInfoDictionaryKey("CFBundleIdentifier"), Value("org.quiblo.soundboard"));
    std::ofstream(file) << R"(<?xml version="1.0"?><plist version="1.0"><string>x</string></plist>)";
    bundle.loadInfoDictionary(kPort, file);
    EXPECT_TRUE(bundle.infoDictionary().empty());
    std::filesystem::remove_all(folder);
}
