#include "ads/ThirdParty/ZEBJSON.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstring>
#include <utility>
#include <vector>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

using kit::Value;

namespace {

constexpr const char* kExpectedArrayValue = "Expected value while parsing array";
constexpr const char* kExpectedObjectKey = "Object key string expected";

// The C "space" class: space, tab, line feed, vertical tab, form feed, carriage return.
constexpr bool isSpace(char c) {
    return c == ' ' || static_cast<unsigned char>(c - '\t') <= '\r' - '\t';
}
constexpr bool isDigit(char c) {
    return static_cast<unsigned char>(c - '0') <= 9;
}

int hexValue(char c) {
    if (isDigit(c)) return c - '0';
    unsigned lower = static_cast<unsigned char>(c) | 0x20u;
    if (lower >= 'a' && lower <= 'f') return static_cast<int>(lower - 'a' + 10);
    return -1;
}

void appendUtf8(std::string& out, uint32_t codePoint) {
    if (codePoint < 0x80) {
        out += static_cast<char>(codePoint);
    } else if (codePoint < 0x800) {
        out += static_cast<char>(0xC0 | (codePoint >> 6));
        out += static_cast<char>(0x80 | (codePoint & 0x3F));
    } else if (codePoint < 0x10000) {
        out += static_cast<char>(0xE0 | (codePoint >> 12));
        out += static_cast<char>(0x80 | ((codePoint >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (codePoint & 0x3F));
    } else {
        out += static_cast<char>(0xF0 | (codePoint >> 18));
        out += static_cast<char>(0x80 | ((codePoint >> 12) & 0x3F));
        out += static_cast<char>(0x80 | ((codePoint >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (codePoint & 0x3F));
    }
}

// Length of the well-formed UTF-8 sequence at p (whose first byte is 0x80 or above), 0 when it is
// malformed, -1 when the input ends inside it.
int utf8SequenceLength(const char* p, const char* end) {
    auto byte = [&](ptrdiff_t i) { return static_cast<unsigned char>(p[i]); };
    unsigned char lead = byte(0);
    int length;
    unsigned char low = 0x80, high = 0xBF;  // range of the second byte
    if (lead < 0xC2) return 0;
    if (lead < 0xE0) {
        length = 2;
    } else if (lead < 0xF0) {
        length = 3;
        if (lead == 0xE0) low = 0xA0;   // overlong
        if (lead == 0xED) high = 0x9F;  // surrogates
    } else if (lead < 0xF5) {
        length = 4;
        if (lead == 0xF0) low = 0x90;   // overlong
        if (lead == 0xF4) high = 0x8F;  // beyond U+10FFFF
    } else {
        return 0;
    }
    ptrdiff_t available = end - p;
    if (available < 2) return -1;
    if (byte(1) < low || byte(1) > high) return 0;
    for (int i = 2; i < length; ++i) {
        if (available <= i) return -1;
        if ((byte(i) & 0xC0) != 0x80) return 0;
    }
    return length;
}

// Position of the first byte at or after p that a string scan must look at: a quote, a backslash, a
// control character or a non-ASCII byte.
const char* findStringSpecial(const char* p, const char* end) {
#if defined(__SSE2__)
    const __m128i quote = _mm_set1_epi8('"');
    const __m128i backslash = _mm_set1_epi8('\\');
    const __m128i space = _mm_set1_epi8(' ');
    while (end - p >= 16) {
        __m128i chunk = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
        // Signed compare: bytes 0x80..0xFF are negative, so "< ' '" also catches non-ASCII.
        __m128i special =
            _mm_or_si128(_mm_or_si128(_mm_cmpeq_epi8(chunk, quote), _mm_cmpeq_epi8(chunk, backslash)),
                         _mm_cmplt_epi8(chunk, space));
        int mask = _mm_movemask_epi8(special);
        if (mask != 0) return p + __builtin_ctz(static_cast<unsigned>(mask));
        p += 16;
    }
#endif
    while (p != end) {
        unsigned char c = static_cast<unsigned char>(*p);
        if (c == '"' || c == '\\' || c < 0x20 || c >= 0x80) return p;
        ++p;
    }
    return p;
}

struct Frame {
    bool isMap;
    size_t valueBase;
    size_t keyBase;
};

}  // namespace

struct ZEBJSON::Stacks {
    std::vector<Frame> frames;
    std::vector<Value> values;
    std::vector<std::string> keys;
    std::string scratch;

    void clear() {
        frames.clear();
        values.clear();
        keys.clear();
    }
};

namespace {

// The first byte at or after p that is not white space. Pretty-printed text is mostly indentation,
// so runs are skipped a block at a time.
const char* skipSpaceRun(const char* p, const char* end) {
#if defined(__SSE2__)
    const __m128i space = _mm_set1_epi8(' ');
    const __m128i tab = _mm_set1_epi8('\t');
    const __m128i controlSpan = _mm_set1_epi8('\r' - '\t');
    while (end - p >= 16) {
        __m128i chunk = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
        // Tab to carriage return: chunk - '\t' is at most 4 (unsigned) exactly for those five.
        __m128i offset = _mm_sub_epi8(chunk, tab);
        __m128i isControlSpace = _mm_cmpeq_epi8(_mm_min_epu8(offset, controlSpan), offset);
        __m128i isWhite = _mm_or_si128(_mm_cmpeq_epi8(chunk, space), isControlSpace);
        unsigned other = ~static_cast<unsigned>(_mm_movemask_epi8(isWhite)) & 0xFFFF;
        if (other != 0) return p + __builtin_ctz(other);
        p += 16;
    }
#endif
    while (p != end && isSpace(*p)) ++p;
    return p;
}

class Reader {
public:
    Reader(std::string_view text, unsigned maxDepth, int& depth, std::vector<Frame>& frames,
           std::vector<Value>& values, std::vector<std::string>& keys, std::string& scratch)
        : p_(text.data()),
          end_(text.data() + text.size()),
          maxDepth_(maxDepth),
          depth_(depth),
          frames_(frames),
          values_(values),
          keys_(keys),
          scratch_(scratch) {}

    std::optional<Value> read(std::shared_ptr<const kit::Error>& error);

private:
    void skipSpace() {
        if (p_ == end_ || !isSpace(*p_)) return;  // compact text: nothing to skip
        ++p_;
        p_ = skipSpaceRun(p_, end_);
    }

    bool fail(int64_t code, std::string message, std::shared_ptr<const kit::Error> underlying = nullptr) {
        error_ = ZEBJSON::errorWithCodeUnderlyingDescription(code, std::move(underlying), std::move(message));
        return false;
    }
    // A value that could not be read: the innermost container says where.
    bool failValue(int64_t code, std::string message, std::shared_ptr<const kit::Error> underlying = nullptr);
    bool failEndOfInput() {
        return fail(ZEBJSON::kErrorEndOfInput, frames_.back().isMap ? "End of input while parsing object"
                                                                    : "End of input while parsing array");
    }

    bool enterContainer();
    bool closeContainer();
    bool readString(std::string_view& text, bool isKey);
    bool readEscape();
    bool readHexQuad(uint32_t& value, std::shared_ptr<const kit::Error>& error);
    bool readNumber();
    bool readLiteral(std::string_view word, Value value, const char* failure);

    const char* p_;
    const char* end_;
    unsigned maxDepth_;
    int& depth_;
    std::vector<Frame>& frames_;
    std::vector<Value>& values_;
    std::vector<std::string>& keys_;
    std::string& scratch_;
    std::shared_ptr<const kit::Error> error_;
};

bool Reader::failValue(int64_t code, std::string message, std::shared_ptr<const kit::Error> underlying) {
    fail(code, std::move(message), std::move(underlying));
    if (frames_.empty()) return false;
    if (!frames_.back().isMap) return fail(ZEBJSON::kErrorSyntax, kExpectedArrayValue, std::move(error_));
    return fail(ZEBJSON::kErrorSyntax, "Object value expected for key: " + keys_.back(), std::move(error_));
}

bool Reader::enterContainer() {
    ++depth_;
    if (maxDepth_ != 0 && static_cast<unsigned>(depth_) > maxDepth_)
        return fail(ZEBJSON::kErrorDepth, "Nested too deep");
    return true;
}

bool Reader::closeContainer() {
    Frame frame = frames_.back();
    frames_.pop_back();
    --depth_;
    auto first = values_.begin() + static_cast<ptrdiff_t>(frame.valueBase);
    if (frame.isMap) {
        std::vector<Value::Map::Entry> entries;
        entries.reserve(values_.size() - frame.valueBase);
        auto key = keys_.begin() + static_cast<ptrdiff_t>(frame.keyBase);
        for (auto value = first; value != values_.end(); ++value, ++key)
            entries.emplace_back(std::move(*key), std::move(*value));
        keys_.erase(keys_.begin() + static_cast<ptrdiff_t>(frame.keyBase), keys_.end());
        values_.erase(first, values_.end());
        values_.emplace_back(Value::Map::fromEntries(std::move(entries)));
    } else {
        Value::Array elements(std::make_move_iterator(first), std::make_move_iterator(values_.end()));
        values_.erase(first, values_.end());
        values_.emplace_back(std::move(elements));
    }
    return true;
}

std::optional<Value> Reader::read(std::shared_ptr<const kit::Error>& error) {
    // An explicit stack instead of recursion: nesting is bounded by memory, not by the call stack.
    for (;;) {
        // A value is expected at p_.
        skipSpace();
        if (p_ == end_) {
            if (frames_.empty()) {
                fail(ZEBJSON::kErrorSyntax, "Unrecognised leading character");
                break;
            }
            failEndOfInput();
            break;
        }
        bool ok = true;
        switch (*p_) {
            case '[':
            case '{': {
                bool isMap = *p_ == '{';
                ++p_;
                if (!enterContainer()) {
                    ok = false;
                    break;
                }
                frames_.push_back({isMap, values_.size(), keys_.size()});
                skipSpace();
                if (p_ == end_) {
                    ok = failEndOfInput();
                    break;
                }
                if (*p_ == (isMap ? '}' : ']')) {
                    ++p_;
                    closeContainer();
                    break;
                }
                if (!isMap) continue;  // the first element
                goto key;
            }
            case '"': {
                std::string_view text;
                ok = readString(text, false);
                if (ok) values_.emplace_back(text);
                break;
            }
            case '-':
            case '0':
            case '1':
            case '2':
            case '3':
            case '4':
            case '5':
            case '6':
            case '7':
            case '8':
            case '9':
                ok = readNumber();
                break;
            case 't':
                ok = readLiteral("true", Value(true), "Expected 'true'");
                break;
            case 'f':
                ok = readLiteral("false", Value(false), "Expected 'false'");
                break;
            case 'n':
                ok = readLiteral("null", Value(), "Expected 'null'");
                break;
            case '+':
                ok = failValue(ZEBJSON::kErrorNumber, "Leading + disallowed in number");
                break;
            default:
                ok = failValue(ZEBJSON::kErrorSyntax, "Unrecognised leading character");
                break;
        }
        if (!ok) break;

        // A value has been read: go on in the enclosing container, closing as many as end here.
        for (;;) {
            if (frames_.empty()) {
                skipSpace();
                if (p_ != end_) {
                    fail(ZEBJSON::kErrorGarbage, "Garbage after JSON");
                    error = std::move(error_);
                    return std::nullopt;
                }
                return std::move(values_.back());
            }
            skipSpace();
            if (p_ == end_) {
                failEndOfInput();
                error = std::move(error_);
                return std::nullopt;
            }
            const bool isMap = frames_.back().isMap;
            const char closer = isMap ? '}' : ']';
            if (*p_ == closer) {
                ++p_;
                closeContainer();
                continue;
            }
            if (*p_ == ',') {
                ++p_;
                skipSpace();
                if (p_ == end_) {
                    ok = failEndOfInput();
                } else if (*p_ == closer) {
                    ok = fail(ZEBJSON::kErrorTrailingComma, isMap ? "Trailing comma disallowed in object"
                                                                  : "Trailing comma disallowed in array");
                }
                break;
            }
            // Two values without a comma: the text has no message of its own for this, so it reads
            // as the next element (or key) being unreadable.
            ok = fail(ZEBJSON::kErrorSyntax, isMap ? kExpectedObjectKey : kExpectedArrayValue);
            break;
        }
        if (!ok) break;
        if (!frames_.back().isMap) continue;

    key:
        // A member of an object: key, colon, then its value at the top of the loop. p_ is not at the end.
        {
            if (*p_ != '"') {
                fail(ZEBJSON::kErrorSyntax, kExpectedObjectKey);
                break;
            }
            std::string_view key;
            if (!readString(key, true)) {
                fail(ZEBJSON::kErrorSyntax, kExpectedObjectKey, std::move(error_));
                break;
            }
            keys_.emplace_back(key);
            skipSpace();
            if (p_ == end_) {
                failEndOfInput();
                break;
            }
            if (*p_ != ':') {
                fail(ZEBJSON::kErrorSyntax, "Expected ':' separating key and value");
                break;
            }
            ++p_;
            skipSpace();
            if (p_ == end_) {
                failEndOfInput();
                break;
            }
        }
    }
    error = std::move(error_);
    return std::nullopt;
}

bool Reader::readLiteral(std::string_view word, Value value, const char* failure) {
    if (static_cast<size_t>(end_ - p_) < word.size() || std::memcmp(p_, word.data(), word.size()) != 0)
        return failValue(ZEBJSON::kErrorSyntax, failure);
    p_ += word.size();
    values_.push_back(std::move(value));
    return true;
}

// Reads the string at p_ (an opening quote). Without escapes the result points into the input;
// with them it points into scratch_. A failure leaves error_ unwrapped when isKey (the caller wraps
// it as a key) and wrapped as a value otherwise.
bool Reader::readString(std::string_view& text, bool isKey) {
    auto failString = [&](int64_t code, std::string message,
                          std::shared_ptr<const kit::Error> inner = nullptr) {
        return isKey ? fail(code, std::move(message), std::move(inner))
                     : failValue(code, std::move(message), std::move(inner));
    };
    const char* start = ++p_;
    bool escaped = false;
    for (;;) {
        p_ = findStringSpecial(p_, end_);
        if (p_ == end_) return failString(ZEBJSON::kErrorEndOfInput, "Unexpected EOF while parsing string");
        unsigned char c = static_cast<unsigned char>(*p_);
        if (c == '"') {
            if (escaped) {
                scratch_.append(start, p_);
                text = scratch_;
            } else {
                text = std::string_view(start, static_cast<size_t>(p_ - start));
            }
            ++p_;
            return true;
        }
        if (c >= 0x80) {
            // Runs of non-ASCII text are common (names, messages): check them here in one go.
            do {
                int length = utf8SequenceLength(p_, end_);
                if (length < 0)
                    return failString(ZEBJSON::kErrorEndOfInput, "Unexpected EOF while parsing string");
                if (length == 0) return failString(ZEBJSON::kErrorUnicode, "Broken unicode character");
                p_ += length;
            } while (p_ != end_ && static_cast<unsigned char>(*p_) >= 0x80);
            continue;
        }
        if (c < 0x20)
            return failString(ZEBJSON::kErrorControlChar,
                              fmt::format("Unescaped control character '0x{:x}'", c));
        // A backslash: from here on the text is assembled in scratch_.
        if (!escaped) {
            scratch_.clear();
            escaped = true;
        }
        scratch_.append(start, p_);
        ++p_;
        if (p_ == end_) return failString(ZEBJSON::kErrorEndOfInput, "Unexpected end of string");
        char e = *p_++;
        switch (e) {
            case '"':
            case '\\':
            case '/':
                scratch_ += e;
                break;
            case 'b':
                scratch_ += '\b';
                break;
            case 'f':
                scratch_ += '\f';
                break;
            case 'n':
                scratch_ += '\n';
                break;
            case 'r':
                scratch_ += '\r';
                break;
            case 't':
                scratch_ += '\t';
                break;
            case 'u': {
                std::shared_ptr<const kit::Error> inner;
                uint32_t unit = 0;
                if (readHexQuad(unit, inner)) {
                    if (unit >= 0xDC00 && unit <= 0xDFFF) {
                        inner = ZEBJSON::errorWithCodeDescription(ZEBJSON::kErrorUnicode,
                                                                  "Invalid high character in surrogate pair");
                    } else if (unit >= 0xD800 && unit <= 0xDBFF) {
                        uint32_t low = 0;
                        if (end_ - p_ < 2 || p_[0] != '\\' || p_[1] != 'u') {
                            inner = ZEBJSON::errorWithCodeDescription(
                                ZEBJSON::kErrorUnicode, "Missing low character in surrogate pair");
                        } else {
                            p_ += 2;
                            if (readHexQuad(low, inner)) {
                                if (low < 0xDC00 || low > 0xDFFF)
                                    inner = ZEBJSON::errorWithCodeDescription(ZEBJSON::kErrorUnicode,
                                                                              "Invalid low surrogate char");
                                else
                                    unit = 0x10000 + ((unit - 0xD800) << 10) + (low - 0xDC00);
                            }
                        }
                    }
                }
                if (inner)
                    return failString(ZEBJSON::kErrorUnicode, "Broken unicode character", std::move(inner));
                appendUtf8(scratch_, unit);
                break;
            }
            default:
                return failString(ZEBJSON::kErrorEscape, fmt::format("Illegal escape sequence '0x{:x}'",
                                                                     static_cast<unsigned char>(e)));
        }
        start = p_;
    }
}

bool Reader::readHexQuad(uint32_t& value, std::shared_ptr<const kit::Error>& error) {
    if (end_ - p_ < 4) {
        error = ZEBJSON::errorWithCodeDescription(ZEBJSON::kErrorUnicode, "Missing hex quad");
        return false;
    }
    value = 0;
    for (int i = 0; i < 4; ++i) {
        int digit = hexValue(p_[i]);
        if (digit < 0) {
            error = ZEBJSON::errorWithCodeDescription(ZEBJSON::kErrorUnicode, "Missing hex digit in quad");
            return false;
        }
        value = value << 4 | static_cast<uint32_t>(digit);
    }
    p_ += 4;
    return true;
}

bool Reader::readNumber() {
    const char* start = p_;
    const char* q = p_;
    bool negative = false;
    if (*q == '-') {
        negative = true;
        ++q;
        if (q == end_ || !isDigit(*q))
            return failValue(ZEBJSON::kErrorNumber, "No digits after initial minus");
    }
    // Up to 19 significant digits are gathered in 64 bits; longer numbers go the slow way.
    uint64_t mantissa = 0;
    ptrdiff_t significant = 0;
    int64_t exponent = 0;
    if (*q == '0') {
        ++q;
        if (q != end_ && isDigit(*q))
            return failValue(ZEBJSON::kErrorNumber, "Leading 0 disallowed in number");
    } else {
        const char* digits = q;
        while (q != end_ && isDigit(*q)) mantissa = mantissa * 10 + static_cast<unsigned>(*q++ - '0');
        significant = q - digits;
    }
    if (q != end_ && *q == '.') {
        const char* fraction = ++q;
        if (mantissa == 0)
            while (q != end_ && *q == '0') ++q;  // leading zeros of 0.000123 are not significant
        const char* digits = q;
        while (q != end_ && isDigit(*q)) mantissa = mantissa * 10 + static_cast<unsigned>(*q++ - '0');
        if (q == fraction) return failValue(ZEBJSON::kErrorNumber, "No digits after decimal point");
        significant += q - digits;
        exponent = -(q - fraction);
    }
    if (q != end_ && (*q == 'e' || *q == 'E')) {
        ++q;
        bool negativeExponent = false;
        if (q != end_ && (*q == '+' || *q == '-')) negativeExponent = *q++ == '-';
        const char* digits = q;
        int64_t e = 0;
        while (q != end_ && isDigit(*q)) {
            if (e < 1'000'000'000) e = e * 10 + (*q - '0');
            ++q;
        }
        if (q == digits) return failValue(ZEBJSON::kErrorNumber, "No digits after exponent");
        exponent += negativeExponent ? -e : e;
    }
    p_ = q;
    std::optional<kit::Decimal> number;
    if (significant > 19) {
        number = kit::Decimal::parse(std::string_view(start, static_cast<size_t>(q - start)));
    } else if (mantissa == 0) {
        number = kit::Decimal();
    } else if (exponent >= -1000 && exponent <= 1000) {
        number = kit::Decimal::make64(mantissa, static_cast<int>(exponent), negative);
    }
    if (!number) return failValue(ZEBJSON::kErrorNumber, "Failed creating decimal instance");
    values_.emplace_back(*number);
    return true;
}

// ---- Writer

// Position of the first byte at or after p that must be escaped: a quote, a backslash or a control
// character. Other bytes, non-ASCII included, are written as they are.
const char* findEscape(const char* p, const char* end) {
#if defined(__SSE2__)
    const __m128i quote = _mm_set1_epi8('"');
    const __m128i backslash = _mm_set1_epi8('\\');
    const __m128i control = _mm_set1_epi8(0x1F);
    while (end - p >= 16) {
        __m128i chunk = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
        __m128i isControl = _mm_cmpeq_epi8(_mm_max_epu8(chunk, control), control);
        __m128i special = _mm_or_si128(
            _mm_or_si128(_mm_cmpeq_epi8(chunk, quote), _mm_cmpeq_epi8(chunk, backslash)), isControl);
        int mask = _mm_movemask_epi8(special);
        if (mask != 0) return p + __builtin_ctz(static_cast<unsigned>(mask));
        p += 16;
    }
#endif
    while (p != end) {
        unsigned char c = static_cast<unsigned char>(*p);
        if (c == '"' || c == '\\' || c < 0x20) return p;
        ++p;
    }
    return p;
}

class Writer {
public:
    Writer(bool sortKeys, bool humanReadable, int& depth)
        : sortKeys_(sortKeys), humanReadable_(humanReadable), depth_(depth) {}

    std::optional<std::string> write(const Value& root, std::shared_ptr<const kit::Error>& error);

private:
    struct Frame {
        const Value* container;
        size_t index;
        size_t count;
        size_t sortedBase;  // where this map's sorted entries start in sorted_, when sorting
    };

    // Room for n more characters; returns where they go. commit() says how many were written.
    char* reserve(size_t n) {
        if (size_ + n > buffer_.size()) buffer_.resize(std::max(buffer_.size() * 2, size_ + n + 4096));
        return buffer_.data() + size_;
    }
    void commit(char* end) { size_ = static_cast<size_t>(end - buffer_.data()); }
    void append(std::string_view text) {
        char* out = reserve(text.size());
        std::memcpy(out, text.data(), text.size());
        size_ += text.size();
    }
    void appendChar(char c) {
        *reserve(1) = c;
        ++size_;
    }
    void newLine() {
        if (!humanReadable_) return;
        size_t indent = static_cast<size_t>(depth_) * 2;
        char* out = reserve(indent + 1);
        *out++ = '\n';
        commit(std::fill_n(out, indent, ' '));
    }

    void writeString(std::string_view text);
    bool writeScalar(const Value& value, std::shared_ptr<const kit::Error>& error);
    const Value::Map::Entry& entryAt(const Frame& frame) const {
        if (sortKeys_) return *sorted_[frame.sortedBase + frame.index];
        return *(frame.container->map()->begin() + static_cast<ptrdiff_t>(frame.index));
    }
    void writeKey(const Value::Map::Entry& entry) {
        writeString(entry.first);
        if (humanReadable_)
            append(" : ");
        else
            appendChar(':');
    }

    bool sortKeys_;
    bool humanReadable_;
    int& depth_;
    std::string buffer_;
    size_t size_ = 0;
    std::vector<Frame> frames_;
    std::vector<const Value::Map::Entry*> sorted_;
};

// Writes the escape for c (a quote, a backslash or a control character) at out.
char* writeEscape(char* out, unsigned char c) {
    *out++ = '\\';
    switch (c) {
        case '"':
        case '\\':
            *out++ = static_cast<char>(c);
            break;
        case '\b':
            *out++ = 'b';
            break;
        case '\t':
            *out++ = 't';
            break;
        case '\n':
            *out++ = 'n';
            break;
        case '\f':
            *out++ = 'f';
            break;
        case '\r':
            *out++ = 'r';
            break;
        default: {
            static constexpr char kHex[] = "0123456789abcdef";
            *out++ = 'u';
            *out++ = '0';
            *out++ = '0';
            *out++ = kHex[c >> 4];
            *out++ = kHex[c & 0xF];
        }
    }
    return out;
}

constexpr auto kNeedsEscape = [] {
    std::array<bool, 256> table{};
    for (int c = 0; c < 0x20; ++c) table[static_cast<size_t>(c)] = true;
    table['"'] = table['\\'] = true;
    return table;
}();

void Writer::writeString(std::string_view text) {
    // Keys and most values are short: one reservation and a plain loop beat the block scan there.
    if (text.size() <= 32) {
        char* out = reserve(text.size() * 6 + 2);
        *out++ = '"';
        for (char ch : text) {
            auto c = static_cast<unsigned char>(ch);
            if (kNeedsEscape[c])
                out = writeEscape(out, c);
            else
                *out++ = ch;
        }
        *out++ = '"';
        commit(out);
        return;
    }
    const char* p = text.data();
    const char* end = p + text.size();
    appendChar('"');
    for (;;) {
        const char* special = findEscape(p, end);
        append(std::string_view(p, static_cast<size_t>(special - p)));
        if (special == end) break;
        commit(writeEscape(reserve(6), static_cast<unsigned char>(*special)));
        p = special + 1;
    }
    appendChar('"');
}

bool Writer::writeScalar(const Value& value, std::shared_ptr<const kit::Error>& error) {
    switch (value.type()) {
        case Value::Type::Null:
            append("null");
            return true;
        case Value::Type::Bool:
            append(*value.boolean() ? "true" : "false");
            return true;
        case Value::Type::Integer: {
            char* out = reserve(24);
            commit(std::to_chars(out, out + 24, *value.integer()).ptr);
            return true;
        }
        case Value::Type::Real: {
            double d = *value.number();
            if (!std::isfinite(d)) {
                // JSON has no text for infinities and NaN.
                error = ZEBJSON::errorWithCodeDescription(ZEBJSON::kErrorUnsupported,
                                                          "JSON serialisation not supported for Real");
                return false;
            }
            char* out = reserve(32);
            commit(std::to_chars(out, out + 32, d).ptr);
            return true;
        }
        case Value::Type::Decimal:
            commit(value.decimal()->toChars(reserve(kit::Decimal::kMaxTextLength)));
            return true;
        case Value::Type::String:
            writeString(*value.string());
            return true;
        case Value::Type::Date:
        case Value::Type::Data:
            // No JSON type of their own: written as the string of their description.
            writeString(value.description());
            return true;
        case Value::Type::Array:
        case Value::Type::Map:
            break;
    }
    return false;
}

std::optional<std::string> Writer::write(const Value& root, std::shared_ptr<const kit::Error>& error) {
    // An explicit stack, like the reader: any nesting the reader accepts can be written back.
    const Value* value = &root;
    for (;;) {
        if (const Value::Array* array = value->array()) {
            if (array->empty()) {
                append("[]");
            } else {
                appendChar('[');
                ++depth_;
                frames_.push_back({value, 0, array->size(), 0});
                newLine();
                value = &array->front();
                continue;
            }
        } else if (const Value::Map* map = value->map()) {
            if (map->empty()) {
                append("{}");
            } else {
                appendChar('{');
                ++depth_;
                Frame frame{value, 0, map->size(), sorted_.size()};
                if (sortKeys_) {
                    for (const auto& entry : *map) sorted_.push_back(&entry);
                    std::sort(sorted_.begin() + static_cast<ptrdiff_t>(frame.sortedBase), sorted_.end(),
                              [](const auto* a, const auto* b) { return a->first < b->first; });
                }
                frames_.push_back(frame);
                newLine();
                const Value::Map::Entry& entry = entryAt(frame);
                writeKey(entry);
                value = &entry.second;
                continue;
            }
        } else {
            std::shared_ptr<const kit::Error> inner;
            if (!writeScalar(*value, inner)) {
                if (!frames_.empty() && frames_.back().container->isMap()) {
                    const std::string& key = entryAt(frames_.back()).first;
                    error = ZEBJSON::errorWithCodeUnderlyingDescription(
                        ZEBJSON::kErrorUnsupported, std::move(inner),
                        fmt::format("Unsupported value for key {} in object", key));
                } else {
                    error = std::move(inner);
                }
                return std::nullopt;
            }
        }

        // Move on to the next element or member, closing the containers that are complete.
        value = nullptr;
        while (!frames_.empty()) {
            Frame& frame = frames_.back();
            if (++frame.index < frame.count) {
                appendChar(',');
                newLine();
                if (frame.container->isMap()) {
                    const Value::Map::Entry& entry = entryAt(frame);
                    writeKey(entry);
                    value = &entry.second;
                } else {
                    value = &(*frame.container->array())[frame.index];
                }
                break;
            }
            --depth_;
            newLine();
            appendChar(frame.container->isMap() ? '}' : ']');
            if (sortKeys_ && frame.container->isMap()) sorted_.resize(frame.sortedBase);
            frames_.pop_back();
        }
        if (!value) break;
    }
    buffer_.resize(size_);
    return std::move(buffer_);
}

}  // namespace

ZEBJSON::ZEBJSON() : stacks_(std::make_unique<Stacks>()) {}

ZEBJSON::~ZEBJSON() = default;

std::shared_ptr<const kit::Error> ZEBJSON::errorWithCodeDescription(int64_t code, std::string description) {
    return errorWithCodeUnderlyingDescription(code, nullptr, std::move(description));
}

std::shared_ptr<const kit::Error> ZEBJSON::errorWithCodeUnderlyingDescription(
    int64_t code, std::shared_ptr<const kit::Error> underlying, std::string description) {
    Value::Map userInfo;
    userInfo.set(kit::Error::kLocalizedDescriptionKey, std::move(description));
    return kit::Error::make(kErrorDomain, code, std::move(userInfo), std::move(underlying));
}

std::optional<Value> ZEBJSON::objectWithStringError(std::optional<std::string_view> text,
                                                    std::shared_ptr<const kit::Error>* error) {
    return objectWithStringAllowScalarError(text, false, error);
}

std::optional<Value> ZEBJSON::fragmentWithStringError(std::optional<std::string_view> text,
                                                      std::shared_ptr<const kit::Error>* error) {
    return objectWithStringAllowScalarError(text, true, error);
}

std::optional<Value> ZEBJSON::objectWithStringAllowScalarError(std::optional<std::string_view> text,
                                                               bool allowScalar,
                                                               std::shared_ptr<const kit::Error>* error) {
    depth_ = 0;
    std::shared_ptr<const kit::Error> failure;
    std::optional<Value> result;
    if (!text) {
        failure = errorWithCodeDescription(kErrorNoInput, "Input was 'nil'");
    } else {
        Reader reader(*text, maxDepth_, depth_, stacks_->frames, stacks_->values, stacks_->keys,
                      stacks_->scratch);
        result = reader.read(failure);
        stacks_->clear();
        if (result && !allowScalar && !result->isArray() && !result->isMap()) {
            result.reset();
            failure = errorWithCodeDescription(kErrorTopLevel, "Valid fragment, but not JSON");
        }
    }
    if (!result && error) *error = std::move(failure);
    return result;
}

std::optional<std::string> ZEBJSON::stringWithObjectError(const Value& value,
                                                          std::shared_ptr<const kit::Error>* error) {
    return stringWithObjectAllowScalarError(value, false, error);
}

std::optional<std::string> ZEBJSON::stringWithFragmentError(const Value& value,
                                                            std::shared_ptr<const kit::Error>* error) {
    return stringWithObjectAllowScalarError(value, true, error);
}

std::optional<std::string> ZEBJSON::stringWithObjectAllowScalarError(
    const Value& value, bool allowScalar, std::shared_ptr<const kit::Error>* error) {
    depth_ = 0;
    std::shared_ptr<const kit::Error> failure;
    std::optional<std::string> result;
    if (!allowScalar && !value.isArray() && !value.isMap()) {
        failure = errorWithCodeDescription(kErrorTopLevel, "Not valid type for JSON");
    } else {
        Writer writer(sortKeys_, humanReadable_, depth_);
        result = writer.write(value, failure);
    }
    if (!result && error) *error = std::move(failure);
    return result;
}
