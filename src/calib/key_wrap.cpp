// RFC 3394 for keys of 256 bits: a check value and four words of the key, each
// word encrypted together with the check value six times.
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

// The step's number is a 64-bit one of which only the last byte is ever used.
void AddStepNumber(AesBlock block, size_t step) {
  static_assert(kSteps < 256);
  block[kWordSize - 1] ^= static_cast<uint8_t>(step);
}

}  // namespace

// In both directions the first half of `block` is the running check value, the
// second the word at hand.
void WrapKey(const Aes256& wrapping_key, AesKey key,
             std::span<uint8_t, kWrappedKeySize> wrapped) {
  SecretBytes<kAesBlockSize> block;
  const auto check = std::span(block.values).first<kWordSize>();
  const auto word = std::span(block.values).last<kWordSize>();
  const auto words = wrapped.last<kAesKeySize>();
  std::copy(key.begin(), key.end(), words.begin());
  std::copy(kCheckValue.begin(), kCheckValue.end(), check.begin());
  for (size_t step = 1; step <= kSteps; ++step) {
    const auto place =
        words.subspan((step - 1) % kWords * kWordSize, kWordSize);
    std::copy(place.begin(), place.end(), word.begin());
    wrapping_key.Encrypt(block.values);
    AddStepNumber(block.values, step);
    std::copy(word.begin(), word.end(), place.begin());
  }
  std::copy(check.begin(), check.end(), wrapped.begin());
}

bool UnwrapKey(const Aes256& wrapping_key,
               std::span<const uint8_t, kWrappedKeySize> wrapped,
               std::span<uint8_t, kAesKeySize> key) {
  SecretBytes<kAesBlockSize> block;
  const auto check = std::span(block.values).first<kWordSize>();
  const auto word = std::span(block.values).last<kWordSize>();
  std::copy_n(wrapped.begin(), kWordSize, check.begin());
  std::copy(wrapped.begin() + kWordSize, wrapped.end(), key.begin());
  for (size_t step = kSteps; step >= 1; --step) {
    const auto place = key.subspan((step - 1) % kWords * kWordSize, kWordSize);
    std::copy(place.begin(), place.end(), word.begin());
    AddStepNumber(block.values, step);
    wrapping_key.Decrypt(block.values);
    std::copy(word.begin(), word.end(), place.begin());
  }
  if (EqualInConstantTime<kWordSize>(check, kCheckValue)) return true;
  Wipe(key);
  return false;
}

}  // namespace zuqel::calib
