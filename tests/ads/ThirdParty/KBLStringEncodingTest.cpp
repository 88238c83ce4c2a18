#include "ads/ThirdParty/KBLStringEncoding.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <tuple>

using KBL = KBLStringEncoding;
using Encoding = std::shared_ptr<KBLStringEncoding>;
using Bytes = kit::Value::Data;

namespace {

const std::string kAscii = [] {
    std::string ascii;
    for (int c = 0; c < 128; ++c) ascii += static_cast<char>(c);
    return ascii;
}();

// Each factory, whether it pads, and its description, which names the alphabet.
const std::tuple<Encoding (*)(), bool, const char*> kFactories[] = {
    {&KBL::binaryStringEncoding, false, "<Base2 StringEncoder: 01>"},
    {&KBL::hexStringEncoding, false, "<Base16 StringEncoder: 0123456789ABCDEF>"},
    {&KBL::rfc4648Base32StringEncoding, true, "<Base32 StringEncoder: ABCDEFGHIJKLMNOPQRSTUVWXYZ234567>"},
    {&KBL::rfc4648Base32HexStringEncoding, true, "<Base32 StringEncoder: 0123456789ABCDEFGHIJKLMNOPQRSTUV>"},
    {&KBL::crockfordBase32StringEncoding, false, "<Base32 StringEncoder: 0123456789ABCDEFGHJKMNPQRSTVWXYZ>"},
    {&KBL::rfc4648Base64StringEncoding, true,
     "<Base64 StringEncoder: ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/>"},
    {&KBL::rfc4648Base64WebsafeStringEncoding, true,
     "<Base64 StringEncoder: ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-_>"},
};

// Every factory, and alphabets for the widths they leave out (2, 3 and 7 bits a character).
std::vector<Encoding> everyEncoding() {
    std::vector<Encoding> all;
    for (const auto& factory : kFactories) all.push_back(std::get<0>(factory)());
    for (const std::string& alphabet : {std::string("0123"), std::string("01234567"), kAscii})
        all.push_back(KBL::createWithString(alphabet));
    return all;
}

// RFC 4648, section 10: input, Base64, Base32, Base32-hex.
const char* const kRfcVectors[][4] = {
    {"", "", "", ""},
    {"f", "Zg==", "MY======", "CO======"},
    {"fo", "Zm8=", "MZXQ====", "CPNG===="},
    {"foo", "Zm9v", "MZXW6===", "CPNMU==="},
    {"foob", "Zm9vYg==", "MZXW6YQ=", "CPNMUOG="},
    {"fooba", "Zm9vYmE=", "MZXW6YTB", "CPNMUOJ1"},
    {"foobar", "Zm9vYmFy", "MZXW6YTBOI======", "CPNMUOJ1E8======"},
};

std::string withoutPadding(std::string text) {
    text.erase(text.find_last_not_of('=') + 1);
    return text;
}

}  // namespace

TEST(KBLStringEncoding, Rfc4648Vectors) {
    const Encoding columns[] = {KBL::rfc4648Base64StringEncoding(), KBL::rfc4648Base32StringEncoding(),
                                KBL::rfc4648Base32HexStringEncoding()};
    for (size_t column = 1; column <= 3; ++column) {
        const Encoding& padded = columns[column - 1];
        Encoding bare = KBL::stringEncodingWithString(padded->charMapData());
        bare->setPaddingChar('=');
        for (const auto& vector : kRfcVectors) {
            const std::string input = vector[0], text = vector[column];
            EXPECT_EQ(padded->encodeString(input), text) << input;
            EXPECT_EQ(bare->encodeString(input), withoutPadding(text)) << input;
            // Padding is accepted but never required, whatever doPad says.
            EXPECT_EQ(padded->stringByDecoding(withoutPadding(text)), input) << text;
            EXPECT_EQ(bare->stringByDecoding(text), input) << text;
        }
    }
}

