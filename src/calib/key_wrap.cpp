// RFC 3394 for keys of 256 bits: a check value and the four words of the key,
// each of which is encrypted six times together with the check value.
#include "calib/key_wrap.h"

#include <algorithm>
#include <array>

namespace zuqel::calib {
namespace {

constexpr size_t kWordSize = 8;
constexpr size_t kWords = kAesKeySize / kWordSize;
constexpr size_t kSteps = 6 * kWords;

constexpr std::array<uint8_t, kWordSize> kCheckValue = {0xA6, 0xA6, 0xA6, 0xA6,
                                                        0xA6, 0xA6, 0xA6, 0xA6};

}  // namespace

bool UnwrapKey(const Aes256& wrapping_key,
               std::span<const uint8_t, kWrappedKeySize> wrapped,
               std::span<uint8_t, kAesKeySize> key) {
  // The first half is the running check value, the second the current word.
  SecretBytes<kAesBlockSize> block;
  const auto check = std::span(block.values).first<kWordSize>();
  const auto word = std::span(block.values).last<kWordSize>();
  std::copy_n(wrapped.begin(), kWordSize, check.begin());
  std::copy(wrapped.begin() + kWordSize, wrapped.end(), key.begin());
  for (size_t step = kSteps; step >= 1; --step) {
    const auto place = key.subspan((step - 1) % kWords * kWordSize, kWordSize);
    std::copy(place.begin(), place.end(), word.begin());
    // A 64-bit number of which only the last byte is ever used.
    static_assert(kSteps < 256);
    check.back() ^= static_cast<uint8_t>(step);
    wrapping_key.Decrypt(block.values);
    std::copy(word.begin(), word.end(), place.begin());
  }
  if (EqualInConstantTime<kWordSize>(check, kCheckValue)) return true;
  Wipe(key);
  return false;
}

}  // namespace zuqel::calib
