// Blends rows.
#include "cpu_bokeh/blend_kernels.h"

#include "base/kernel_set.h"

namespace zuqel {
namespace {

// floor(value / 255) for products of two bytes: 257 / 65536 is 1 / 255 less one
// part in 65536, for which the added 1 makes up.
inline uint8_t DivideBy255(uint16_t value) {
  const auto next = static_cast<uint16_t>(value + 1U);
  return static_cast<uint8_t>(next * 257U >> 16);
}

void BlendByMask(const uint8_t* strong, const uint8_t* mild,
                 const uint8_t* mask, size_t count, uint8_t* __restrict sharp) {
  for (size_t i = 0; i < count; ++i) {
    const uint8_t weight = mask[i];
    const uint8_t sharp_pixel = sharp[i], mild_pixel = mild[i];
    // At 255 the other pixel has no weight, so either will do.
    const uint8_t other = weight == 0 ? sharp_pixel : mild_pixel;
    const int more = weight * (strong[i] - other);
    sharp[i] = DivideBy255(static_cast<uint16_t>(255 * other + more));
  }
}

constexpr BlendKernels kKernels = {BlendByMask};

}  // namespace

template <>
const BlendKernels& KernelsOf<BlendKernels, kCompiledSet>() {
  return kKernels;
}

}  // namespace zuqel
