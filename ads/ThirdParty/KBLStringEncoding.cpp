#include "ads/ThirdParty/KBLStringEncoding.h"

#include <fmt/format.h>

#include <bit>
#include <cassert>
#include <cstring>
#include <numeric>

namespace {

uint64_t loadBigEndian64(const void* p) {
    uint64_t v;
    std::memcpy(&v, p, sizeof v);
    if constexpr (std::endian::native == std::endian::little) v = __builtin_bswap64(v);
    return v;
}

void storeBigEndian64(void* p, uint64_t v) {
    if constexpr (std::endian::native == std::endian::little) v = __builtin_bswap64(v);
    std::memcpy(p, &v, sizeof v);
}

// The bit-packing engine, one instance per character width. A group is the smallest run of whole
// bytes that is also a run of whole characters (lcm(8, S) bits); the fast loops move as many groups
// as fit in 64 bits at a time, and the rest goes through a plain bit accumulator.
template <int S>
struct Packing {
    static constexpr int kGroupBits = std::lcm(8, S);
    static constexpr int kBlockBits = 64 / kGroupBits * kGroupBits;
    static constexpr int kBlockBytes = kBlockBits / 8;
    static constexpr int kBlockChars = kBlockBits / S;
    static constexpr unsigned kMask = (1u << S) - 1;

    static char* encode(const uint8_t* in, size_t n, char* out, const char* alphabet) {
        size_t i = 0;
        // Loads 8 bytes and uses the first kBlockBytes of them.
        for (; n - i >= 8; i += kBlockBytes) {
            uint64_t bits = loadBigEndian64(in + i);
#pragma GCC unroll 64
            for (int k = 0; k < kBlockChars; ++k) out[k] = alphabet[(bits >> (64 - S * (k + 1))) & kMask];
            out += kBlockChars;
        }
        unsigned accumulator = 0;
        int count = 0;
        for (; i < n; ++i) {
            accumulator = (accumulator << 8 | in[i]) & 0x7FFF;  // never more than 14 bits are needed
            count += 8;
            while (count >= S) {
                count -= S;
                *out++ = alphabet[(accumulator >> count) & kMask];
            }
        }
        // A final incomplete character is filled with zero bits on the right.
        if (count > 0) *out++ = alphabet[(accumulator << (S - count)) & kMask];
        return out;
    }

    // Writes at most 7 bytes past the decoded data; the caller leaves room for them.
    static uint8_t* decode(const char* in, size_t n, uint8_t* out, const int8_t* map) {
        size_t i = 0;
        unsigned accumulator = 0;  // fewer than 8 pending bits
        int count = 0;
        bool padded = false;
        for (;;) {
            // Whole blocks, while no bits are pending and every character is data.
            if (count == 0 && !padded) {
                while (n - i >= static_cast<size_t>(kBlockChars)) {
                    // Each character lands at its own place, so the lookups do not wait for each other.
                    uint64_t bits = 0;
                    int meaning = 0;
#pragma GCC unroll 64
                    for (int k = 0; k < kBlockChars; ++k) {
                        int v = map[static_cast<unsigned char>(in[i + static_cast<size_t>(k)])];
                        meaning |= v;
                        bits |= static_cast<uint64_t>(static_cast<unsigned>(v) & kMask) << (64 - S * (k + 1));
                    }
                    if (meaning < 0) break;  // padding, ignored or invalid: one at a time below
                    storeBigEndian64(out, bits);
                    out += kBlockBytes;
                    i += kBlockChars;
                }
            }
            if (i == n) break;
            int v = map[static_cast<unsigned char>(in[i++])];
            if (v >= 0) {
                if (padded) return nullptr;
                accumulator = accumulator << S | static_cast<unsigned>(v);
                count += S;
                if (count >= 8) {
                    count -= 8;
                    *out++ = static_cast<uint8_t>(accumulator >> count);
                    accumulator &= (1u << count) - 1;
                }
            } else if (v == KBLStringEncoding::kPadding) {
                padded = true;
            } else if (v != KBLStringEncoding::kIgnored) {
                return nullptr;
            }
        }
        // Leftover bits must be zero: a final character with stray bits is not canonical.
        if (accumulator != 0) return nullptr;
        return out;
    }
};

template <template <int> class F, class... Args>
auto withShift(int shift, Args&&... args) {
    switch (shift) {
        case 1:
            return F<1>::run(std::forward<Args>(args)...);
        case 2:
            return F<2>::run(std::forward<Args>(args)...);
        case 3:
            return F<3>::run(std::forward<Args>(args)...);
        case 4:
            return F<4>::run(std::forward<Args>(args)...);
        case 5:
            return F<5>::run(std::forward<Args>(args)...);
        case 6:
            return F<6>::run(std::forward<Args>(args)...);
        default:
            return F<7>::run(std::forward<Args>(args)...);
    }
}

template <int S>
struct Encode {
    static char* run(const uint8_t* in, size_t n, char* out, const char* alphabet) {
        return Packing<S>::encode(in, n, out, alphabet);
    }
};

template <int S>
struct Decode {
    static uint8_t* run(const char* in, size_t n, uint8_t* out, const int8_t* map) {
        return Packing<S>::decode(in, n, out, map);
    }
};

std::shared_ptr<KBLStringEncoding> make(std::string_view alphabet, char padding,
                                        std::string_view synonyms = {}) {
    auto encoding = KBLStringEncoding::stringEncodingWithString(alphabet);
    if (padding) {
        encoding->setPaddingChar(padding);
        encoding->setDoPad(true);
    }
    if (!synonyms.empty()) encoding->addDecodeSynonyms(synonyms);
    return encoding;
}

}  // namespace

