#pragma once

#include "kit/Value.h"

#include <filesystem>
#include <string_view>

namespace kit {

class PortKey;

// The application's bundle: its information map ("CFBundleIdentifier", "CFBundleVersion", the
// platform and SDK it was built for). The real port reads the map from "Info.plist" among the
// resources, written at build time; tests set it.
class Bundle {
public:
    static Bundle& main();

    const Value::Map& infoDictionary() const { return info_; }
    const Value* objectForInfoDictionaryKey(std::string_view key) const { return info_.find(key); }
    // The application's name as people see it ("CFBundleName"), and as its files and process are
    // named ("CFBundleExecutable"); empty when the map does not say.
    std::string name() const { return text("CFBundleName"); }
    std::string executableName() const { return text("CFBundleExecutable"); }
    void setInfoDictionary(const PortKey&, Value::Map info) { info_ = std::move(info); }

    // Reads the map from a property-list file; a missing or unreadable file, or one that holds no
    // map, leaves the map empty.
    void loadInfoDictionary(const PortKey&, const std::filesystem::path& file);

private:
    std::string text(std::string_view key) const;

    Value::Map info_;
};

}  // namespace kit
