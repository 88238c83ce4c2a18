#pragma once

#include <ctime>
#include <optional>
#include <string>
#include <string_view>

// HTTP dates ("Tue, 15 Nov 2011 12:45:26 GMT"), always in UTC.
class HttpDate {
public:
    static std::string format(std::time_t time);
    // Reads the fixed form, with or without the trailing " GMT": the ad client sends back the
    // server's Last-Modified cut before "GMT". None for anything else.
    static std::optional<std::time_t> parse(std::string_view text);
};