KBLStringEncoding::KBLStringEncoding(Token, std::string_view alphabet, int shift)
    : charMapData_(alphabet), shift_(shift), mask_((1 << shift) - 1), padLen_(std::lcm(8, shift) / shift) {
    reverseCharMap_.fill(kInvalid);
    for (size_t i = 0; i < alphabet.size(); ++i)
        reverseCharMap_[static_cast<unsigned char>(alphabet[i])] = static_cast<int8_t>(i);
}

std::shared_ptr<KBLStringEncoding> KBLStringEncoding::stringEncodingWithString(std::string_view alphabet) {
    return createWithString(alphabet);
}

std::shared_ptr<KBLStringEncoding> KBLStringEncoding::createWithString(std::string_view alphabet) {
    size_t length = alphabet.size();
    if (length < 2 || length > 128 || !std::has_single_bit(length)) return nullptr;
    bool seen[128] = {};
    for (char c : alphabet) {
        auto code = static_cast<unsigned char>(c);
        if (code >= 128 || seen[code]) return nullptr;
        seen[code] = true;
    }
    return std::make_shared<KBLStringEncoding>(Token{}, alphabet, std::countr_zero(length));
}

std::shared_ptr<KBLStringEncoding> KBLStringEncoding::binaryStringEncoding() {
    return make("01", 0);
}

std::shared_ptr<KBLStringEncoding> KBLStringEncoding::hexStringEncoding() {
    return make("0123456789ABCDEF", 0, "AaBbCcDdEeFf");
}

std::shared_ptr<KBLStringEncoding> KBLStringEncoding::rfc4648Base32StringEncoding() {
    return make("ABCDEFGHIJKLMNOPQRSTUVWXYZ234567", '=');
}

std::shared_ptr<KBLStringEncoding> KBLStringEncoding::rfc4648Base32HexStringEncoding() {
    return make("0123456789ABCDEFGHIJKLMNOPQRSTUV", '=');
}

std::shared_ptr<KBLStringEncoding> KBLStringEncoding::crockfordBase32StringEncoding() {
    return make("0123456789ABCDEFGHJKMNPQRSTVWXYZ", 0,
                "0oO1iIlLAaBbCcDdEeFfGgHhJjKkMmNnPpQqRrSsTtVvWwXxYyZz");
}

std::shared_ptr<KBLStringEncoding> KBLStringEncoding::rfc4648Base64StringEncoding() {
    return make("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/", '=');
}

