#include "ads/ThirdParty/KBLStringEncoding.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <random>
#include <sstream>

using Encoding = std::shared_ptr<KBLStringEncoding>;
using Bytes = kit::Value::Data;

namespace {

Encoding unpadded(Encoding encoding) {
    encoding->setDoPad(false);
    return encoding;
}

struct Vector {
    const char* input;
    const char* base64;
    const char* base32;
    const char* base32hex;
};

// RFC 4648, section 10.
const Vector kRfcVectors[] = {
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
    const std::pair<Encoding, const char * Vector::*> families[] = {
        {KBLStringEncoding::rfc4648Base64StringEncoding(), &Vector::base64},
        {KBLStringEncoding::rfc4648Base32StringEncoding(), &Vector::base32},
        {KBLStringEncoding::rfc4648Base32HexStringEncoding(), &Vector::base32hex},
    };
    for (const auto& [padded, field] : families) {
        ASSERT_TRUE(padded);
        EXPECT_TRUE(padded->doPad());
        Encoding bare = unpadded(KBLStringEncoding::stringEncodingWithString(padded->charMapData()));
        bare->setPaddingChar('=');
        for (const Vector& v : kRfcVectors) {
            std::string text = v.*field;
            EXPECT_EQ(padded->encodeString(v.input), text) << v.input;
            EXPECT_EQ(bare->encodeString(v.input), withoutPadding(text)) << v.input;
            // Padding is accepted but never required, whatever doPad says.
            EXPECT_EQ(padded->stringByDecoding(text), v.input) << text;
            EXPECT_EQ(padded->stringByDecoding(withoutPadding(text)), v.input) << text;
            EXPECT_EQ(bare->stringByDecoding(text), v.input) << text;
        }
    }
}

TEST(KBLStringEncoding, FactoriesAndDescriptions) {
    const std::tuple<Encoding, int, int, const char*> cases[] = {
        {KBLStringEncoding::binaryStringEncoding(), 1, 8, "<Base2 StringEncoder: 01>"},
        {KBLStringEncoding::hexStringEncoding(), 4, 2, "<Base16 StringEncoder: 0123456789ABCDEF>"},
        {KBLStringEncoding::rfc4648Base32StringEncoding(), 5, 8,
         "<Base32 StringEncoder: ABCDEFGHIJKLMNOPQRSTUVWXYZ234567>"},
        {KBLStringEncoding::rfc4648Base32HexStringEncoding(), 5, 8,
         "<Base32 StringEncoder: 0123456789ABCDEFGHIJKLMNOPQRSTUV>"},
        {KBLStringEncoding::crockfordBase32StringEncoding(), 5, 8,
         "<Base32 StringEncoder: 0123456789ABCDEFGHJKMNPQRSTVWXYZ>"},
        {KBLStringEncoding::rfc4648Base64StringEncoding(), 6, 4,
         "<Base64 StringEncoder: ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/>"},
        {KBLStringEncoding::rfc4648Base64WebsafeStringEncoding(), 6, 4,
         "<Base64 StringEncoder: ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-_>"},
    };
    for (const auto& [encoding, shift, padLen, description] : cases) {
        EXPECT_EQ(encoding->shift(), shift);
        EXPECT_EQ(encoding->mask(), (1 << shift) - 1);
        EXPECT_EQ(encoding->padLen(), padLen);
        EXPECT_EQ(encoding->description(), description);
    }
    EXPECT_FALSE(KBLStringEncoding::binaryStringEncoding()->doPad());
    EXPECT_FALSE(KBLStringEncoding::hexStringEncoding()->doPad());
    EXPECT_FALSE(KBLStringEncoding::crockfordBase32StringEncoding()->doPad());
    EXPECT_EQ(KBLStringEncoding::binaryStringEncoding()->encode(Bytes{0xA5, 0x01}), "1010010100000001");
    EXPECT_EQ(KBLStringEncoding::hexStringEncoding()->encode(Bytes{0x00, 0xFF, 0x1e}), "00FF1E");
}

TEST(KBLStringEncoding, AlphabetRules) {
    EXPECT_FALSE(KBLStringEncoding::stringEncodingWithString("012"));  // not a power of two
    EXPECT_FALSE(KBLStringEncoding::stringEncodingWithString("0"));
    EXPECT_FALSE(KBLStringEncoding::stringEncodingWithString(""));
    EXPECT_FALSE(KBLStringEncoding::stringEncodingWithString("0120"));  // repeat
    EXPECT_FALSE(
        KBLStringEncoding::createWithString("0\xc3\xa9"
                                            "1"));  // not ASCII
    std::string all;
    for (int c = 0; c < 128; ++c) all += static_cast<char>(c);
    Encoding widest = KBLStringEncoding::createWithString(all);
    ASSERT_TRUE(widest);
    EXPECT_EQ(widest->shift(), 7);
    EXPECT_FALSE(KBLStringEncoding::createWithString(all + all));

    Encoding custom = KBLStringEncoding::stringEncodingWithString("abcd");
    ASSERT_TRUE(custom);
    EXPECT_FALSE(custom->doPad());
    EXPECT_EQ(custom->paddingChar(), '\0');
    EXPECT_EQ(custom->encode(Bytes{0x1B}), "abcd");
    custom->setDoPad(true);  // no padding character yet: nothing to pad with
    EXPECT_EQ(custom->encode(Bytes{0x1B}), "abcd");
}

TEST(KBLStringEncoding, WebsafeBase64) {
    Encoding websafe = KBLStringEncoding::rfc4648Base64WebsafeStringEncoding();
    EXPECT_EQ(websafe->encode(Bytes{0xFB, 0xFF}), "-_8=");
    websafe->setDoPad(false);
    EXPECT_EQ(websafe->encode(Bytes{0xFB, 0xFF}), "-_8");
    EXPECT_EQ(websafe->decode("-_8"), (Bytes{0xFB, 0xFF}));
    EXPECT_FALSE(websafe->decode("+/8="));  // the other alphabet's characters
    EXPECT_EQ(KBLStringEncoding::rfc4648Base64StringEncoding()->decode("+/8="), (Bytes{0xFB, 0xFF}));
}

TEST(KBLStringEncoding, DecodeRefusals) {
    Encoding hex = KBLStringEncoding::hexStringEncoding();
    EXPECT_EQ(hex->decode("ff"), Bytes{0xFF});
    EXPECT_EQ(hex->decode("FF"), Bytes{0xFF});
    EXPECT_EQ(hex->decode("fA"), Bytes{0xFA});
    EXPECT_FALSE(hex->decode("F"));        // 4 leftover bits, not zero
    EXPECT_EQ(hex->decode("0"), Bytes{});  // 4 leftover zero bits
    EXPECT_FALSE(hex->decode("0g"));
    EXPECT_FALSE(hex->decode("0\xc3\xa9"));  // not ASCII

    Encoding base64 = KBLStringEncoding::rfc4648Base64StringEncoding();
    EXPECT_FALSE(base64->decode("AA=A"));  // data after padding
    EXPECT_EQ(base64->decode("AA=="), Bytes{0});
    EXPECT_EQ(base64->decode("AA==="), Bytes{0});
    EXPECT_FALSE(base64->decode("Zh=="));  // 'h' leaves stray bits: not the canonical 'g'
    EXPECT_FALSE(base64->decode("Zm9="));
    EXPECT_FALSE(base64->decode("Zm9v Zg=="));  // blanks mean nothing unless ignored

    Encoding base32 = KBLStringEncoding::rfc4648Base32StringEncoding();
    EXPECT_FALSE(base32->decode("MZ======"));  // "MY" is the canonical form of "f"
    EXPECT_FALSE(base32->decode("my======"));  // no lower-case synonyms here

    // Invalid characters at every offset of a long text, where whole blocks are decoded at once.
    std::string text = base64->encode(Bytes(48, 0x5A));
    for (size_t at = 0; at < text.size(); ++at) {
        std::string broken = text;
        broken[at] = '*';
        EXPECT_FALSE(base64->decode(broken)) << at;
    }
}

TEST(KBLStringEncoding, CrockfordSynonyms) {
    Encoding crockford = KBLStringEncoding::crockfordBase32StringEncoding();
    const Bytes data{0x00, 0x44, 0x32, 0x14, 0xC7, 0x42, 0x54, 0xB6, 0x35, 0xCF};
    std::string text = crockford->encode(data);
    EXPECT_EQ(text, "0123456789ABCDEF");
    EXPECT_EQ(crockford->decode("oOiIlL"), crockford->decode("001111"));
    EXPECT_EQ(crockford->decode("0123456789abcdef"), data);
    EXPECT_EQ(crockford->reverseCharMap('L'), 1);
    EXPECT_EQ(crockford->reverseCharMap('z'), 31);
    EXPECT_EQ(crockford->reverseCharMap('U'), KBLStringEncoding::kInvalid);
    EXPECT_EQ(crockford->reverseCharMap('u'), KBLStringEncoding::kInvalid);
}

TEST(KBLStringEncoding, SynonymsPaddingAndIgnoredCharacters) {
    Encoding e = KBLStringEncoding::stringEncodingWithString("0123");
    e->addDecodeSynonyms("xa0bc3d");  // x and a have nothing mapped before them; b, c follow 0; d follows 3
    EXPECT_EQ(e->reverseCharMap('x'), KBLStringEncoding::kInvalid);
    EXPECT_EQ(e->reverseCharMap('a'), KBLStringEncoding::kInvalid);
    EXPECT_EQ(e->reverseCharMap('b'), 0);
    EXPECT_EQ(e->reverseCharMap('c'), 0);
    EXPECT_EQ(e->reverseCharMap('d'), 3);
    EXPECT_EQ(e->reverseCharMap('3'), 3);  // mapped characters keep their value

    e->setPaddingChar('.');
    e->setDoPad(true);
    EXPECT_EQ(e->reverseCharMap('.'), KBLStringEncoding::kPadding);
    e->ignoreCharacters(" \n-");
    EXPECT_EQ(e->reverseCharMap('-'), KBLStringEncoding::kIgnored);
    EXPECT_EQ(e->encode(Bytes{0x1B, 0xE4}), "01233210");
    EXPECT_EQ(e->decode(" 0123\n-32 10 .. \n"), (Bytes{0x1B, 0xE4}));
    EXPECT_EQ(e->decode("d"), std::nullopt);  // a lone character leaves 2 stray bits
    EXPECT_EQ(e->decode("bbbd"), Bytes{0x03});

    Encoding base64 = KBLStringEncoding::rfc4648Base64StringEncoding();
    base64->ignoreCharacters("\r\n");
    std::string wrapped = "Zm9v\r\nYmFy\r\nZg==\r\n";
    EXPECT_EQ(base64->stringByDecoding(wrapped), "foobarf");
    EXPECT_DEBUG_DEATH(base64->ignoreCharacters("A"), "must not already mean something");
}

TEST(KBLStringEncoding, RoundTripsEveryWidthAndLength) {
    std::mt19937 random(7);
    std::vector<Encoding> encodings = {
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
    std::string all;
    for (int c = 0; c < 128; ++c) all += static_cast<char>(c);
    encodings.push_back(KBLStringEncoding::createWithString(all));
    for (const Encoding& e : encodings) {
        for (size_t length = 0; length < 70; ++length) {
            Bytes data(length);
            for (auto& b : data) b = static_cast<uint8_t>(random());
            std::string text = e->encode(data);
            size_t bits = length * 8;
            size_t chars = (bits + static_cast<size_t>(e->shift()) - 1) / static_cast<size_t>(e->shift());
            if (e->doPad() && chars % static_cast<size_t>(e->padLen()))
                chars += static_cast<size_t>(e->padLen()) - chars % static_cast<size_t>(e->padLen());
            EXPECT_EQ(text.size(), chars) << e->description() << " " << length;
            EXPECT_EQ(e->decode(text), data) << e->description() << " " << length;
        }
    }
}

TEST(KBLStringEncoding, StringByDecodingNeedsUtf8) {
    Encoding hex = KBLStringEncoding::hexStringEncoding();
    EXPECT_EQ(hex->stringByDecoding("C3A9"), "\xc3\xa9");
    EXPECT_EQ(hex->encodeString("\xc3\xa9"), "C3A9");
    EXPECT_FALSE(hex->stringByDecoding("C3"));
    EXPECT_FALSE(hex->stringByDecoding("EDA080"));  // a surrogate
    EXPECT_FALSE(hex->stringByDecoding("zz"));
}

// The one UTF-8 check of the ad client: downloads and query strings rely on it as well.
TEST(KBLStringEncoding, IsUtf8AtTheBoundaries) {
    for (std::string_view good : {"", "a", "\x7f", "\xc2\x80", "\xdf\xbf", "\xe0\xa0\x80", "\xed\x9f\xbf",
                                  "\xee\x80\x80", "\xf0\x90\x80\x80", "\xf4\x8f\xbf\xbf"})
        EXPECT_TRUE(KBLStringEncoding::isUtf8(good)) << good.size();
    // Overlong forms, surrogates, beyond U+10FFFF, stray and missing continuation bytes, bad leads.
    for (std::string_view bad :
         {"\xc0\x80", "\xc1\xbf", "\xe0\x9f\xbf", "\xed\xa0\x80", "\xf0\x8f\xbf\xbf", "\xf4\x90\x80\x80",
          "\x80", "a\xc3", "\xe2\x82", "\xe2\x28\xa1", "\xf5\x80\x80\x80", "\xff"})
        EXPECT_FALSE(KBLStringEncoding::isUtf8(bad)) << bad.size();
}

// Inputs that once broke decoding, kept as files: each alphabet decodes or refuses them cleanly, and
// what decodes encodes to text that decodes to the same bytes.
TEST(KBLStringEncoding, FuzzRegressions) {
    for (const auto& entry : std::filesystem::directory_iterator(ADS_TEST_DATA_DIR)) {
        if (entry.path().filename().string().rfind("encoding-", 0) != 0) continue;
        std::ifstream in(entry.path(), std::ios::binary);
        std::ostringstream content;
        content << in.rdbuf();
        for (const Encoding& e :
             {KBLStringEncoding::binaryStringEncoding(), KBLStringEncoding::hexStringEncoding(),
              KBLStringEncoding::rfc4648Base32StringEncoding(),
              KBLStringEncoding::rfc4648Base32HexStringEncoding(),
              KBLStringEncoding::crockfordBase32StringEncoding(),
              KBLStringEncoding::rfc4648Base64StringEncoding(),
              KBLStringEncoding::rfc4648Base64WebsafeStringEncoding()}) {
            auto decoded = e->decode(content.str());
            if (decoded) {
                EXPECT_EQ(e->decode(e->encode(*decoded)), decoded) << entry.path();
            }
        }
    }
}
