#include "kit/Bundle.h"
#include "kit/Device.h"
#include "kit/PropertyList.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include <unistd.h>

using kit::PropertyList;
using kit::Value;

TEST(PropertyList, ReadsXmlValuesOfEveryKind) {
    auto value = PropertyList::read(R"(<?xml version="1.0" encoding="UTF-8"?>
<!DOCTYPE plist PUBLIC "-//Apple//DTD PLIST 1.0//EN" "http://www.apple.com/DTDs/PropertyList-1.0.dtd">
<plist version="1.0"><dict>
  <key>s</key><string>t&amp;x</string>
  <key>i</key><integer>-3</integer>
  <key>r</key><real>1.5</real>
  <key>b</key><true/>
  <key>d</key><date>2001-01-01T00:01:00Z</date>
  <key>data</key><data>AAEC</data>
  <key>a</key><array><integer>1</integer><dict/></array>
</dict></plist>)");
    ASSERT_TRUE(value);
    Value::Map expected{{"s", "t&x"},
                        {"i", -3},
                        {"r", 1.5},
                        {"b", true},
                        {"d", Value::Date{978307260}},
                        {"data", Value::Data{0, 1, 2}},
                        {"a", Value::Array{1, Value::Map{}}}};
    EXPECT_EQ(*value, Value(expected));
}

TEST(PropertyList, RefusesWhatIsNoPropertyList) {
    EXPECT_FALSE(PropertyList::read(""));
    EXPECT_FALSE(PropertyList::read("garbage"));
    EXPECT_FALSE(PropertyList::read("bplist00\xff\xff"));
    EXPECT_FALSE(PropertyList::readFile("/nonexistent/Info.plist"));
}

TEST(Bundle, LoadsItsInformationMapOrStaysEmpty) {
    auto folder = std::filesystem::temp_directory_path() / ("quiblo-bundle-" + std::to_string(getpid()));
    std::filesystem::create_directories(folder);
    auto file = folder / "Info.plist";
    std::ofstream(file) << R"(<?xml version="1.0"?><plist version="1.0"><dict>
<key>CFBundleIdentifier</key><string>org.quiblo.soundboard</string></dict></plist>)";
    kit::Bundle bundle;
    bundle.loadInfoDictionary(file);
    ASSERT_TRUE(bundle.objectForInfoDictionaryKey("CFBundleIdentifier"));
    EXPECT_EQ(*bundle.objectForInfoDictionaryKey("CFBundleIdentifier"), Value("org.quiblo.soundboard"));
    std::ofstream(file) << R"(<?xml version="1.0"?><plist version="1.0"><string>x</string></plist>)";
    bundle.loadInfoDictionary(file);
    EXPECT_TRUE(bundle.infoDictionary().empty());
    std::filesystem::remove_all(folder);
}

TEST(Device, LanguagesComeFromTheLocaleVariablesInTheirOrder) {
    using kit::Device;
    using List = std::vector<std::string>;
    EXPECT_EQ(Device::languagesFromLocaleVariables("de_DE:en", "fr_FR.UTF-8", nullptr, nullptr),
              (List{"de-DE", "en"}));
    EXPECT_EQ(Device::languagesFromLocaleVariables(nullptr, nullptr, "pt_BR.UTF-8@latin", "en_US"),
              (List{"pt-BR"}));
    EXPECT_EQ(Device::languagesFromLocaleVariables("", "", nullptr, "sv_SE.UTF-8"), (List{"sv-SE"}));
    // A set LC_ALL wins even when it is the untranslated locale.
    EXPECT_EQ(Device::languagesFromLocaleVariables(nullptr, "C.UTF-8", nullptr, "de_DE"), (List{"en"}));
    EXPECT_EQ(Device::languagesFromLocaleVariables(":C:", nullptr, nullptr, "nb_NO"), (List{"nb-NO"}));
    EXPECT_EQ(Device::languagesFromLocaleVariables(nullptr, nullptr, nullptr, nullptr), (List{"en"}));
}
