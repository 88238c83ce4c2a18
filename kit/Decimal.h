#pragma once

#include <compare>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace kit {

// An exact decimal number: (-1)^negative × mantissa × 10^exponent, with up to 38 significant digits
// and an exponent from -128 to 127. JSON numbers are kept this way so that a number read and written
// again keeps its value digit for digit (1.000000000000000005 is not rounded to a double).
class Decimal {
public:
    __extension__ using Mantissa = unsigned __int128;

    static constexpr int kMaxDigits = 38;
    static constexpr int kMinExponent = -128;
    static constexpr int kMaxExponent = 127;

    constexpr Decimal() = default;
    // None when the value does not fit: after rounding to 38 digits and dropping trailing zeros the
    // exponent must lie in -128...127 (a large one may be brought down by appending zeros). A tiny value
    // is not rounded to zero: it does not fit either.
    static std::optional<Decimal> make(Mantissa mantissa, int exponent, bool negative);
    // The same for a 64-bit mantissa, without 128-bit arithmetic on the common path.
    static std::optional<Decimal> make64(uint64_t mantissa, int exponent, bool negative);
    static Decimal fromInteger(int64_t value);
    static Decimal fromUnsigned(uint64_t value);
    // The shortest decimal that reads back as the same double; none for infinities, NaN and doubles
    // outside the exponent range (e.g. 1e-300).
    static std::optional<Decimal> fromDouble(double value);

    // Reads the text of a JSON number ("-12.5e3"). Digits beyond 38 are rounded half up.
    // None when the text is not a number or the value does not fit (see make).
    static std::optional<Decimal> parse(std::string_view text);

    Mantissa mantissa() const { return (Mantissa(hi_) << 64) | lo_; }
    int exponent() const { return exponent_; }
    bool isNegative() const { return negative_; }
    bool isZero() const { return hi_ == 0 && lo_ == 0; }

    // Standard decimal text without exponent notation: "123.45", "-0.001", "100".
    std::string toString() const;
    // The same text written at `out`, which must have room for kMaxTextLength characters; returns the
    // end of the text.
    static constexpr size_t kMaxTextLength = 1 + kMaxDigits + kMaxExponent + 2;
    char* toChars(char* out) const;
    double toDouble() const;
    // Truncated toward zero, saturating at the int64 limits.
    int64_t toInt64() const;

    // Numeric comparison: 1.0 == 1 and 1e2 == 100.
    bool operator==(const Decimal& other) const;
    std::strong_ordering operator<=>(const Decimal& other) const;

private:
    // A normalised mantissa (no trailing zeros, at most 38 digits) brought into the exponent range.
    static std::optional<Decimal> fit(Mantissa mantissa, int exponent, bool negative);

    // The mantissa is split so that a Decimal stays 8-byte aligned inside Value.
    uint64_t hi_ = 0;
    uint64_t lo_ = 0;
    int32_t exponent_ = 0;
    bool negative_ = false;
};

}  // namespace kit
