// The cipher against published vectors and against libcrypto.
#include <gtest/gtest.h>
#include <openssl/evp.h>

#include <cstdint>
#include <fstream>
#include <map>
#include <numeric>
#include <span>
#include <sstream>
#include <string>
#include <vector>

#include "calib/aes256.h"
#include "calib/gcm.h"
#include "calib/key_wrap.h"
#include "guarded_memory.h"

namespace zuqel::calib {
namespace {

using Bytes = std::vector<uint8_t>;

Bytes FromHex(const std::string& text) {
  Bytes bytes;
  for (size_t i = 0; i + 1 < text.size(); i += 2) {
    bytes.push_back(
        static_cast<uint8_t>(std::stoul(text.substr(i, 2), nullptr, 16)));
  }
  return bytes;
}

// The key of the examples in both standards.
Bytes ExampleKey() {
  return FromHex(
      "000102030405060708090a0b0c0d0e0f101112131415161718191a1b1c1d1e1f");
}

TEST(Cipher, AesExampleOfTheStandard) {
  const Bytes plain = FromHex("00112233445566778899aabbccddeeff");
  Bytes data = plain;
  const Bytes key = ExampleKey();
  const Aes256 cipher{AesKey(key)};
  cipher.Encrypt(AesBlock(data));
  EXPECT_EQ(data, FromHex("8ea2b7ca516745bfeafc49904b496089"));
  cipher.Decrypt(AesBlock(data));
  EXPECT_EQ(data, plain);
}

// Values by name. There is a "FAIL" where the vector must be refused.
using Vector = std::map<std::string, Bytes>;

std::vector<Vector> ReadVectors(const std::string& name) {
  std::ifstream file(ZUQEL_CIPHER_VECTORS "/ciphers/AES/GCM/" + name);
  std::vector<Vector> vectors;
  for (std::string line; std::getline(file, line);) {
    std::istringstream words(line);
    std::string field, equals, value;
    words >> field >> equals >> value;
    if (field == "Count") vectors.emplace_back();
    if (!vectors.empty()) vectors.back()[field] = FromHex(value);
  }
  return vectors;
}

Bytes Seal(const Bytes& key, const Bytes& nonce, const Bytes& additional,
           Bytes data) {
  const size_t size = data.size();
  data.resize(size + kGcmTagSize);
  const std::span<uint8_t> all(data);
  GcmSeal(Aes256(AesKey(key)), GcmNonce(nonce), additional, all.first(size),
          all.last<kGcmTagSize>());
  return data;
}

TEST(Cipher, GcmVectors) {
  size_t run = 0, refused = 0;
  for (const char* name : {"gcmEncryptExtIV256", "gcmDecrypt256"}) {
    for (Vector& row : ReadVectors(std::string(name) + ".rsp")) {
      const Bytes &key = row["Key"], &nonce = row["IV"], &added = row["AAD"];
      Bytes &data = row["CT"], &tag = row["Tag"];
      if (nonce.size() != kGcmNonceSize || tag.size() != kGcmTagSize) continue;
      const bool must_fail = row.contains("FAIL");
      // Reading past the data ends the program.
      const GuardedMemory<uint8_t> copy{std::span<const uint8_t>(data)};
      ASSERT_EQ(
          GcmOpen(Aes256(AesKey(key)), GcmNonce(nonce), added, copy.span(),
                  std::span<const uint8_t, kGcmTagSize>(tag)),
          !must_fail);
      ASSERT_EQ(Bytes(copy.span().begin(), copy.span().end()),
                must_fail ? Bytes(data.size()) : row["PT"]);
      ++run;
      refused += must_fail ? 1 : 0;
      if (must_fail) continue;
      data.insert(data.end(), tag.begin(), tag.end());
      ASSERT_EQ(Seal(key, nonce, added, row["PT"]), data);
    }
  }
  EXPECT_GE(run, 750U);
  EXPECT_GE(refused, 100U);
}

// The example of the standard, and each of its bits flipped.
TEST(Cipher, KeyWrapExampleOfTheStandard) {
  const Bytes plain = FromHex(
      "00112233445566778899aabbccddeeff000102030405060708090a0b0c0d0e0f");
  Bytes wrapped = FromHex(
      "28c9f404c4b810f4cbccb35cfb87f8263f5786e2d80ed326cbc7f0e71a99f43b"
      "fb988b9b7a02dd21");
  const Bytes wrapping_key = ExampleKey();
  const Aes256 cipher{AesKey(wrapping_key)};
  Bytes key(kAesKeySize);
  const auto unwrap = [&] {
    return UnwrapKey(cipher, std::span<const uint8_t, kWrappedKeySize>(wrapped),
                     std::span<uint8_t, kAesKeySize>(key));
  };
  EXPECT_TRUE(unwrap());
  EXPECT_EQ(key, plain);
  for (size_t bit = 0; bit < wrapped.size() * 8; ++bit) {
    const auto flip = static_cast<uint8_t>(1U << bit % 8);
    wrapped[bit / 8] ^= flip;
    ASSERT_FALSE(unwrap()) << bit;
    ASSERT_EQ(key, Bytes(kAesKeySize)) << bit;
    wrapped[bit / 8] ^= flip;
  }
}

// Longer than the vectors, and not a whole number of blocks.
TEST(Cipher, SameAsPeer) {
  const Bytes key(32, 0x5A), nonce(12, 0xC3), added(21, 0x0F);
  Bytes data(2099), sealed(data.size() + kGcmTagSize);
  std::iota(data.begin(), data.end(), uint8_t{0});
  int done = 0;
  EVP_CIPHER_CTX* context = EVP_CIPHER_CTX_new();
  EVP_EncryptInit_ex(context, EVP_aes_256_gcm(), nullptr, key.data(),
                     nonce.data());
  EVP_EncryptUpdate(context, nullptr, &done, added.data(), 21);
  EVP_EncryptUpdate(context, sealed.data(), &done, data.data(), 2099);
  EVP_EncryptFinal_ex(context, &sealed[2099], &done);
  EVP_CIPHER_CTX_ctrl(context, EVP_CTRL_GCM_GET_TAG, kGcmTagSize,
                      &sealed[2099]);
  EVP_CIPHER_CTX_free(context);
  EXPECT_EQ(Seal(key, nonce, added, data), sealed);
}

}  // namespace
}  // namespace zuqel::calib
