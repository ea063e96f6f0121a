// AES-256 in Galois/Counter Mode. The multiplication goes bit by bit: a table
// would be indexed by secrets.
#include "calib/gcm.h"

#include <algorithm>

namespace zuqel::calib {
namespace {

// Counter of the block that encrypts the tag; data begins at the next one.
constexpr uint32_t kTagCounter = 1;

uint64_t LoadBigEndian(std::span<const uint8_t, 8> bytes) {
  uint64_t value = 0;
  for (const uint8_t byte : bytes) value = (value << 8) | byte;
  return value;
}

template <size_t kExtent>
void StoreBigEndian(uint64_t value, std::span<uint8_t, kExtent> bytes) {
  for (size_t i = kExtent; i-- > 0; value >>= 8) {
    bytes[i] = static_cast<uint8_t>(value);
  }
}

// All ones for an odd number, otherwise 0.
uint64_t MaskOfLowestBit(uint64_t value) {
  return 0 - (value & 1);
}

// GHASH, the keyed hash that a tag encrypts. An element of GF(2^128) is two
// words; the top bit of the first is the coefficient of 1.
class Ghash {
 public:
  explicit Ghash(const Aes256& cipher) {
    SecretBytes<kAesBlockSize> block;
    cipher.Encrypt(block.values);
    key_.values = {LoadBigEndian(std::span(block.values).first<8>()),
                   LoadBigEndian(std::span(block.values).last<8>())};
  }

  // The last block is padded with zeros.
  void Add(std::span<const uint8_t> bytes) {
    while (!bytes.empty()) {
      const size_t size = std::min(bytes.size(), kAesBlockSize);
      SecretBytes<kAesBlockSize> block;
      std::copy_n(bytes.begin(), size, block.values.begin());
      AddElement(LoadBigEndian(std::span(block.values).first<8>()),
                 LoadBigEndian(std::span(block.values).last<8>()));
      bytes = bytes.subspan(size);
    }
  }

  void AddElement(uint64_t high, uint64_t low) {
    sum_.values[0] ^= high;
    sum_.values[1] ^= low;
    MultiplySumByKey();
  }

  void Store(AesBlock block) const {
    StoreBigEndian(sum_.values[0], block.first<8>());
    StoreBigEndian(sum_.values[1], block.last<8>());
  }

 private:
  // Adds key * x^i for each coefficient i of the sum.
  void MultiplySumByKey() {
    uint64_t high = 0;
    uint64_t low = 0;
    uint64_t power_high = key_.values[0];
    uint64_t power_low = key_.values[1];
    for (const uint64_t word : sum_.values) {
      for (int bit = 63; bit >= 0; --bit) {
        const uint64_t is_set = MaskOfLowestBit(word >> bit);
        high ^= power_high & is_set;
        low ^= power_low & is_set;
        // x^128 = x^7 + x^2 + x + 1
        const uint64_t carry = MaskOfLowestBit(power_low);
        power_low = (power_low >> 1) | (power_high << 63);
        power_high = (power_high >> 1) ^ (carry & 0xE100'0000'0000'0000);
      }
    }
    sum_.values = {high, low};
  }

  SecretArray<uint64_t, 2> key_;
  SecretArray<uint64_t, 2> sum_;
};

// XORs the key stream from counter block `counter` on into `data`.
void XorKeyStream(const Aes256& cipher, GcmNonce nonce, uint32_t counter,
                  std::span<uint8_t> data) {
  SecretBytes<kAesBlockSize> stream;
  for (; !data.empty(); ++counter) {
    std::copy(nonce.begin(), nonce.end(), stream.values.begin());
    StoreBigEndian(counter, std::span(stream.values).last<4>());
    cipher.Encrypt(stream.values);
    const size_t size = std::min(data.size(), kAesBlockSize);
    for (size_t i = 0; i < size; ++i) data[i] ^= stream.values[i];
    data = data.subspan(size);
  }
}

void MakeTag(const Aes256& cipher, GcmNonce nonce,
             std::span<const uint8_t> additional,
             std::span<const uint8_t> encrypted,
             std::span<uint8_t, kGcmTagSize> tag) {
  Ghash hash(cipher);
  hash.Add(additional);
  hash.Add(encrypted);
  hash.AddElement(uint64_t{additional.size()} * 8,
                  uint64_t{encrypted.size()} * 8);
  hash.Store(tag);
  XorKeyStream(cipher, nonce, kTagCounter, tag);
}

}  // namespace

void GcmSeal(const Aes256& cipher, GcmNonce nonce,
             std::span<const uint8_t> additional, std::span<uint8_t> data,
             std::span<uint8_t, kGcmTagSize> tag) {
  XorKeyStream(cipher, nonce, kTagCounter + 1, data);
  MakeTag(cipher, nonce, additional, data, tag);
}

bool GcmOpen(const Aes256& cipher, GcmNonce nonce,
             std::span<const uint8_t> additional, std::span<uint8_t> data,
             std::span<const uint8_t, kGcmTagSize> tag) {
  // The correct tag of forged data must not be left in memory.
  SecretBytes<kGcmTagSize> expected;
  MakeTag(cipher, nonce, additional, data, expected.values);
  if (!EqualInConstantTime<kGcmTagSize>(expected.values, tag)) {
    Wipe(data);
    return false;
  }
  XorKeyStream(cipher, nonce, kTagCounter + 1, data);
  return true;
}

}  // namespace zuqel::calib