TEST(KBLStringEncoding, FactoriesAndAlphabets) {
    for (const auto& [make, doPad, description] : kFactories) {
        EXPECT_EQ(make()->description(), description);
        EXPECT_EQ(make()->doPad(), doPad) << description;
    }
    // Too short, not a power of two, a repeat, not ASCII, too long.
    for (const std::string& bad : {std::string(), std::string("0"), std::string("012"), std::string("0120"),
                                   std::string("0\x80"), kAscii + kAscii})
        EXPECT_FALSE(KBL::stringEncodingWithString(bad)) << bad;
    EXPECT_FALSE(KBL::stringEncodingWithString("0123")->doPad());
}

TEST(KBLStringEncoding, EncodesAndDecodes) {
    const Encoding hex = KBL::hexStringEncoding(), base64 = KBL::rfc4648Base64StringEncoding();
    const Encoding base32 = KBL::rfc4648Base32StringEncoding(),
                   crockford = KBL::crockfordBase32StringEncoding();
    const Encoding websafe = KBL::rfc4648Base64WebsafeStringEncoding();
    const Encoding bareWebsafe = KBL::rfc4648Base64WebsafeStringEncoding();
    bareWebsafe->setDoPad(false);
    const Encoding octal = KBL::stringEncodingWithString("01234567");
    octal->setDoPad(true);  // but there is no padding character to pad with
    // Synonyms take the value of the nearest mapped character before them: none for x, 0 for b and c,
    // 3 for d.
    const Encoding custom = KBL::stringEncodingWithString("0123");
    custom->addDecodeSynonyms("x0bc3d");
    custom->setPaddingChar('.');
    custom->setDoPad(true);
    custom->ignoreCharacters(" \n-");
    const Encoding lines = KBL::rfc4648Base64StringEncoding();
    lines->ignoreCharacters("\r\n");
    const Bytes crockfordBytes{0x00, 0x44, 0x32, 0x14, 0xC7, 0x42, 0x54, 0xB6, 0x35, 0xCF};

    const std::tuple<Encoding, Bytes, std::string> both[] = {
        {KBL::binaryStringEncoding(), {0xA5, 0x01}, "1010010100000001"},
        {hex, {0x00, 0xFF, 0x1E}, "00FF1E"},
        {octal, {0x1B}, "066"},
        {websafe, {0xFB, 0xFF}, "-_8="},
        {bareWebsafe, {0xFB, 0xFF}, "-_8"},
        {crockford, crockfordBytes, "0123456789ABCDEF"},
        {custom, {0x1B, 0xE4}, "01233210"},
    };
    for (const auto& [encoding, bytes, text] : both) {
        EXPECT_EQ(encoding->encode(bytes), text) << encoding->description();
        EXPECT_EQ(encoding->decode(text), bytes) << encoding->description() << " " << text;
    }

    const std::tuple<Encoding, std::string, std::optional<Bytes>> decodeOnly[] = {
        {hex, "fa", Bytes{0xFA}},
        {hex, "F", std::nullopt},          // 4 leftover bits, not zero
        {hex, "0", Bytes{}},               // 4 leftover zero bits
        {hex, "0\xc3\xa9", std::nullopt},  // not ASCII
        {base64, "AA=A", std::nullopt},    // data after padding
        {base64, "AA===", Bytes{0}},
        {base64, "Zh==", std::nullopt},       // stray bits: 'g' is the canonical last character
        {base64, "Zm9v Zg==", std::nullopt},  // blanks mean nothing unless ignored
        {base64, "+/8=", Bytes{0xFB, 0xFF}},
        {websafe, "+/8=", std::nullopt},     // the other alphabet's characters
        {base32, "MZ======", std::nullopt},  // "MY" is the canonical form of "f"
        {base32, "my======", std::nullopt},  // no lower-case synonyms here
        {crockford, "0123456789abcdef", crockfordBytes},
        {crockford, "oOiIlLoO", Bytes{0x00, 0x02, 0x10, 0x84, 0x00}},  // as "00111100"
        {crockford, "0000000U", std::nullopt},
        {crockford, "0000000u", std::nullopt},
        {custom, "bcbd", Bytes{0x03}},
        {custom, "x000", std::nullopt},
        {custom, " 0123\n-32 10 .. \n", Bytes{0x1B, 0xE4}},
        {lines, "Zm9v\r\nYmFy\r\nZg==\r\n", Bytes{'f', 'o', 'o', 'b', 'a', 'r', 'f'}},
    };
    for (const auto& [encoding, text, expected] : decodeOnly)
        EXPECT_EQ(encoding->decode(text), expected) << encoding->description() << " " << text;

    // Whole blocks are decoded at once: an invalid character at any offset is still refused.
    const std::string text = base64->encode(Bytes(48, 0x5A));
    for (size_t at = 0; at < text.size(); ++at) {
        std::string broken = text;
        broken[at] = '*';
        EXPECT_FALSE(base64->decode(broken)) << at;
    }
    EXPECT_DEBUG_DEATH(base64->ignoreCharacters("A"), "must not already mean something");
}

