// How an encrypted unit of a calibration container is stored: a nonce, zeros,
// the encrypted bytes, and their tag.
#ifndef ZUQEL_CALIB_SEALED_RECORD_H_
#define ZUQEL_CALIB_SEALED_RECORD_H_

#include <cstddef>
#include <cstdint>
#include <span>

#include "calib/aes256.h"
#include "calib/gcm.h"

namespace zuqel::calib {

inline constexpr size_t kSealFillerSize = 4;
inline constexpr size_t kSealedDataAt = kGcmNonceSize + kSealFillerSize;
inline constexpr size_t kSealOverhead = kSealedDataAt + kGcmTagSize;

// `plain` and the overhead are as large as `sealed`. False when the key is
// another one or a bit has changed; `plain` is wiped.
[[nodiscard]] bool OpenRecord(const Aes256& cipher,
                              std::span<const uint8_t> sealed,
                              std::span<uint8_t> plain);

}  // namespace zuqel::calib

#endif  // ZUQEL_CALIB_SEALED_RECORD_H_
