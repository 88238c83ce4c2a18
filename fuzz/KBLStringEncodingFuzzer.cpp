// Decodes arbitrary text with every alphabet, and encodes arbitrary bytes and decodes them again.
#include "ads/ThirdParty/KBLStringEncoding.h"

#include <algorithm>
#include <cstdlib>
#include <string_view>
#include <vector>

namespace {

void check(bool condition) {
    if (!condition) std::abort();
}

std::vector<std::shared_ptr<KBLStringEncoding>> encodings() {
    std::vector<std::shared_ptr<KBLStringEncoding>> all = {
        KBLStringEncoding::binaryStringEncoding(),
        KBLStringEncoding::hexStringEncoding(),
        KBLStringEncoding::rfc4648Base32StringEncoding(),
        KBLStringEncoding::rfc4648Base32HexStringEncoding(),
        KBLStringEncoding::crockfordBase32StringEncoding(),
        KBLStringEncoding::rfc4648Base64StringEncoding(),
        KBLStringEncoding::rfc4648Base64WebsafeStringEncoding(),
        KBLStringEncoding::createWithString("0123"),
        KBLStringEncoding::createWithString("01234567"),
    };
    std::string ascii;
    for (int c = 0; c < 128; ++c) ascii += static_cast<char>(c);
    all.push_back(KBLStringEncoding::createWithString(ascii));
    // One with ignored characters and an unpadded one, as callers set them up.
    auto lines = KBLStringEncoding::rfc4648Base64StringEncoding();
    lines->ignoreCharacters("\r\n \t");
    all.push_back(lines);
    auto bare = KBLStringEncoding::rfc4648Base32StringEncoding();
    bare->setDoPad(false);
    all.push_back(bare);
    return all;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const auto all = encodings();
    std::string_view text(reinterpret_cast<const char*>(data), size);
    std::span<const uint8_t> bytes(data, size);
    for (const auto& encoding : all) {
        // Any text: decoded or refused; what decodes is encoded to text that decodes the same.
        if (auto decoded = encoding->decode(text)) {
            std::string again = encoding->encode(*decoded);
            check(encoding->decode(again) == decoded);
        }
        // Any bytes: encoded to the expected length of alphabet characters, and decoded back.
        std::string encoded = encoding->encode(bytes);
        for (char c : encoded) check(encoding->reverseCharMap(c) >= 0 || c == encoding->paddingChar());
        auto decoded = encoding->decode(encoded);
        check(decoded.has_value());
        check(std::equal(decoded->begin(), decoded->end(), bytes.begin(), bytes.end()));
        if (auto string = encoding->stringByDecoding(encoded)) check(*string == text);
    }
    return 0;
}
