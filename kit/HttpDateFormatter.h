#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace kit {

// Dates as HTTP headers write them, without the zone: "Tue, 15 Nov 2011 12:45:26", always in
// English and at offset 0. A strict parse takes exactly that (blanks around it aside), so a
// trailing "GMT" must be cut off first; a lenient parse ignores whatever follows the seconds.
class HttpDateFormatter {
public:
    static const HttpDateFormatter& shared();

    // Seconds since 1970 to text; fractions of a second are dropped.
    std::string stringFromDate(double secondsSince1970) const;
    std::optional<double> dateFromString(std::string_view text) const;
    std::optional<double> dateFromStringLeniently(std::string_view text) const;

private:
    std::optional<double> parse(std::string_view text, bool lenient) const;
};

}  // namespace kit
