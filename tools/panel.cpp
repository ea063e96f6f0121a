// Puts pictures side by side.
#include "panel.h"

#include <algorithm>

namespace zuqel::tools {
namespace {

constexpr int kGap = 8;

void PaintTile(const Picture& source, int width, int left, Picture& panel) {
  for (int y = 0; y < panel.height; ++y) {
    const int source_y = y * source.height / panel.height;
    for (int x = 0; x < width; ++x) {
      const uint8_t* pixel = source.Pixel(x * source.width / width, source_y);
      std::copy(pixel, pixel + 3, panel.Pixel(left + x, y));
    }
  }
}

}  // namespace

Picture Stretch(const Picture& picture, int width, int height) {
  Picture stretched(width, height);
  PaintTile(picture, width, 0, stretched);
  return stretched;
}

Picture MakePanel(const std::vector<Picture>& pictures) {
  const int width = pictures.front().width;
  const int count = static_cast<int>(pictures.size());
  Picture panel(count * (width + kGap) - kGap, pictures.front().height);
  std::fill(panel.rgb.begin(), panel.rgb.end(), uint8_t{255});
  int left = 0;
  for (const Picture& picture : pictures) {
    PaintTile(picture, width, left, panel);
    left += width + kGap;
  }
  return panel;
}

}  // namespace zuqel::tools
