// Authenticated encryption: AES-256 in Galois/Counter Mode (NIST SP 800-38D)
// with nonces of 96 bits and whole tags.
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

// Encrypts `data` in place, less than 64 GiB, and makes the tag that vouches
// for it and for `additional`. A nonce must not be used twice with one key.
void GcmSeal(const Aes256& cipher, GcmNonce nonce,
             std::span<const uint8_t> additional, std::span<uint8_t> data,
             std::span<uint8_t, kGcmTagSize> tag);

// Decrypts `data` in place once its tag has proved right. Otherwise returns
// false, and `data` is wiped.
[[nodiscard]] bool GcmOpen(const Aes256& cipher, GcmNonce nonce,
                           std::span<const uint8_t> additional,
                           std::span<uint8_t> data,
                           std::span<const uint8_t, kGcmTagSize> tag);

}  // namespace zuqel::calib

#endif  // ZUQEL_CALIB_GCM_H_
