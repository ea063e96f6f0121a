// What a target makes of the bytes that it is run on.
#ifndef ZUQEL_FUZZ_INPUT_H_
#define ZUQEL_FUZZ_INPUT_H_

#include <fuzzer/FuzzedDataProvider.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "plane_image.h"
#include "random.h"

namespace zuqel::fuzz {

// Numbers come from the end of the bytes, pixels from the beginning. When the
// bytes are used up, numbers are the smallest that may be, and pixels are drawn
// by chance. All memory has its exact size, so that the address checks see one
// byte too many.
class Input {
 public:
  Input(const uint8_t* bytes, size_t size) : bytes_(bytes, size) {}

  bool Flag() { return bytes_.ConsumeBool(); }
  template <typename T>
  T Between(T low, T high) {
    return bytes_.ConsumeIntegralInRange<T>(low, high);
  }
  // Small, extreme or any: what coordinates and arguments can be.
  int32_t AnyInteger() {
    const auto any = bytes_.ConsumeIntegral<int32_t>();
    switch (Between(0, 3)) {
      case 0:
        return any % 64;
      case 1:
        return INT32_MAX - (any & 63);
      case 2:
        return INT32_MIN + (any & 63);
      default:
        return any;
    }
  }
  zuqel::Size SizeUpTo(int32_t width, int32_t height) {
    return {Between(0, width), Between(0, height)};
  }
  template <typename T, size_t kCount>
  T OneOf(const std::array<T, kCount>& table) {
    return table[Between(size_t{0}, kCount - 1)];
  }

  // `count` bytes of the input; past its end, noise.
  std::vector<uint8_t> Bytes(size_t count) {
    std::vector<uint8_t> made = MakeRandom().Values<uint8_t>(count);
    if (count > 0) bytes_.ConsumeData(made.data(), count);
    return made;
  }
  // All that is left.
  std::vector<uint8_t> Rest() {
    return bytes_.ConsumeRemainingBytes<uint8_t>();
  }

  // Values from 0 to `largest`: of four kinds, any, or a walk with a few
  // outliers.
  template <typename T>
  Image<T> Draw(const zuqel::Size& size, int32_t largest) {
    enum Style { kPalette, kNoise, kWalk };
    const auto style = Between<int>(kPalette, kWalk);
    std::array<int32_t, 4> palette;
    for (int32_t& value : palette) value = Between(0, largest);
    const int32_t step = Between(0, largest / 8);
    Random random = MakeRandom();
    int32_t at = palette[0];
    Image<T> image = {size.width, size.height};
    for (T& value : image.values) {
      if (style == kPalette) at = palette[Choice(random) % 4];
      if (style == kNoise) at = random.Between(0, largest);
      if (style == kWalk) {
        at = std::clamp(at + random.Between(-step, step), 0, largest);
      }
      const bool is_outlier = style == kWalk && random.Below(64) == 0;
      value = static_cast<T>(is_outlier ? palette[1] : at);
    }
    return image;
  }

 private:
  Random MakeRandom() { return Random(bytes_.ConsumeIntegral<uint16_t>()); }

  uint32_t Choice(Random& random) {
    uint8_t byte = 0;
    return bytes_.ConsumeData(&byte, 1) == 1 ? byte : random.Bits();
  }

  FuzzedDataProvider bytes_;
};

// What each target does with one input.
void Run(Input& input);

}  // namespace zuqel::fuzz

#endif  // ZUQEL_FUZZ_INPUT_H_
