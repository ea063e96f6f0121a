// What sums of weighted samples are kept in.
#ifndef ZUQEL_CPU_BOKEH_RESIZE_LANE_H_
#define ZUQEL_CPU_BOKEH_RESIZE_LANE_H_

#include <cstdint>
#include <type_traits>

namespace zuqel {

// Holds a sum of samples whose weights add up to 256, plus the rounding half:
// 16 bits suffice for bytes, and twice as many of them fit a vector.
template <typename Sample>
using Lane = std::conditional_t<sizeof(Sample) == 1, uint16_t, uint32_t>;

}  // namespace zuqel

#endif  // ZUQEL_CPU_BOKEH_RESIZE_LANE_H_
