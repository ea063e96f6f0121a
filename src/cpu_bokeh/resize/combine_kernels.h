// Weighted sums of rows, for resizing by any ratio.
#ifndef ZUQEL_CPU_BOKEH_RESIZE_COMBINE_KERNELS_H_
#define ZUQEL_CPU_BOKEH_RESIZE_COMBINE_KERNELS_H_

#include <cstddef>
#include <cstdint>

#include "cpu_bokeh/resize/lane.h"

namespace zuqel {

// `Sample` is uint8_t or uint16_t. Weights are in 1/256 and add up to 256; each
// sum is rounded to nearest.
template <typename Sample>
struct CombineKernels {
  using Combine = void (*)(const Sample* const* rows, const uint16_t* weights,
                           size_t count, Lane<Sample>* out);
  Combine one, two, three, four;  // rows; the one has a weight of 256

  // Of any number of rows, one by one; `sums` begins as 128.
  void (*add)(const Sample* row, uint32_t weight, size_t count,
              Lane<Sample>* sums);
  void (*round)(size_t count, Lane<Sample>* sums);
};

}  // namespace zuqel

#endif  // ZUQEL_CPU_BOKEH_RESIZE_COMBINE_KERNELS_H_
