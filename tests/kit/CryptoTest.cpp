#include "kit/Crypto.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <string>

using kit::Crypto;

namespace {
std::vector<uint8_t> unhex(std::string_view text) {
    std::vector<uint8_t> out;
    for (size_t i = 0; i + 1 < text.size(); i += 2)
        out.push_back(static_cast<uint8_t>(std::stoi(std::string(text.substr(i, 2)), nullptr, 16)));
    return out;
}

std::array<uint8_t, 16> block(std::string_view text) {
    std::array<uint8_t, 16> out{};
    auto bytes = unhex(text);
    std::copy(bytes.begin(), bytes.end(), out.begin());
    return out;
}
}  // namespace

// The first two blocks of the CBC example vectors for AES-128 (NIST SP 800-38A, F.2.1).
TEST(Crypto, Aes128CbcMatchesReferenceVectorsBothWaysAndTakesOnlyWholeBlocks) {
    auto key = block("2b7e151628aed2a6abf7158809cf4f3c");
    auto iv = block("000102030405060708090a0b0c0d0e0f");
    auto plain = unhex("6bc1bee22e409f96e93d7e117393172aae2d8a571e03ac9c9eb76fac45af8e51");
    auto cipher = Crypto::aes128CbcEncrypt(plain, key, iv);
    ASSERT_TRUE(cipher);
    EXPECT_EQ(*cipher, unhex("7649abac8119b246cee98e9b12e9197d5086cb9b507219ee95db113a917678b2"));
    EXPECT_EQ(Crypto::aes128CbcDecrypt(*cipher, key, iv), plain);

    std::vector<uint8_t> odd(17, 1);
    EXPECT_FALSE(Crypto::aes128CbcEncrypt(odd, key, iv));
    EXPECT_FALSE(Crypto::aes128CbcDecrypt(odd, key, iv));
    EXPECT_EQ(Crypto::aes128CbcEncrypt({}, key, iv), std::vector<uint8_t>{});
}
