// Gathers pixels as bits, eight by a multiplication.
#include "depth/labelling/mask_bits.h"

#include <algorithm>
#include <cstring>

namespace zuqel {
namespace {

constexpr uint8_t kSet = 255;

// Up to 64 pixels as bits. `other_values` becomes non-zero when a pixel is
// neither 0 nor 255.
uint64_t BitsOf(const uint8_t* pixels, size_t count, uint64_t& other_values) {
  uint64_t bits = 0;
  for (size_t i = 0; i < count; i += 8) {
    uint64_t eight = 0;
    if (count - i >= 8) {
      std::memcpy(&eight, pixels + i, 8);
    } else {
      std::memcpy(&eight, pixels + i, count - i);
    }
    const uint64_t ones = eight >> 7 & 0x0101010101010101U;
    other_values |= ones * kSet ^ eight;
    bits |= (ones * 0x0102040810204080U >> 56) << i;
  }
  return bits;
}

}  // namespace

bool FindBits(Plane<const uint8_t> mask, const MaskBits& bits) {
  const auto width = static_cast<size_t>(mask.width);
  uint64_t other_values = 0;
  for (int32_t y = 0; y < mask.height; ++y) {
    uint64_t* row = bits.bits + bits.row(y);
    uint64_t* starts = bits.starts + bits.row(y);
    for (size_t word = 0; word < bits.words; ++word) {
      const size_t x = word * kWordBits;
      const size_t count = std::min<size_t>(width - x, kWordBits);
      row[word] = BitsOf(mask.row(y) + x, count, other_values);
      starts[word] = row[word] & ~Shifted(row, word);
    }
  }
  return other_values == 0;
}

}  // namespace zuqel
