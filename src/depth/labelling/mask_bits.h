// Two-valued masks as rows of bits.
#ifndef ZUQEL_DEPTH_LABELLING_MASK_BITS_H_
#define ZUQEL_DEPTH_LABELLING_MASK_BITS_H_

#include <bit>
#include <cstddef>
#include <cstdint>

#include "base/plane.h"

namespace zuqel {

constexpr size_t kWordBits = 64;

// A mask as rows of bits: the first pixel is the lowest bit of the first word,
// bits past the last pixel are clear. A run is a stretch of set pixels, and
// only its first one is a start.
struct MaskBits {
  size_t words;  // in a row
  uint64_t* bits;
  uint64_t* starts;

  [[nodiscard]] size_t row(int32_t y) const {
    return words * static_cast<size_t>(y);
  }
};

inline size_t WordsOfRow(int32_t width) {
  return (static_cast<size_t>(width) + kWordBits - 1) / kWordBits;
}

// The bits of a row, one pixel to the right.
inline uint64_t Shifted(const uint64_t* row, size_t word) {
  return row[word] << 1 | (word > 0 ? row[word - 1] >> (kWordBits - 1) : 0);
}

// All bits up to the lowest one that is set.
inline uint64_t UpToLowest(uint64_t bits) {
  return bits ^ (bits - 1);
}

inline size_t BitCount(uint64_t bits) {
  return static_cast<size_t>(std::popcount(bits));
}

// Fills in `bits` and `starts`, the first pixel of each run. False when a pixel
// is neither 0 nor 255.
bool FindBits(Plane<const uint8_t> mask, const MaskBits& bits);

}  // namespace zuqel

#endif  // ZUQEL_DEPTH_LABELLING_MASK_BITS_H_
