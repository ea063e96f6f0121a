// Steps of the square filters, on whole vectors of pixels.
#ifndef ZUQEL_DEPTH_MORPHOLOGY_KERNELS_H_
#define ZUQEL_DEPTH_MORPHOLOGY_KERNELS_H_

#include <cstddef>
#include <cstdint>

namespace zuqel {

// A line of the cache; no row is narrower. Columns are combined in strips that
// are no wider.
constexpr size_t kFilterStrip = 64;

// For one of the operations, which combine pixels with themselves unchanged.
struct SquareFilterSteps {
  // Combines a block of rows with the one before, down the columns: row i of
  // `out` becomes row i of `ends` and the first i of `rows`. Then row i of
  // `ends` becomes that of `rows` and all later ones of the block. `ends` is in
  // this function's order and has room for a block of whole strips.
  void (*combine_columns)(const uint8_t* const* rows, size_t block,
                          size_t width, uint8_t* ends, size_t out_rows,
                          size_t out_stride, uint8_t* out);

  // Combines pixels with those that are `second` and `third` to the right.
  void (*combine_along)(const uint8_t* row, size_t second, size_t third,
                        size_t count, uint8_t* out);

  uint8_t neutral;  // stands for pixels outside the image
};

struct SquareFilterKernels {
  SquareFilterSteps by_union, minimum, maximum;
};

}  // namespace zuqel

#endif  // ZUQEL_DEPTH_MORPHOLOGY_KERNELS_H_
