// Reduces rows by exact factors.
#ifndef ZUQEL_CPU_BOKEH_RESIZE_REDUCE_KERNELS_H_
#define ZUQEL_CPU_BOKEH_RESIZE_REDUCE_KERNELS_H_

#include <cstddef>
#include <cstdint>

#include "cpu_bokeh/resize/lane.h"

namespace zuqel {

// `Sample` is uint8_t or uint16_t. Each function makes a row of `count` means
// of blocks: as many of `rows` as its factor, each that many times as long.
// Columns are combined before rows, each rounded to nearest, by weights in
// 1/256. They are uneven where the factor does not divide 256; which sample
// gets the larger one decides the last bit.
template <typename Sample>
struct ReduceKernels {
  using Reduce = void (*)(const Sample* const* rows, size_t count, Sample* out);
  Reduce halves, thirds, quarters, sixths;

  // The second pass of thirds alone: `row` has 3 * count samples.
  void (*thirds_along)(const Lane<Sample>* row, size_t count, Sample* out);
};

}  // namespace zuqel

#endif  // ZUQEL_CPU_BOKEH_RESIZE_REDUCE_KERNELS_H_
