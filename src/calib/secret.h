// Wipes secrets and compares them in constant time.
#ifndef ZUQEL_CALIB_SECRET_H_
#define ZUQEL_CALIB_SECRET_H_

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

namespace zuqel::calib {

// Writes zeros with volatile stores, which the compiler keeps although nothing
// reads them.
template <typename T, size_t kExtent>
void Wipe(std::span<T, kExtent> values) {
  for (T& value : values) {
    volatile T& store = value;
    store = 0;
  }
}

// An array that starts as zeros and is wiped when it dies.
template <typename T, size_t kCount>
struct SecretArray {
  SecretArray() = default;
  ~SecretArray() { Wipe(std::span(values)); }
  SecretArray(const SecretArray&) = delete;
  SecretArray& operator=(const SecretArray&) = delete;

  std::array<T, kCount> values = {};
};

template <size_t kCount>
using SecretBytes = SecretArray<uint8_t, kCount>;

// The time taken does not depend on the contents.
template <size_t kExtent>
[[nodiscard]] bool EqualInConstantTime(std::span<const uint8_t, kExtent> a,
                                       std::span<const uint8_t, kExtent> b) {
  static_assert(kExtent != std::dynamic_extent);
  unsigned difference = 0;
  for (size_t i = 0; i < kExtent; ++i) {
    difference |= static_cast<unsigned>(a[i] ^ b[i]);
  }
  return difference == 0;
}

}  // namespace zuqel::calib

#endif  // ZUQEL_CALIB_SECRET_H_
