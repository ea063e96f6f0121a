// The AES block cipher with keys of 256 bits (FIPS 197).
#ifndef ZUQEL_CALIB_AES256_H_
#define ZUQEL_CALIB_AES256_H_

#include <cstddef>
#include <cstdint>
#include <span>

#include "calib/secret.h"

namespace zuqel::calib {

inline constexpr size_t kAesKeySize = 32;
inline constexpr size_t kAesBlockSize = 16;

using AesKey = std::span<const uint8_t, kAesKeySize>;
using AesBlock = std::span<uint8_t, kAesBlockSize>;

// An expanded key; wiped when it dies.
class Aes256 {
 public:
  explicit Aes256(AesKey key);

  // In place.
  void Encrypt(AesBlock block) const;
  void Decrypt(AesBlock block) const;

 private:
  static constexpr size_t kRounds = 14;

  void AddRoundKey(AesBlock state, size_t round) const;

  // One for the start and one for each round.
  SecretBytes<kAesBlockSize*(kRounds + 1)> round_keys_;
};

}  // namespace zuqel::calib

#endif  // ZUQEL_CALIB_AES256_H_
