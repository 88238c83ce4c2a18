#include "adserver/HttpDate.h"

#include <array>
#include <charconv>
#include <cstdio>

namespace {
constexpr std::array<const char*, 7> kDays = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
constexpr std::array<const char*, 12> kMonths = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                                 "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};

// The number made of exactly `digits` digits at `text[at]`, or -1.
int number(std::string_view text, size_t at, size_t digits) {
    if (at + digits > text.size()) return -1;
    int value = 0;
    auto [end, error] = std::from_chars(text.data() + at, text.data() + at + digits, value);
    return error == std::errc() && end == text.data() + at + digits ? value : -1;
}
}  // namespace

std::string HttpDate::format(std::time_t time) {
    std::tm utc{};
    gmtime_r(&time, &utc);
    char buffer[64];
    std::snprintf(buffer, sizeof buffer, "%s, %02d %s %04d %02d:%02d:%02d GMT", kDays[utc.tm_wday],
                  utc.tm_mday, kMonths[utc.tm_mon], utc.tm_year + 1900, utc.tm_hour, utc.tm_min, utc.tm_sec);
    return buffer;
}

std::optional<std::time_t> HttpDate::parse(std::string_view text) {
    // "Tue, 15 Nov 2011 12:45:26" is 25 characters; " GMT" may follow.
    if (text.size() == 29 && text.substr(25) == " GMT") text = text.substr(0, 25);
    if (text.size() != 25 || text.substr(3, 2) != ", " || text[7] != ' ' || text[11] != ' ' ||
        text[16] != ' ' || text[19] != ':' || text[22] != ':')
        return std::nullopt;
    std::tm utc{};
    utc.tm_mday = number(text, 5, 2);
    utc.tm_year = number(text, 12, 4) - 1900;
    utc.tm_hour = number(text, 17, 2);
    utc.tm_min = number(text, 20, 2);
    utc.tm_sec = number(text, 23, 2);
    utc.tm_mon = -1;
    for (int i = 0; i < 12; ++i)
        if (text.substr(8, 3) == kMonths[i]) utc.tm_mon = i;
    if (utc.tm_mon < 0 || utc.tm_mday < 1 || utc.tm_mday > 31 || utc.tm_year < 0 || utc.tm_hour < 0 ||
        utc.tm_hour > 23 || utc.tm_min < 0 || utc.tm_min > 59 || utc.tm_sec < 0 || utc.tm_sec > 60)
        return std::nullopt;
    return timegm(&utc);
}
