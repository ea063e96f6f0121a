// Random numbers for test data.
#ifndef ZUQEL_TESTING_RANDOM_H_
#define ZUQEL_TESTING_RANDOM_H_

#include <cstddef>
#include <cstdint>
#include <vector>

namespace zuqel {

// SplitMix64: the same numbers for the same seed on every machine.
class Random {
 public:
  explicit Random(uint64_t seed) : state_(seed) {}

  // Any 32 bits.
  uint32_t Bits() {
    uint64_t z = state_ += 0x9E3779B97F4A7C15;
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EB;
    return static_cast<uint32_t>(z >> 32);
  }
  // 0 to `limit` - 1.
  uint32_t Below(uint32_t limit) { return Bits() % limit; }
  // `low` to `high`, both included.
  int32_t Between(int32_t low, int32_t high) {
    return low + static_cast<int32_t>(Below(static_cast<uint32_t>(high) -
                                            static_cast<uint32_t>(low) + 1));
  }
  // True in `percent` of a hundred cases.
  bool Chance(uint32_t percent) { return Below(100) < percent; }
  // `count` values of any bits.
  template <typename T>
  std::vector<T> Values(size_t count) {
    std::vector<T> values(count);
    for (T& value : values) value = static_cast<T>(Bits());
    return values;
  }

 private:
  uint64_t state_;
};

}  // namespace zuqel

#endif  // ZUQEL_TESTING_RANDOM_H_
