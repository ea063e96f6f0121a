// A key encrypted with another key (RFC 3394), both of 256 bits.
#ifndef ZUQEL_CALIB_KEY_WRAP_H_
#define ZUQEL_CALIB_KEY_WRAP_H_

#include <cstddef>
#include <cstdint>
#include <span>

#include "calib/aes256.h"

namespace zuqel::calib {

inline constexpr size_t kWrappedKeySize = kAesKeySize + 8;

// False when `wrapped` was made with another key, or damaged; `key` is wiped.
[[nodiscard]] bool UnwrapKey(const Aes256& wrapping_key,
                             std::span<const uint8_t, kWrappedKeySize> wrapped,
                             std::span<uint8_t, kAesKeySize> key);

}  // namespace zuqel::calib

#endif  // ZUQEL_CALIB_KEY_WRAP_H_
