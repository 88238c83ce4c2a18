#include "kit/HttpDateFormatter.h"

#include <fmt/format.h>

#include <array>
#include <chrono>
#include <cmath>

namespace kit {

namespace {
namespace chrono = std::chrono;

constexpr std::array<const char*, 7> kWeekdays{"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
constexpr std::array<const char*, 12> kMonths{"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                              "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};

bool equalsIgnoringCase(std::string_view a, const char* b) {
    for (size_t i = 0; i < a.size(); ++i) {
        if (b[i] == 0 || (a[i] | 0x20) != (b[i] | 0x20)) return false;
    }
    return b[a.size()] == 0;
}

// Reads the text left to right; every step fails once one has failed.
class Reader {
public:
    explicit Reader(std::string_view text) : text_(text) {}

    void blanks() {
        while (pos_ < text_.size() && (text_[pos_] == ' ' || text_[pos_] == '\t')) ++pos_;
    }
    void literal(char c) {
        if (pos_ < text_.size() && text_[pos_] == c)
            ++pos_;
        else
            ok_ = false;
    }
    // One of `names`, three letters; returns its index.
    template <size_t N>
    int name(const std::array<const char*, N>& names) {
        if (pos_ + 3 > text_.size()) return fail();
        std::string_view word = text_.substr(pos_, 3);
        for (size_t i = 0; i < N; ++i)
            if (equalsIgnoringCase(word, names[i])) {
                pos_ += 3;
                return static_cast<int>(i);
            }
        return fail();
    }
    int number(size_t minDigits, size_t maxDigits) {
        size_t start = pos_;
        int value = 0;
        while (pos_ < text_.size() && pos_ - start < maxDigits && text_[pos_] >= '0' && text_[pos_] <= '9')
            value = value * 10 + (text_[pos_++] - '0');
        if (pos_ - start < minDigits) return fail();
        return value;
    }
    bool ok() const { return ok_; }
    bool atEnd() const { return pos_ == text_.size(); }

private:
    int fail() {
        ok_ = false;
        return 0;
    }
    std::string_view text_;
    size_t pos_ = 0;
    bool ok_ = true;
};
}  // namespace

const HttpDateFormatter& HttpDateFormatter::shared() {
    static const HttpDateFormatter formatter;
    return formatter;
}

std::string HttpDateFormatter::stringFromDate(double secondsSince1970) const {
    auto seconds = chrono::sys_seconds(chrono::seconds(static_cast<int64_t>(std::floor(secondsSince1970))));
    auto days = chrono::floor<chrono::days>(seconds);
    chrono::year_month_day date(days);
    chrono::hh_mm_ss time(seconds - days);
    unsigned weekday = chrono::weekday(days).c_encoding();
    return fmt::format("{}, {:02} {} {:04} {:02}:{:02}:{:02}", kWeekdays[weekday], unsigned(date.day()),
                       kMonths[unsigned(date.month()) - 1], int(date.year()), time.hours().count(),
                       time.minutes().count(), time.seconds().count());
}

std::optional<double> HttpDateFormatter::dateFromString(std::string_view text) const {
    return parse(text, false);
}

std::optional<double> HttpDateFormatter::dateFromStringLeniently(std::string_view text) const {
    return parse(text, true);
}

std::optional<double> HttpDateFormatter::parse(std::string_view text, bool lenient) const {
    Reader in(text);
    in.blanks();
    in.name(kWeekdays);
    in.literal(',');
    in.blanks();
    int day = in.number(1, 2);
    in.blanks();
    int month = in.name(kMonths) + 1;
    in.blanks();
    int year = in.number(4, 4);
    in.blanks();
    int hour = in.number(1, 2);
    in.literal(':');
    int minute = in.number(1, 2);
    in.literal(':');
    int second = in.number(1, 2);
    if (!lenient) {
        in.blanks();
        if (!in.atEnd()) return std::nullopt;
    }
    if (!in.ok() || hour > 23 || minute > 59 || second > 59) return std::nullopt;
    chrono::year_month_day date{chrono::year(year), chrono::month(unsigned(month)),
                                chrono::day(unsigned(day))};
    if (!date.ok()) return std::nullopt;
    auto days = chrono::sys_days(date).time_since_epoch();
    return static_cast<double>(chrono::duration_cast<chrono::seconds>(days).count() + hour * 3600 +
                               minute * 60 + second);
}

}  // namespace kit
