// Unwraps a 256-bit key that was wrapped with another one (RFC 3394).
#ifndef ZUQEL_CALIB_KEY_WRAP_H_
#define ZUQEL_CALIB_KEY_WRAP_H_

#include <cstddef>
#include <cstdint>
#include <span>

#include "calib/aes256.h"

namespace zuqel::calib {

inline constexpr size_t kWrappedKeySize = kAesKeySize + 8;

// False when `wrapped` was made with another key or is damaged; then `key` is
// wiped.
[[nodiscard]] bool UnwrapKey(const Aes256& wrapping_key,
                             std::span<const uint8_t, kWrappedKeySize> wrapped,
                             std::span<uint8_t, kAesKeySize> key);

}  // namespace zuqel::calib

#endif  // ZUQEL_CALIB_KEY_WRAP_H_
