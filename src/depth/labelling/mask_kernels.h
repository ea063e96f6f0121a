// Masks as rows of bits, and back to pixels and labels, row by row.
#ifndef ZUQEL_DEPTH_LABELLING_MASK_KERNELS_H_
#define ZUQEL_DEPTH_LABELLING_MASK_KERNELS_H_

#include <cstddef>
#include <cstdint>

namespace zuqel {

constexpr size_t kWordBits = 64;

// The first pixel of a row is the lowest bit of its first word, and bits past
// the last pixel are clear.
struct MaskKernels {
  // Finds the pixels that are 255, and those that are neither 0 nor 255; true
  // if there are any of these.
  bool (*find_bits)(const uint8_t* pixels, size_t count, uint64_t* set,
                    uint64_t* others);

  // Copies the pixels whose bits are set and clears the others. `in` and `out`
  // may be the same.
  void (*keep_pixels)(const uint8_t* in, const uint64_t* kept, size_t count,
                      uint8_t* out);

  // Writes each pixel's label, 0 where it is not set. `run_labels` begins with
  // the run before the first one that starts in this row, and eight more than
  // there are can be read.
  void (*paint_labels)(const uint64_t* set, const uint64_t* starts,
                       size_t count, const uint32_t* run_labels, uint32_t* out);
};

}  // namespace zuqel

#endif  // ZUQEL_DEPTH_LABELLING_MASK_KERNELS_H_
