#include "kit/Decimal.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>

namespace kit {
namespace {

using Mantissa = Decimal::Mantissa;

constexpr Mantissa pow10(int n) {
    Mantissa result = 1;
    for (int i = 0; i < n; ++i) result *= 10;
    return result;
}

constexpr Mantissa kLimit = pow10(Decimal::kMaxDigits);  // first value with 39 digits

int digitCount(Mantissa m) {
    int n = 1;
    while (m >= 10) {
        m /= 10;
        ++n;
    }
    return n;
}

// Two decimal digits per table entry: "00", "01", ... "99".
constexpr char kDigitPairs[201] =
    "00010203040506070809101112131415161718192021222324252627282930313233343536373839"
    "40414243444546474849505152535455565758596061626364656667686970717273747576777879"
    "8081828384858687888990919293949596979899";

// Writes the digits of v so that they end just before `end`; returns where they start.
char* writeDigitsBackward(uint64_t v, char* end) {
    while (v >= 100) {
        unsigned pair = static_cast<unsigned>(v % 100) * 2;
        v /= 100;
        *--end = kDigitPairs[pair + 1];
        *--end = kDigitPairs[pair];
    }
    if (v >= 10) {
        unsigned pair = static_cast<unsigned>(v) * 2;
        *--end = kDigitPairs[pair + 1];
        *--end = kDigitPairs[pair];
    } else {
        *--end = static_cast<char>('0' + v);
    }
    return end;
}

// All digits of m (at most 39), ending just before `end`; returns where they start.
char* mantissaDigits(Mantissa m, char* end) {
    if (m <= std::numeric_limits<uint64_t>::max()) return writeDigitsBackward(static_cast<uint64_t>(m), end);
    // One 128-bit division splits m into two halves that 64-bit arithmetic can print.
    constexpr uint64_t kTen19 = 10'000'000'000'000'000'000ULL;
    Mantissa high = m / kTen19;
    uint64_t low = static_cast<uint64_t>(m - high * kTen19);
    char* lowStart = writeDigitsBackward(low, end);
    char* p = end - 19;
    while (lowStart > p) *--lowStart = '0';
    return writeDigitsBackward(static_cast<uint64_t>(high), p);
}

}  // namespace

std::optional<Decimal> Decimal::make(Mantissa mantissa, int exponent, bool negative) {
    if (mantissa <= std::numeric_limits<uint64_t>::max())
        return make64(static_cast<uint64_t>(mantissa), exponent, negative);
    // Keep at most 38 digits, rounding half up.
    while (mantissa >= kLimit) {
        Mantissa rest = mantissa % 10;
        mantissa /= 10;
        if (rest >= 5) ++mantissa;
        ++exponent;
    }
    while (mantissa % 10 == 0) {
        mantissa /= 10;
        ++exponent;
    }
    return fit(mantissa, exponent, negative);
}

std::optional<Decimal> Decimal::make64(uint64_t mantissa, int exponent, bool negative) {
    Decimal d;
    if (mantissa == 0) return d;
    while (mantissa % 10 == 0) {
        mantissa /= 10;
        ++exponent;
    }
    if (exponent >= kMinExponent && exponent <= kMaxExponent) {
        d.lo_ = mantissa;
        d.exponent_ = exponent;
        d.negative_ = negative;
        return d;
    }
    return fit(mantissa, exponent, negative);
}

std::optional<Decimal> Decimal::fit(Mantissa mantissa, int exponent, bool negative) {
    if (exponent < kMinExponent) return std::nullopt;
    if (exponent > kMaxExponent) {
        if (exponent > kMaxExponent + kMaxDigits) return std::nullopt;
        while (exponent > kMaxExponent && mantissa < kLimit / 10) {
            mantissa *= 10;
            --exponent;
        }
        if (exponent > kMaxExponent) return std::nullopt;
    }
    Decimal d;
    d.hi_ = static_cast<uint64_t>(mantissa >> 64);
    d.lo_ = static_cast<uint64_t>(mantissa);
    d.exponent_ = exponent;
    d.negative_ = negative;
    return d;
}

Decimal Decimal::fromInteger(int64_t value) {
    Mantissa magnitude = value < 0 ? Mantissa(-(value + 1)) + 1 : Mantissa(value);
    return *make(magnitude, 0, value < 0);
}

Decimal Decimal::fromUnsigned(uint64_t value) {
    return *make(value, 0, false);
}

std::optional<Decimal> Decimal::fromDouble(double value) {
    if (!std::isfinite(value)) return std::nullopt;
    char buffer[64];
    auto result = std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::scientific);
    return parse(std::string_view(buffer, static_cast<size_t>(result.ptr - buffer)));
}

