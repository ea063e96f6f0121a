// The blend of the CPU render path, row by row.
#ifndef ZUQEL_CPU_BOKEH_BLEND_KERNELS_H_
#define ZUQEL_CPU_BOKEH_BLEND_KERNELS_H_

#include <cstddef>
#include <cstdint>

namespace zuqel {

struct BlendKernels {
  // Pixels of a row, in place. A mask of 0 keeps the sharp pixel, 255 takes the
  // strong blur, and any other gives (mask * strong + (255 - mask) * mild) /
  // 255, truncated.
  void (*by_mask)(const uint8_t* strong, const uint8_t* mild,
                  const uint8_t* mask, size_t count, uint8_t* sharp);
};

}  // namespace zuqel

#endif  // ZUQEL_CPU_BOKEH_BLEND_KERNELS_H_
