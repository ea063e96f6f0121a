// Enlarges rows by whole factors, with weights that repeat between neighbours.
#ifndef ZUQEL_CPU_BOKEH_RESIZE_ENLARGE_KERNELS_H_
#define ZUQEL_CPU_BOKEH_RESIZE_ENLARGE_KERNELS_H_

#include <cstddef>
#include <cstdint>

namespace zuqel {

// Each function makes out[0] to out[factor * count - 1] from row[-1] to
// row[count]: the first half of the samples that one becomes, rounded down,
// lies between it and the one before, the others between it and the next one.
// Sums are rounded to nearest.
struct EnlargeKernels {
  // The weights of a walk along the axis. By 2, `row` is inverted.
  void (*by_2)(const uint8_t* row, size_t count, uint8_t* out);
  void (*by_4)(const uint16_t* row, size_t count, uint8_t* out);

  // Weights that are uneven on purpose.
  void (*by_3)(const uint16_t* row, size_t count, uint8_t* out);
  void (*by_6)(const uint16_t* row, size_t count, uint8_t* out);

  // Three samples for each two of 2 * count.
  void (*by_3_halves)(const uint32_t* row, size_t count, uint16_t* out);

  // (3 * near + far + 2) / 4 of two rows, inverted.
  void (*lean)(const uint8_t* near, const uint8_t* far, size_t count,
               uint8_t* out);
};

}  // namespace zuqel

#endif  // ZUQEL_CPU_BOKEH_RESIZE_ENLARGE_KERNELS_H_
