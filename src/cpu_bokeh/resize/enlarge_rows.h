// Enlarges rows by exact factors, with fixed weights between neighbours. The
// end samples are repeated outside. `row` has `width` samples in lanes that
// hold sums; `out` has the factor times as many. Neither is empty.
#ifndef ZUQEL_CPU_BOKEH_RESIZE_ENLARGE_ROWS_H_
#define ZUQEL_CPU_BOKEH_RESIZE_ENLARGE_ROWS_H_

#include <cstdint>
#include <type_traits>

namespace zuqel {

// Holds a sum of samples whose weights add up to 256, plus the rounding half:
// 16 bits suffice for bytes, and twice as many of them fit a vector.
template <typename Sample>
using Lane = std::conditional_t<sizeof(Sample) == 1, uint16_t, uint32_t>;

template <typename Sample>
using RowFunction = void (*)(const Lane<Sample>* row, int32_t width,
                             Sample* out);

// The weights of a walk along the axis.
void EnlargeRowBy2(const uint16_t* row, int32_t width, uint8_t* out);
void EnlargeRowBy4(const uint16_t* row, int32_t width, uint8_t* out);

// Weights that are uneven on purpose.
void EnlargeRowBy3(const uint16_t* row, int32_t width, uint8_t* out);
void EnlargeRowBy6(const uint16_t* row, int32_t width, uint8_t* out);

// Three samples for each two; `width` is even.
void EnlargeRowBy3Halves(const uint32_t* row, int32_t width, uint16_t* out);

}  // namespace zuqel

#endif  // ZUQEL_CPU_BOKEH_RESIZE_ENLARGE_ROWS_H_
