// Reduces planes by exact factors.
#ifndef ZUQEL_CPU_BOKEH_RESIZE_REDUCE_BLOCKS_H_
#define ZUQEL_CPU_BOKEH_RESIZE_REDUCE_BLOCKS_H_

#include <cstdint>

#include "base/plane.h"

namespace zuqel {

// Each pixel becomes the mean of a block of `factor` by `factor` pixels, 2, 3,
// 4 or 6: first down the columns, then along the row, each rounded to nearest,
// by weights in 1/256. `in` has `factor` times the size of `out`. `Sample` is
// uint8_t or uint16_t.
template <typename Sample>
void ReduceBlocks(int32_t factor, Plane<const Sample> in, Plane<Sample> out);

}  // namespace zuqel

#endif  // ZUQEL_CPU_BOKEH_RESIZE_REDUCE_BLOCKS_H_
