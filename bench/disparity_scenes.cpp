// Draws disparity.
#include "disparity_scenes.h"

#include <cmath>

namespace zuqel::bench {
namespace {

constexpr uint16_t kHole = 1023;

}  // namespace

Image<uint16_t> BoxesScene(int32_t width, int32_t height) {
  Random random(7);
  Image<uint16_t> map = {width, height};
  map.Visit([&](int32_t x, int32_t y, uint16_t& disparity) {
    const int32_t column = x * 5 % width;
    const bool is_box_row = y * 4 % height > height / 3;
    disparity = static_cast<uint16_t>(100 + 300 * y / height);
    if (is_box_row && column > width / 2) disparity = 700;
    const bool is_band = column > width * 46 / 100 && column <= width / 2;
    if ((is_box_row && is_band) || random.Chance(2)) disparity = kHole;
  });
  return map;
}

Image<uint16_t> SubjectScene(int32_t width, int32_t height) {
  // 1 on the outline of a subject that is drawn on 320 x 240, less inside.
  const auto outline = [=](int32_t x, int32_t y) {
    return std::hypot((x * 320.0 / width - 150) / 60,
                      (y * 240.0 / height - 140) / 90);
  };
  Image<uint16_t> map = {width, height};
  map.Visit([&](int32_t x, int32_t y, uint16_t& disparity) {
    if (outline(x, y) < 1) {
      disparity = static_cast<uint16_t>(700 + x % 5);
    } else if (outline(x + 8, y) < 1) {
      disparity = kHole;
    } else {
      disparity = static_cast<uint16_t>(80 + y / 2 + (x * 7 + y * 3) % 4);
    }
  });
  return map;
}

}  // namespace zuqel::bench
