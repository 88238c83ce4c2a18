#include "kit/Crypto.h"

#include <openssl/evp.h>

#include <memory>

namespace kit {

namespace {
std::optional<std::vector<uint8_t>> aes128Cbc(std::span<const uint8_t> input, const Crypto::Aes128Key& key,
                                              const Crypto::Aes128Iv& iv, bool encrypt) {
    if (input.size() % 16 != 0) return std::nullopt;
    std::unique_ptr<EVP_CIPHER_CTX, decltype(&EVP_CIPHER_CTX_free)> context(EVP_CIPHER_CTX_new(),
                                                                            EVP_CIPHER_CTX_free);
    if (!context) return std::nullopt;
    if (EVP_CipherInit_ex(context.get(), EVP_aes_128_cbc(), nullptr, key.data(), iv.data(),
                          encrypt ? 1 : 0) != 1)
        return std::nullopt;
    EVP_CIPHER_CTX_set_padding(context.get(), 0);
    std::vector<uint8_t> output(input.size() + 16);
    int written = 0;
    int last = 0;
    if (EVP_CipherUpdate(context.get(), output.data(), &written, input.data(),
                         static_cast<int>(input.size())) != 1)
        return std::nullopt;
    if (EVP_CipherFinal_ex(context.get(), output.data() + written, &last) != 1) return std::nullopt;
    output.resize(static_cast<size_t>(written + last));
    return output;
}
}  // namespace

Crypto::Md5Digest Crypto::md5(std::span<const uint8_t> bytes) {
    Md5Digest digest{};
    unsigned int length = 0;
    EVP_Digest(bytes.data(), bytes.size(), digest.data(), &length, EVP_md5(), nullptr);
    return digest;
}

Crypto::Md5Digest Crypto::md5(std::string_view text) {
    return md5(std::span(reinterpret_cast<const uint8_t*>(text.data()), text.size()));
}

std::optional<std::vector<uint8_t>> Crypto::aes128CbcEncrypt(std::span<const uint8_t> plain,
                                                             const Aes128Key& key, const Aes128Iv& iv) {
    return aes128Cbc(plain, key, iv, true);
}

std::optional<std::vector<uint8_t>> Crypto::aes128CbcDecrypt(std::span<const uint8_t> cipher,
                                                             const Aes128Key& key, const Aes128Iv& iv) {
    return aes128Cbc(cipher, key, iv, false);
}

}  // namespace kit
