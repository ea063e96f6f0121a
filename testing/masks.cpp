// Draws masks.
#include "masks.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace zuqel {
bool IsCheckerboard(const Pixel& at, Random&) {
  return (at.x + at.y) % 2 == 0;
}

bool IsComb(const Pixel& at, Random&) {
  return at.x % 2 == 1 || at.y == at.height - 2;
}

bool IsCombOnItsSide(const Pixel& at, Random&) {
  return at.y % 2 == 1 || at.x == at.width - 2;
}

// Square rings around the centre. Their right half is one step lower, so that
// each runs into the next.
bool IsSpiral(const Pixel& at, Random&) {
  const int32_t right = at.x - at.width / 2, drop = right > 0 ? 1 : 0;
  const int32_t down = at.y - at.height / 2 - drop;
  return (std::max(std::abs(right), std::abs(down)) + drop) % 2 == 0;
}

bool IsSubject(const Pixel& at, Random& random) {
  const float x = static_cast<float>(at.x) * 640 / static_cast<float>(at.width);
  const float y =
      static_cast<float>(at.y) * 480 / static_cast<float>(at.height);
  const float fringe = static_cast<float>(random.Below(64)) / 32;
  const float head = std::hypot((x - 330) / 90, (y - 170) / 100);
  const float body = std::hypot((x - 320) / 170, (y - 430) / 190);
  const float leaf = std::abs(std::fmod(x + 12 * std::sin(y / 23), 55.0F) - 27);
  const bool is_leaf = y > 40 && (x < 150 || x > 500) && leaf < y / 60 - fringe;
  const float hole =
      std::hypot(std::fmod(x, 90.0F) - 45, std::fmod(y, 70.0F) - 35);
  const float island = std::hypot(std::fmod(x, 40.0F) - 20, y - 28);
  const bool is_subject = std::min(head, body) < 1 - fringe / 60;
  return (is_subject && hole > 4 + fringe) || is_leaf || island < 5 - fringe;
}

Image<uint8_t> DrawMask(const MaskShape& shape, int32_t width, int32_t height) {
  Random random(shape.seed);
  Image<uint8_t> mask = {width, height};
  mask.Visit([&](int32_t x, int32_t y, uint8_t& value) {
    value = shape.is_set({x, y, width, height}, random) ? 255 : 0;
    if (random.Chance(shape.other_percent)) {
      value = static_cast<uint8_t>(random.Bits());
    }
  });
  return mask;
}

void SetRing(Image<uint8_t>& mask, int32_t inset, uint8_t value) {
  mask.Visit([&](int32_t x, int32_t y, uint8_t& pixel) {
    const int32_t steps =
        std::min({x, y, mask.width - 1 - x, mask.height - 1 - y});
    if (steps == inset) pixel = value;
  });
}

}  // namespace zuqel
