#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

namespace kit {

// Digests and ciphers of the platform's cryptographic library.
class Crypto {
public:
    using Md5Digest = std::array<uint8_t, 16>;
    using Aes128Key = std::array<uint8_t, 16>;
    using Aes128Iv = std::array<uint8_t, 16>;

    static Md5Digest md5(std::span<const uint8_t> bytes);
    static Md5Digest md5(std::string_view text);

    // AES-128 in CBC mode without padding of its own: the input must be a whole number of 16-byte
    // blocks. None for any other length or when the library refuses.
    static std::optional<std::vector<uint8_t>> aes128CbcEncrypt(std::span<const uint8_t> plain,
                                                                const Aes128Key& key, const Aes128Iv& iv);
    static std::optional<std::vector<uint8_t>> aes128CbcDecrypt(std::span<const uint8_t> cipher,
                                                                const Aes128Key& key, const Aes128Iv& iv);
};

}  // namespace kit
