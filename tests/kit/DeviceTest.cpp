#include "kit/Device.h"

#include <gtest/gtest.h>

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
