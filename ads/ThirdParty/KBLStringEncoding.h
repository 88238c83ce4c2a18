#pragma once

#include "kit/Object.h"
#include "kit/Value.h"

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>

// Turns bytes into text and back with an alphabet of 2, 4, ... 128 ASCII characters: each character
// stands for log2(alphabet size) bits, taken most significant first. One engine serves binary,
// hexadecimal, the Base32 and Base64 families and any other such alphabet; they differ only in their
// characters, padding, decode synonyms and ignored characters.
class KBLStringEncoding : public kit::Object {
    struct Token {};

public:
    // Values of reverseCharMap besides a character's value.
    static constexpr int kInvalid = -1;
    static constexpr int kPadding = -2;
    static constexpr int kIgnored = -3;

    static std::shared_ptr<KBLStringEncoding> binaryStringEncoding();
    static std::shared_ptr<KBLStringEncoding> hexStringEncoding();
    static std::shared_ptr<KBLStringEncoding> rfc4648Base32StringEncoding();
    static std::shared_ptr<KBLStringEncoding> rfc4648Base32HexStringEncoding();
    static std::shared_ptr<KBLStringEncoding> crockfordBase32StringEncoding();
    static std::shared_ptr<KBLStringEncoding> rfc4648Base64StringEncoding();
    static std::shared_ptr<KBLStringEncoding> rfc4648Base64WebsafeStringEncoding();

    // An encoder for the alphabet, or null unless it is ASCII, 2 to 128 characters long, a power of
    // two long and without repeats. Padding is off and there is no padding character.
    static std::shared_ptr<KBLStringEncoding> stringEncodingWithString(std::string_view alphabet);
    static std::shared_ptr<KBLStringEncoding> createWithString(std::string_view alphabet);

    KBLStringEncoding(Token, std::string_view alphabet, int shift);

    const std::string& charMapData() const { return charMapData_; }
    int shift() const { return shift_; }
    int mask() const { return mask_; }
    int padLen() const { return padLen_; }
    // What a character means when decoding: its value, kInvalid, kPadding or kIgnored.
    int reverseCharMap(char c) const { return reverseCharMap_[static_cast<unsigned char>(c)]; }

    bool doPad() const { return doPad_; }
    void setDoPad(bool doPad) { doPad_ = doPad; }
    // The padding character, '\0' while none is set. Encoding pads only once one is set.
    char paddingChar() const { return paddingChar_; }
    void setPaddingChar(char c);
    // Each character not yet mapped takes the value of the nearest mapped character before it.
    void addDecodeSynonyms(std::string_view synonyms);
    // Characters skipped when decoding. They must not already mean something.
    void ignoreCharacters(std::string_view characters);

    std::string encode(std::span<const uint8_t> bytes) const;
    std::string encodeString(std::string_view string) const;
    // None for a character that is not ASCII or not in the alphabet, data after padding, and a last
    // character whose unused bits are not zero. Padding is never required.
    std::optional<kit::Value::Data> decode(std::string_view text) const;
    // The decoded bytes as text; none also when they are not UTF-8.
    std::optional<std::string> stringByDecoding(std::string_view text) const;
    // Well-formed UTF-8: no overlong forms, surrogates or code points beyond U+10FFFF.
    static bool isUtf8(std::string_view text);

    std::string description() const override;

private:
    std::string charMapData_;
    // All 256 byte values, so that non-ASCII bytes need no check of their own: they stay kInvalid.
    std::array<int8_t, 256> reverseCharMap_;
    int shift_;
    int mask_;
    int padLen_;
    bool doPad_ = false;
    char paddingChar_ = '\0';
};