std::optional<Decimal> Decimal::parse(std::string_view text) {
    size_t i = 0;
    const size_t n = text.size();
    bool negative = false;
    if (i < n && (text[i] == '-' || text[i] == '+')) negative = text[i++] == '-';

    Mantissa mantissa = 0;
    int digits = 0;        // significant digits kept
    int64_t exponent = 0;  // adjustment from dropped or fractional digits
    bool sawDigit = false;
    bool roundUp = false;
    bool dropped = false;

    auto take = [&](char c, bool fractional) {
        sawDigit = true;
        int d = c - '0';
        if (digits == 0 && d == 0) {
            if (fractional) --exponent;
            return;
        }
        if (digits < kMaxDigits) {
            mantissa = mantissa * 10 + static_cast<unsigned>(d);
            ++digits;
            if (fractional) --exponent;
        } else {
            if (!dropped) roundUp = d >= 5;
            dropped = true;
            if (!fractional) ++exponent;
        }
    };

    while (i < n && text[i] >= '0' && text[i] <= '9') take(text[i++], false);
    if (i < n && text[i] == '.') {
        ++i;
        size_t start = i;
        while (i < n && text[i] >= '0' && text[i] <= '9') take(text[i++], true);
        if (i == start) return std::nullopt;
    }
    if (!sawDigit) return std::nullopt;
    if (i < n && (text[i] == 'e' || text[i] == 'E')) {
        ++i;
        bool expNegative = false;
        if (i < n && (text[i] == '-' || text[i] == '+')) expNegative = text[i++] == '-';
        size_t start = i;
        int64_t e = 0;
        while (i < n && text[i] >= '0' && text[i] <= '9') {
            if (e < 1'000'000'000) e = e * 10 + (text[i] - '0');
            ++i;
        }
        if (i == start) return std::nullopt;
        exponent += expNegative ? -e : e;
    }
    if (i != n) return std::nullopt;
    if (roundUp) ++mantissa;
    if (mantissa == 0) return Decimal{};
    if (exponent > 2 * kMaxExponent + kMaxDigits) return std::nullopt;
    if (exponent < 2 * kMinExponent - kMaxDigits) return std::nullopt;
    return make(mantissa, static_cast<int>(exponent), negative);
}

std::string Decimal::toString() const {
    char buffer[kMaxTextLength];
    return std::string(buffer, toChars(buffer));
}

char* Decimal::toChars(char* out) const {
    char digitBuffer[40];
    char* digitsEnd = digitBuffer + sizeof digitBuffer;
    char* digits = mantissaDigits(mantissa(), digitsEnd);
    size_t count = static_cast<size_t>(digitsEnd - digits);
    if (negative_ && !isZero()) *out++ = '-';
    if (exponent_ >= 0) {
        out = std::copy(digits, digitsEnd, out);
        if (!isZero()) out = std::fill_n(out, exponent_, '0');
        return out;
    }
    size_t fraction = static_cast<size_t>(-exponent_);
    if (count > fraction) {
        out = std::copy(digits, digitsEnd - fraction, out);
        *out++ = '.';
        return std::copy(digitsEnd - fraction, digitsEnd, out);
    }
    *out++ = '0';
    *out++ = '.';
    out = std::fill_n(out, fraction - count, '0');
    return std::copy(digits, digitsEnd, out);
}

double Decimal::toDouble() const {
    char digitBuffer[40];
    char* digitsEnd = digitBuffer + sizeof digitBuffer;
    std::string text(mantissaDigits(mantissa(), digitsEnd), digitsEnd);
    text += 'e';
    text += std::to_string(exponent_);
    double value = 0;
    auto result = std::from_chars(text.data(), text.data() + text.size(), value);
    if (result.ec == std::errc::result_out_of_range) value = exponent_ > 0 ? HUGE_VAL : 0.0;
    return negative_ ? -value : value;
}

int64_t Decimal::toInt64() const {
    constexpr Mantissa kMax = Mantissa(std::numeric_limits<int64_t>::max());
    Mantissa m = mantissa();
    if (exponent_ < 0) {
        m = -exponent_ > kMaxDigits ? 0 : m / pow10(-exponent_);
    } else {
        for (int e = 0; e < exponent_ && m <= kMax; ++e) m *= 10;
    }
    if (negative_) return m > kMax ? std::numeric_limits<int64_t>::min() : -static_cast<int64_t>(m);
    return m > kMax ? std::numeric_limits<int64_t>::max() : static_cast<int64_t>(m);
}

bool Decimal::operator==(const Decimal& other) const {
    return (*this <=> other) == 0;
}

std::strong_ordering Decimal::operator<=>(const Decimal& other) const {
    if (isZero() && other.isZero()) return std::strong_ordering::equal;
    bool aNeg = negative_ && !isZero();
    bool bNeg = other.negative_ && !other.isZero();
    if (aNeg != bNeg) return aNeg ? std::strong_ordering::less : std::strong_ordering::greater;
    auto magnitude = [&]() -> std::strong_ordering {
        if (isZero()) return std::strong_ordering::less;
        if (other.isZero()) return std::strong_ordering::greater;
        Mantissa a = mantissa(), b = other.mantissa();
        int adjustedA = digitCount(a) + exponent_;
        int adjustedB = digitCount(b) + other.exponent_;
        if (adjustedA != adjustedB) return adjustedA <=> adjustedB;
        // Same magnitude: the one with the larger exponent has fewer digits, so scaling fits.
        if (exponent_ > other.exponent_) a *= pow10(exponent_ - other.exponent_);
        if (other.exponent_ > exponent_) b *= pow10(other.exponent_ - exponent_);
        return a < b ? std::strong_ordering::less
                     : (a > b ? std::strong_ordering::greater : std::strong_ordering::equal);
    };
    std::strong_ordering m = magnitude();
    if (!aNeg) return m;
    return m == std::strong_ordering::less
               ? std::strong_ordering::greater
               : (m == std::strong_ordering::greater ? std::strong_ordering::less : m);
}

}  // namespace kit
