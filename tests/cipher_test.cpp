// The cipher against published vectors and against libcrypto.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdint>
#include <fstream>
#include <map>
#include <new>
#include <random>
#include <span>
#include <string>
#include <vector>

#include "calib/aes256.h"
#include "calib/gcm.h"
#include "calib/key_wrap.h"
#include "guarded_memory.h"
#include "peer_cipher.h"

namespace zuqel::calib {
namespace {

Bytes FromHex(const std::string& text) {
  Bytes bytes;
  for (size_t i = 0; i + 1 < text.size(); i += 2) {
    bytes.push_back(
        static_cast<uint8_t>(std::stoul(text.substr(i, 2), nullptr, 16)));
  }
  return bytes;
}

AesKey KeyOf(const Bytes& bytes) {
  return AesKey(bytes);
}

// A vector's values by their names in capitals. "FAIL" is there, and empty,
// when the vector must be refused.
using Vector = std::map<std::string, Bytes>;

// Every vector begins with its count; headings and remarks are left out.
std::vector<Vector> ReadVectors(const std::string& name) {
  std::ifstream file(ZUQEL_CIPHER_VECTORS "/" + name);
  EXPECT_TRUE(file.is_open()) << name;
  std::vector<Vector> vectors;
  for (std::string line; std::getline(file, line);) {
    std::transform(line.begin(), line.end(), line.begin(),
                   [](unsigned char c) { return std::toupper(c); });
    while (!line.empty() && std::isspace(line.back()) != 0) line.pop_back();
    if (line.starts_with("COUNT")) {
      vectors.emplace_back();
    } else if (!vectors.empty() && line == "FAIL") {
      vectors.back()[line];
    } else if (const size_t at = line.find(" ="); at != std::string::npos) {
      if (vectors.empty() || line.front() == '[') continue;
      const size_t value = std::min(at + 3, line.size());
      vectors.back()[line.substr(0, at)] = FromHex(line.substr(value));
    }
  }
  return vectors;
}

// Block by block with one key.
Bytes Encrypt(const Bytes& key, Bytes data) {
  const Aes256 cipher(KeyOf(key));
  for (size_t at = 0; at < data.size(); at += kAesBlockSize) {
    cipher.Encrypt(std::span(data).subspan(at).first<kAesBlockSize>());
  }
  return data;
}

Bytes Decrypt(const Bytes& key, Bytes data) {
  const Aes256 cipher(KeyOf(key));
  for (size_t at = 0; at < data.size(); at += kAesBlockSize) {
    cipher.Decrypt(std::span(data).subspan(at).first<kAesBlockSize>());
  }
  return data;
}

// `data` lies against a protected page, as foreign data might.
Sealed Seal(const Message& message) {
  const GuardedMemory<uint8_t> data(std::span<const uint8_t>(message.plain));
  Sealed sealed{.data = {}, .tag = Bytes(kGcmTagSize)};
  GcmSeal(Aes256(KeyOf(message.key)), GcmNonce(message.nonce),
          message.additional, data.span(),
          std::span<uint8_t, kGcmTagSize>(sealed.tag));
  sealed.data.assign(data.span().begin(), data.span().end());
  return sealed;
}

// The plain data, or "refused" and what was left of the data.
struct Opened {
  bool is_right;
  Bytes data;
};

Opened Open(const Message& message, const Sealed& sealed) {
  const GuardedMemory<uint8_t> data(std::span<const uint8_t>(sealed.data));
  const bool is_right = GcmOpen(
      Aes256(KeyOf(message.key)), GcmNonce(message.nonce), message.additional,
      data.span(), std::span<const uint8_t, kGcmTagSize>(sealed.tag));
  return {is_right, Bytes(data.span().begin(), data.span().end())};
}

TEST(Cipher, AesExampleOfTheStandard) {
  const Bytes key = FromHex(
      "000102030405060708090a0b0c0d0e0f101112131415161718191a1b1c1d1e1f");
  const Bytes plain = FromHex("00112233445566778899aabbccddeeff");
  const Bytes encrypted = FromHex("8ea2b7ca516745bfeafc49904b496089");
  EXPECT_EQ(Encrypt(key, plain), encrypted);
  EXPECT_EQ(Decrypt(key, encrypted), plain);
}

TEST(Cipher, AesVectors) {
  size_t run = 0;
  for (const char* name : {"GFSbox", "KeySbox", "VarKey", "VarTxt", "MMT"}) {
    const std::string file = std::string("ciphers/AES/ECB/ECB") + name;
    for (Vector& row : ReadVectors(file + "256.rsp")) {
      ASSERT_EQ(Encrypt(row["KEY"], row["PLAINTEXT"]), row["CIPHERTEXT"])
          << name;
      ASSERT_EQ(Decrypt(row["KEY"], row["CIPHERTEXT"]), row["PLAINTEXT"])
          << name;
      ++run;
    }
  }
  RecordProperty("vectors", static_cast<int>(run));
  EXPECT_GE(run, 800U);
}

// A shorter tag is the beginning of the whole one.
bool BeginsWith(const Bytes& whole, const Bytes& beginning) {
  return beginning.size() <= whole.size() &&
         std::equal(beginning.begin(), beginning.end(), whole.begin());
}

TEST(Cipher, GcmVectors) {
  size_t run = 0;
  size_t refused = 0;
  for (const char* name : {"gcmEncryptExtIV256", "gcmDecrypt256"}) {
    for (Vector& row :
         ReadVectors(std::string("ciphers/AES/GCM/") + name + ".rsp")) {
      if (row["IV"].size() != kGcmNonceSize) continue;
      const bool must_fail = row.contains("FAIL");
      // Sealing the encrypted data decrypts it; its tag means nothing.
      Message message{row["KEY"], row["IV"], row["AAD"], row["CT"]};
      message.plain = Seal(message).data;
      if (!must_fail) {
        ASSERT_EQ(message.plain, row["PT"]);
      }
      const Sealed sealed = Seal(message);
      ASSERT_EQ(sealed.data, row["CT"]);
      ASSERT_EQ(BeginsWith(sealed.tag, row["TAG"]), !must_fail);
      if (row["TAG"].size() == kGcmTagSize) {
        const Opened opened = Open(message, {row["CT"], row["TAG"]});
        ASSERT_EQ(opened.is_right, !must_fail);
        ASSERT_EQ(opened.data, must_fail ? Bytes(row["CT"].size()) : row["PT"]);
      }
      ++run;
      refused += must_fail ? 1 : 0;
    }
  }
  RecordProperty("vectors", static_cast<int>(run));
  RecordProperty("refused", static_cast<int>(refused));
  EXPECT_GE(run, 5000U);
  EXPECT_GE(refused, 1000U);
}

Bytes Wrap(const Bytes& wrapping_key, const Bytes& key) {
  Bytes wrapped(kWrappedKeySize);
  WrapKey(Aes256(KeyOf(wrapping_key)), KeyOf(key),
          std::span<uint8_t, kWrappedKeySize>(wrapped));
  return wrapped;
}

Opened Unwrap(const Bytes& wrapping_key, const Bytes& wrapped) {
  Bytes key(kAesKeySize, 0xEE);
  const bool is_right =
      UnwrapKey(Aes256(KeyOf(wrapping_key)),
                std::span<const uint8_t, kWrappedKeySize>(wrapped),
                std::span<uint8_t, kAesKeySize>(key));
  return {is_right, key};
}

TEST(Cipher, KeyWrapVectors) {
  // The example of the standard: a key of 256 bits wrapped with another one.
  std::vector<Vector> vectors = {
      {{"K", FromHex("000102030405060708090a0b0c0d0e0f"
                     "101112131415161718191a1b1c1d1e1f")},
       {"P", FromHex("00112233445566778899aabbccddeeff"
                     "000102030405060708090a0b0c0d0e0f")},
       {"C", FromHex("28c9f404c4b810f4cbccb35cfb87f8263f5786e2d80ed326"
                     "cbc7f0e71a99f43bfb988b9b7a02dd21")}}};
  for (const char* name : {"KW_AE_256", "KW_AD_256"}) {
    const std::vector<Vector> more =
        ReadVectors(std::string("keywrap/kwtestvectors/") + name + ".txt");
    vectors.insert(vectors.end(), more.begin(), more.end());
  }
  int run = 0;
  int refused = 0;
  for (Vector& row : vectors) {
    if (row["C"].size() != kWrappedKeySize) continue;
    const bool must_fail = row.contains("FAIL");
    const Opened key = Unwrap(row["K"], row["C"]);
    ASSERT_EQ(key.is_right, !must_fail);
    ASSERT_EQ(key.data, must_fail ? Bytes(kAesKeySize) : row["P"]);
    if (!must_fail) {
      ASSERT_EQ(Wrap(row["K"], row["P"]), row["C"]);
    }
    ++run;
    refused += must_fail ? 1 : 0;
  }
  RecordProperty("vectors", run);
  EXPECT_GE(run, 200);
  EXPECT_GE(refused, 20);
}

class Source {
 public:
  size_t Below(size_t end) { return engine_() % end; }
  Bytes Take(size_t size) {
    Bytes bytes(size);
    for (uint8_t& byte : bytes) byte = static_cast<uint8_t>(engine_());
    return bytes;
  }

