// libcrypto's results, for comparison.
#include "peer_cipher.h"

#include <gtest/gtest.h>
#include <openssl/evp.h>

#include <memory>

namespace zuqel {
namespace {

struct FreeContext {
  void operator()(EVP_CIPHER_CTX* context) const {
    EVP_CIPHER_CTX_free(context);
  }
};
using Context = std::unique_ptr<EVP_CIPHER_CTX, FreeContext>;

Context Begin(const EVP_CIPHER* mode, const Bytes& key, const uint8_t* nonce) {
  Context context(EVP_CIPHER_CTX_new());
  EVP_CIPHER_CTX_set_flags(context.get(), EVP_CIPHER_CTX_FLAG_WRAP_ALLOW);
  EXPECT_EQ(EVP_EncryptInit_ex(context.get(), mode, nullptr, key.data(), nonce),
            1);
  EVP_CIPHER_CTX_set_padding(context.get(), 0);
  return context;
}

Bytes Encrypt(const Context& context, const Bytes& data) {
  Bytes encrypted(data.size() + 16);
  int size = 0;
  int rest = 0;
  EXPECT_EQ(EVP_EncryptUpdate(context.get(), encrypted.data(), &size,
                              data.data(), static_cast<int>(data.size())),
            1);
  EXPECT_EQ(EVP_EncryptFinal_ex(context.get(), encrypted.data() + size, &rest),
            1);
  encrypted.resize(static_cast<size_t>(size) + static_cast<size_t>(rest));
  return encrypted;
}

}  // namespace

Bytes EncryptByPeer(const Bytes& key, const Bytes& blocks) {
  return Encrypt(Begin(EVP_aes_256_ecb(), key, nullptr), blocks);
}

Sealed SealByPeer(const Message& message) {
  const Context context =
      Begin(EVP_aes_256_gcm(), message.key, message.nonce.data());
  int size = 0;
  if (!message.additional.empty()) {
    EXPECT_EQ(EVP_EncryptUpdate(context.get(), nullptr, &size,
                                message.additional.data(),
                                static_cast<int>(message.additional.size())),
              1);
  }
  Sealed sealed{.data = Encrypt(context, message.plain), .tag = Bytes(16)};
  EXPECT_EQ(EVP_CIPHER_CTX_ctrl(context.get(), EVP_CTRL_GCM_GET_TAG, 16,
                                sealed.tag.data()),
            1);
  return sealed;
}

Bytes WrapByPeer(const Bytes& wrapping_key, const Bytes& key) {
  return Encrypt(Begin(EVP_aes_256_wrap(), wrapping_key, nullptr), key);
}

}  // namespace zuqel
