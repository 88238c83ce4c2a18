#pragma once

#include "kit/Value.h"

#include <filesystem>
#include <optional>
#include <string_view>

namespace kit {

// Property lists in their XML and binary forms, read into Values.
class PropertyList {
public:
    // None when the bytes are no property list.
    static std::optional<Value> read(std::string_view bytes);
    // None also when the file cannot be read.
    static std::optional<Value> readFile(const std::filesystem::path& path);
};

}  // namespace kit