std::shared_ptr<KBLStringEncoding> KBLStringEncoding::rfc4648Base64WebsafeStringEncoding() {
    return make("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-_", '=');
}

void KBLStringEncoding::setPaddingChar(char c) {
    assert(static_cast<unsigned char>(c) < 128 && "the padding character must be ASCII");
    paddingChar_ = c;
    reverseCharMap_[static_cast<unsigned char>(c)] = kPadding;
}

void KBLStringEncoding::addDecodeSynonyms(std::string_view synonyms) {
    int current = kInvalid;
    for (char c : synonyms) {
        int8_t& meaning = reverseCharMap_[static_cast<unsigned char>(c)];
        if (meaning >= 0)
            current = meaning;
        else if (meaning == kInvalid && static_cast<unsigned char>(c) < 128)
            meaning = static_cast<int8_t>(current);
    }
}

void KBLStringEncoding::ignoreCharacters(std::string_view characters) {
    for (char c : characters) {
        int8_t& meaning = reverseCharMap_[static_cast<unsigned char>(c)];
        assert(meaning == kInvalid && static_cast<unsigned char>(c) < 128 &&
               "an ignored character must not already mean something");
        if (meaning == kInvalid && static_cast<unsigned char>(c) < 128) meaning = kIgnored;
    }
}

std::string KBLStringEncoding::encode(std::span<const uint8_t> bytes) const {
    if (bytes.empty()) return {};
    size_t length = (bytes.size() * 8 + static_cast<size_t>(shift_) - 1) / static_cast<size_t>(shift_);
    size_t padded = length;
    if (doPad_ && paddingChar_) padded = (length + static_cast<size_t>(padLen_) - 1) / padLen_ * padLen_;
    std::string text(padded, paddingChar_);
    withShift<Encode>(shift_, bytes.data(), bytes.size(), text.data(), charMapData_.data());
    return text;
}

std::string KBLStringEncoding::encodeString(std::string_view string) const {
    return encode(std::span(reinterpret_cast<const uint8_t*>(string.data()), string.size()));
}

std::optional<kit::Value::Data> KBLStringEncoding::decode(std::string_view text) const {
    // Room for the largest result plus the few bytes a block store may write beyond it.
    kit::Value::Data bytes(text.size() * static_cast<size_t>(shift_) / 8 + 8);
    uint8_t* end = withShift<Decode>(shift_, text.data(), text.size(), bytes.data(), reverseCharMap_.data());
    if (!end) return std::nullopt;
    bytes.resize(static_cast<size_t>(end - bytes.data()));
    return bytes;
}

bool KBLStringEncoding::isUtf8(std::string_view text) {
    const auto* p = reinterpret_cast<const unsigned char*>(text.data());
    const auto* end = p + text.size();
    while (p != end) {
        unsigned char lead = *p;
        if (lead < 0x80) {
            ++p;
            continue;
        }
        int length;
        unsigned char low = 0x80, high = 0xBF;
        if (lead < 0xC2) return false;
        if (lead < 0xE0) {
            length = 2;
        } else if (lead < 0xF0) {
            length = 3;
            if (lead == 0xE0) low = 0xA0;
            if (lead == 0xED) high = 0x9F;
        } else if (lead < 0xF5) {
            length = 4;
            if (lead == 0xF0) low = 0x90;
            if (lead == 0xF4) high = 0x8F;
        } else {
            return false;
        }
        if (end - p < length || p[1] < low || p[1] > high) return false;
        for (int i = 2; i < length; ++i)
            if ((p[i] & 0xC0) != 0x80) return false;
        p += length;
    }
    return true;
}

std::optional<std::string> KBLStringEncoding::stringByDecoding(std::string_view text) const {
    std::optional<kit::Value::Data> bytes = decode(text);
    if (!bytes) return std::nullopt;
    std::string string(bytes->begin(), bytes->end());
    if (!isUtf8(string)) return std::nullopt;
    return string;
}

std::string KBLStringEncoding::description() const {
    return fmt::format("<Base{} StringEncoder: {}>", 1 << shift_, charMapData_);
}
