// Authenticated encryption: AES-256 in Galois/Counter Mode (NIST SP 800-38D)
// with 96-bit nonces and 128-bit tags.
#ifndef ZUQEL_CALIB_GCM_H_
#define ZUQEL_CALIB_GCM_H_

#include <cstddef>
#include <cstdint>
#include <span>

#include "calib/aes256.h"

namespace zuqel::calib {

inline constexpr size_t kGcmNonceSize = 12;
inline constexpr size_t kGcmTagSize = 16;

using GcmNonce = std::span<const uint8_t, kGcmNonceSize>;

// Encrypts less than 64 GiB in place and computes the tag that authenticates
// `data` and `additional`. A nonce must not be used twice with one key.
void GcmSeal(const Aes256& cipher, GcmNonce nonce,
             std::span<const uint8_t> additional, std::span<uint8_t> data,
             std::span<uint8_t, kGcmTagSize> tag);

// Decrypts `data` in place if its tag is correct. Otherwise wipes it and
// returns false.
[[nodiscard]] bool GcmOpen(const Aes256& cipher, GcmNonce nonce,
                           std::span<const uint8_t> additional,
                           std::span<uint8_t> data,
                           std::span<const uint8_t, kGcmTagSize> tag);

}  // namespace zuqel::calib

#endif  // ZUQEL_CALIB_GCM_H_
