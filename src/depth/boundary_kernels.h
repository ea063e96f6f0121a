// Columns of the pixels that smoothing takes into account.
#ifndef ZUQEL_DEPTH_BOUNDARY_KERNELS_H_
#define ZUQEL_DEPTH_BOUNDARY_KERNELS_H_

#include <cstddef>
#include <cstdint>

namespace zuqel {

// Adds the pixels of a row whose mark is below 255 to the sums and numbers of
// their columns, or takes them out again.
struct BoundaryKernels {
  using Change = void (*)(const uint8_t* values, const uint8_t* marks,
                          size_t count, uint16_t* sums, uint8_t* numbers);
  Change add, remove;
};

}  // namespace zuqel

#endif  // ZUQEL_DEPTH_BOUNDARY_KERNELS_H_
