// Masks of 0 and 255, of the shapes that labelling and filters find hard.
#ifndef ZUQEL_TESTING_MASKS_H_
#define ZUQEL_TESTING_MASKS_H_

#include <cstdint>

#include "plane_image.h"

namespace zuqel {

struct Pixel {
  int32_t x, y, width, height;  // of the mask
};

struct MaskShape {
  const char* name;
  bool (*is_set)(const Pixel& at, Random& random);
  uint64_t seed;
  uint32_t other_percent = 0;  // pixels of any value
};

// Each pixel set by chance.
template <uint32_t kPercent>
bool IsNoise(const Pixel&, Random& random) {
  return random.Chance(kPercent);
}
// Single pixels: as many components as there can be.
bool IsCheckerboard(const Pixel& at, Random&);
// Columns that a row near the bottom joins, and the same on its side.
bool IsComb(const Pixel& at, Random&);
bool IsCombOnItsSide(const Pixel& at, Random&);
bool IsSpiral(const Pixel& at, Random&);
// What a refocus map's mask looks like: a subject with ragged edges and holes,
// thin leaves, islands.
bool IsSubject(const Pixel& at, Random& random);

Image<uint8_t> DrawMask(const MaskShape& shape, int32_t width, int32_t height);

// Sets the pixels that are `inset` steps away from the border.
void SetRing(Image<uint8_t>& mask, int32_t inset, uint8_t value);

}  // namespace zuqel

#endif  // ZUQEL_TESTING_MASKS_H_
