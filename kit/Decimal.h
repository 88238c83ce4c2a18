#pragma once

#include <compare>
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
    // None when the value does not fit (exponent out of range after normalisation).
    static std::optional<Decimal> make(Mantissa mantissa, int exponent, bool negative);
    static Decimal fromInteger(int64_t value);
    static Decimal fromUnsigned(uint64_t value);
    // The shortest decimal that reads back as the same double; none for infinities and NaN.
    static std::optional<Decimal> fromDouble(double value);

    // Reads the text of a JSON number ("-12.5e3"). Digits beyond 38 are rounded half up.
    // None when the text is not a number or its exponent is out of range.
    static std::optional<Decimal> parse(std::string_view text);

    Mantissa mantissa() const { return (Mantissa(hi_) << 64) | lo_; }
    int exponent() const { return exponent_; }
    bool isNegative() const { return negative_; }
    bool isZero() const { return hi_ == 0 && lo_ == 0; }

    // Standard decimal text without exponent notation: "123.45", "-0.001", "100".
    std::string toString() const;
    double toDouble() const;
    // Truncated toward zero, saturating at the int64 limits.
    int64_t toInt64() const;

    // Numeric comparison: 1.0 == 1 and 1e2 == 100.
    bool operator==(const Decimal& other) const;
    std::strong_ordering operator<=>(const Decimal& other) const;

private:
    // The mantissa is split so that a Decimal stays 8-byte aligned inside Value.
    uint64_t hi_ = 0;
    uint64_t lo_ = 0;
    int32_t exponent_ = 0;
    bool negative_ = false;
};

}  // namespace kit