TEST(KBLStringEncoding, RoundTripsAcrossBlockBoundaries) {
    // Up to two 64-bit blocks and a tail, at every width.
    for (const Encoding& e : everyEncoding()) {
        ASSERT_TRUE(e);
        for (size_t length = 0; length <= 17; ++length) {
            Bytes data(length);
            for (size_t i = 0; i < length; ++i) data[i] = static_cast<uint8_t>(0xA7 * (i + 1) + length);
            EXPECT_EQ(e->decode(e->encode(data)), data) << e->description() << " " << length;
        }
    }
}

// The one UTF-8 check of the ad client: downloads and query strings rely on it as well.
TEST(KBLStringEncoding, Utf8AtTheBoundaries) {
    for (std::string_view good : {"", "\x7f", "\xc2\x80", "\xdf\xbf", "\xe0\xa0\x80", "\xed\x9f\xbf",
                                  "\xee\x80\x80", "\xf0\x90\x80\x80", "\xf4\x8f\xbf\xbf"})
        EXPECT_TRUE(KBL::isUtf8(good)) << good.size();
    // Overlong forms, surrogates, beyond U+10FFFF, stray and missing continuation bytes, bad leads.
    for (std::string_view bad :
         {"\xc1\xbf", "\xe0\x9f\xbf", "\xed\xa0\x80", "\xf0\x8f\xbf\xbf", "\xf4\x90\x80\x80", "\x80", "a\xc3",
          "\xe2\x28\xa1", "\xe2\x82\x28", "\xf5\x80\x80\x80"})
        EXPECT_FALSE(KBL::isUtf8(bad)) << bad.size();
    Encoding hex = KBL::hexStringEncoding();
    EXPECT_EQ(hex->stringByDecoding(hex->encodeString("\xc3\xa9")), "\xc3\xa9");
    for (const char* notUtf8 : {"C3", "EDA080", "zz"})
        EXPECT_FALSE(hex->stringByDecoding(notUtf8)) << notUtf8;
}

// Inputs that once broke decoding, kept as files: each alphabet decodes or refuses them cleanly, and
// what decodes encodes to text that decodes to the same bytes.
TEST(KBLStringEncoding, FuzzRegressions) {
    for (const auto& entry : std::filesystem::directory_iterator(ADS_TEST_DATA_DIR)) {
        if (entry.path().filename().string().rfind("encoding-", 0) != 0) continue;
        std::ifstream in(entry.path(), std::ios::binary);
        const std::string content{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
        for (const Encoding& e : everyEncoding()) {
            if (auto decoded = e->decode(content)) {
                EXPECT_EQ(e->decode(e->encode(*decoded)), decoded) << entry.path();
            }
        }
    }
}
