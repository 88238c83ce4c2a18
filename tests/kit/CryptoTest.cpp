#include "kit/Crypto.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <string>

using kit::Crypto;

namespace {
template <class Bytes>
std::string hex(const Bytes& bytes) {
    std::string out;
    for (uint8_t b : bytes) out += fmt::format("{:02x}", b);
    return out;
}

std::vector<uint8_t> unhex(std::string_view text) {
    std::vector<uint8_t> out;
    for (size_t i = 0; i + 1 < text.size(); i += 2)
        out.push_back(static_cast<uint8_t>(std::stoi(std::string(text.substr(i, 2)), nullptr, 16)));
    return out;
}

template <size_t N>
std::array<uint8_t, N> array(std::string_view text) {
    std::array<uint8_t, N> out{};
    auto bytes = unhex(text);
    std::copy(bytes.begin(), bytes.end(), out.begin());
    return out;
}
}  // namespace

TEST(Crypto, Md5MatchesKnownDigests) {
    EXPECT_EQ(hex(Crypto::md5("")), "d41d8cd98f00b204e9800998ecf8427e");
    EXPECT_EQ(hex(Crypto::md5("abc")), "900150983cd24fb0d6963f7d28e17f72");
}

// The first two blocks of the CBC example vectors for AES-128 (NIST SP 800-38A, F.2.1).
TEST(Crypto, Aes128CbcMatchesReferenceVectorsBothWays) {
    auto key = array<16>("2b7e151628aed2a6abf7158809cf4f3c");
    auto iv = array<16>("000102030405060708090a0b0c0d0e0f");
    auto plain = unhex("6bc1bee22e409f96e93d7e117393172aae2d8a571e03ac9c9eb76fac45af8e51");
    auto cipher = Crypto::aes128CbcEncrypt(plain, key, iv);
    ASSERT_TRUE(cipher);
    EXPECT_EQ(hex(*cipher), "7649abac8119b246cee98e9b12e9197d5086cb9b507219ee95db113a917678b2");
    auto back = Crypto::aes128CbcDecrypt(*cipher, key, iv);
    ASSERT_TRUE(back);
    EXPECT_EQ(*back, plain);
}

TEST(Crypto, Aes128CbcRefusesPartialBlocks) {
    kit::Crypto::Aes128Key key{};
    kit::Crypto::Aes128Iv iv{};
    std::vector<uint8_t> odd(17, 1);
    EXPECT_FALSE(Crypto::aes128CbcEncrypt(odd, key, iv));
    EXPECT_FALSE(Crypto::aes128CbcDecrypt(odd, key, iv));
    auto empty = Crypto::aes128CbcEncrypt({}, key, iv);
    ASSERT_TRUE(empty);
    EXPECT_TRUE(empty->empty());
}