 private:
  std::seed_seq seed_ = {20};
  std::mt19937 engine_{seed_};
};

TEST(Cipher, SameAsPeer) {
  Source source;
  for (size_t size = 0; size < 600; ++size) {
    const Message message{source.Take(32), source.Take(12),
                          source.Take(source.Below(64)), source.Take(size)};
    const Sealed sealed = SealByPeer(message);
    ASSERT_EQ(Seal(message), sealed) << size;
    const Opened opened = Open(message, sealed);
    ASSERT_TRUE(opened.is_right) << size;
    ASSERT_EQ(opened.data, message.plain) << size;

    const Bytes blocks = source.Take(size / 16 * 16);
    const Bytes encrypted = EncryptByPeer(message.key, blocks);
    ASSERT_EQ(Encrypt(message.key, blocks), encrypted);
    ASSERT_EQ(Decrypt(message.key, encrypted), blocks);

    const Bytes key = source.Take(32);
    const Bytes wrapped = WrapByPeer(message.key, key);
    ASSERT_EQ(Wrap(message.key, key), wrapped);
    ASSERT_EQ(Unwrap(message.key, wrapped).data, key);
  }
}

// Every bit of what is opened counts, and nothing is released without them.
TEST(Cipher, OneWrongBitIsRefused) {
  Source source;
  const Message message{source.Take(32), source.Take(12), source.Take(5),
                        source.Take(21)};
  const Sealed sealed = Seal(message);
  Message changed = message;
  Sealed damaged = sealed;
  for (Bytes* part : {&changed.key, &changed.nonce, &changed.additional,
                      &damaged.data, &damaged.tag}) {
    for (size_t bit = 0; bit < part->size() * 8; ++bit) {
      const auto flip = static_cast<uint8_t>(1U << bit % 8);
      (*part)[bit / 8] ^= flip;
      const Opened opened = Open(changed, damaged);
      ASSERT_FALSE(opened.is_right) << bit;
      ASSERT_EQ(opened.data, Bytes(message.plain.size())) << bit;
      (*part)[bit / 8] ^= flip;
    }
  }
  EXPECT_TRUE(Open(changed, damaged).is_right);

  Bytes wrapped = Wrap(message.key, source.Take(32));
  for (size_t bit = 0; bit < wrapped.size() * 8; ++bit) {
    const auto flip = static_cast<uint8_t>(1U << bit % 8);
    wrapped[bit / 8] ^= flip;
    ASSERT_FALSE(Unwrap(message.key, wrapped).is_right) << bit;
    wrapped[bit / 8] ^= flip;
  }
}

// Whatever the compiler thinks of memory that has died.
size_t CountInMemory(std::span<const uint8_t> memory, uint8_t value) {
  size_t count = 0;
  for (const uint8_t& place : memory) {
    const volatile uint8_t& byte = place;
    count += byte == value ? 1 : 0;
  }
  return count;
}

TEST(Cipher, KeyScheduleIsWiped) {
  const GuardedMemory<uint8_t> memory(sizeof(Aes256));
  const Bytes key(32, 0x5A);
  auto* cipher = new (memory.data()) Aes256(KeyOf(key));
  EXPECT_EQ(CountInMemory(memory.span().first(32), 0x5A), 32U);
  cipher->~Aes256();
  EXPECT_EQ(CountInMemory(memory.span(), 0), sizeof(Aes256));
}

}  // namespace
}  // namespace zuqel::calib
