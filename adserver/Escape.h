#pragma once

#include <cstddef>
#include <string>
#include <string_view>

// Turns outside text (query values, slot names, header values) into text that is safe where it goes.
class Escape {
public:
    // For HTML text and quoted attribute values.
    static std::string html(std::string_view text);
    // Valid UTF-8: each byte that does not start or continue a well-formed sequence becomes U+FFFD.
    // Stored values keep their bytes; this is for showing them (JSON answers, the dashboard).
    static std::string displayable(std::string_view text);
    // One log line: bytes outside printable ASCII as \xNN, cut after `limit` bytes of input.
    static std::string forLog(std::string_view text, size_t limit);
};
