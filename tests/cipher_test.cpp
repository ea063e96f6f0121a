// The cipher against published vectors and against libcrypto.
#include <gtest/gtest.h>
#include <openssl/evp.h>

#include <algorithm>
#include <cstdint>
#include <fstream>
#include <map>
#include <memory>
#include <new>
#include <random>
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

// Both standards have it in their examples.
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

// A vector's values by their names. "FAIL" is there, and empty, when the vector
// must be refused.
using Vector = std::map<std::string, Bytes>;

// Every vector begins with its count; headings and remarks are left out.
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

// Data and, behind it, the tag.
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
      // The data lies against a protected page, as foreign data might.
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

Bytes Wrap(const Bytes& wrapping_key, const Bytes& plain) {
  Bytes wrapped(kWrappedKeySize);
  WrapKey(Aes256(AesKey(wrapping_key)), AesKey(plain),
          std::span<uint8_t, kWrappedKeySize>(wrapped));
  return wrapped;
}

bool Unwrap(const Bytes& wrapping_key, const Bytes& wrapped, Bytes& key) {
  return UnwrapKey(Aes256(AesKey(wrapping_key)),
                   std::span<const uint8_t, kWrappedKeySize>(wrapped),
                   std::span<uint8_t, kAesKeySize>(key));
}

// The example of the standard; no bit of it may change.
TEST(Cipher, KeyWrapExampleOfTheStandard) {
  const Bytes plain = FromHex(
      "00112233445566778899aabbccddeeff000102030405060708090a0b0c0d0e0f");
  Bytes wrapped = FromHex(
      "28c9f404c4b810f4cbccb35cfb87f8263f5786e2d80ed326cbc7f0e71a99f43b"
      "fb988b9b7a02dd21");
  EXPECT_EQ(Wrap(ExampleKey(), plain), wrapped);
  Bytes key(kAesKeySize);
  EXPECT_TRUE(Unwrap(ExampleKey(), wrapped, key));
  EXPECT_EQ(key, plain);
  for (size_t bit = 0; bit < wrapped.size() * 8; ++bit) {
    const auto flip = static_cast<uint8_t>(1U << bit % 8);
    wrapped[bit / 8] ^= flip;
    ASSERT_FALSE(Unwrap(ExampleKey(), wrapped, key)) << bit;
    ASSERT_EQ(key, Bytes(kAesKeySize)) << bit;
    wrapped[bit / 8] ^= flip;
  }
}

// What libcrypto makes of data, and behind it the tag when there is a nonce.
Bytes ByPeer(const EVP_CIPHER* mode, const Bytes& key, const uint8_t* nonce,
             const Bytes& additional, const Bytes& data) {
  const std::unique_ptr<EVP_CIPHER_CTX, decltype(&EVP_CIPHER_CTX_free)> holder(
      EVP_CIPHER_CTX_new(), EVP_CIPHER_CTX_free);
  EVP_CIPHER_CTX* context = holder.get();
  EVP_CIPHER_CTX_set_flags(context, EVP_CIPHER_CTX_FLAG_WRAP_ALLOW);
  EXPECT_EQ(EVP_EncryptInit_ex(context, mode, nullptr, key.data(), nonce), 1);
  Bytes result(data.size() + kGcmTagSize);
  uint8_t* out = nullptr;
  int size = 0;
  for (const Bytes* part : {&additional, &data}) {
    if (!part->empty()) {
      EXPECT_EQ(EVP_EncryptUpdate(context, out, &size, part->data(),
                                  static_cast<int>(part->size())),
                1);
    }
    out = result.data();
  }
  if (nonce == nullptr) {
    result.resize(static_cast<size_t>(size));
  } else {
    EXPECT_EQ(EVP_EncryptFinal_ex(context, out + size, &size), 1);
    EVP_CIPHER_CTX_ctrl(context, EVP_CTRL_GCM_GET_TAG, kGcmTagSize,
                        &result[data.size()]);
  }
  return result;
}

// Sizes that the vectors lack.
TEST(Cipher, SameAsPeer) {
  std::seed_seq seed = {20};
  std::mt19937 engine{seed};
  const auto noise = [&](size_t size) {
    Bytes bytes(size);
    for (uint8_t& byte : bytes) byte = static_cast<uint8_t>(engine());
    return bytes;
  };
  for (size_t size = 1; size < 2100; size += 7) {
    const Bytes key = noise(32), nonce = noise(12), data = noise(size);
    const Bytes added = noise(1 + size % 64), plain = noise(32);
    const Bytes sealed =
        ByPeer(EVP_aes_256_gcm(), key, nonce.data(), added, data);
    ASSERT_EQ(Seal(key, nonce, added, data), sealed) << size;
    const Bytes wrapped = ByPeer(EVP_aes_256_wrap(), key, nullptr, {}, plain);
    Bytes unwrapped(kAesKeySize);
    ASSERT_EQ(Wrap(key, plain), wrapped);
    ASSERT_TRUE(Unwrap(key, wrapped, unwrapped));
    ASSERT_EQ(unwrapped, plain);
  }
}

TEST(Cipher, KeyScheduleIsWiped) {
  const GuardedMemory<uint8_t> memory(sizeof(Aes256));
  // Whatever the compiler thinks of memory that has died.
  const auto count = [&](uint8_t value) {
    const volatile uint8_t* begin = memory.data();
    return std::count(begin, begin + sizeof(Aes256), value);
  };
  const Bytes key(32, 0x5A);
  auto* cipher = new (memory.data()) Aes256(AesKey(key));
  EXPECT_GE(count(0x5A), 32);
  cipher->~Aes256();
  EXPECT_EQ(count(0), static_cast<std::ptrdiff_t>(sizeof(Aes256)));
}

}  // namespace
}  // namespace zuqel::calib
