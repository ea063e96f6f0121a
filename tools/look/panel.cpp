// Puts pictures side by side.
#include "look/panel.h"

#include <algorithm>
#include <array>
#include <cstdlib>

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

// Nearest-neighbour.
Picture Stretch(const Picture& picture, int width, int height) {
  Picture stretched(width, height);
  PaintTile(picture, width, 0, stretched);
  return stretched;
}

Picture ToGrey(const WeightMap& map) {
  Picture picture(map.width, map.height);
  for (size_t i = 0; i < map.values.size(); ++i) {
    std::fill_n(&picture.rgb[3 * i], 3, map.values[i]);
  }
  return picture;
}

// A white square around the point, edged in black so that it shows on any
// colour. The point itself is not covered.
void MarkFocus(Picture& picture, FocusPoint point) {
  const int reach = std::max(6, std::min(picture.width, picture.height) / 40);
  const int line = reach / 6;
  const int left = std::max(point.x - reach, 0);
  const int right = std::min(point.x + reach, picture.width - 1);
  const int bottom = std::min(point.y + reach, picture.height - 1);
  for (int y = std::max(point.y - reach, 0); y <= bottom; ++y) {
    for (int x = left; x <= right; ++x) {
      const int inward =
          reach - std::max(std::abs(x - point.x), std::abs(y - point.y));
      if (inward >= 3 * line) continue;
      const uint8_t tone = inward / line == 1 ? 255 : 0;
      std::fill_n(picture.Pixel(x, y), 3, tone);
    }
  }
}

}  // namespace

Picture TintBlurred(const Picture& image, const WeightMap& map) {
  constexpr std::array<int, 3> kTint = {70, 90, 255};
  Picture tinted = image;
  for (int y = 0; y < image.height; ++y) {
    for (int x = 0; x < image.width; ++x) {
      const int weight =
          map.At(x * map.width / image.width, y * map.height / image.height);
      uint8_t* rgb = tinted.Pixel(x, y);
      const int grey = (2 * rgb[0] + 5 * rgb[1] + rgb[2]) / 8;
      for (size_t i = 0; i < kTint.size(); ++i) {
        const int shade = (grey + kTint.at(i)) / 2;
        rgb[i] = static_cast<uint8_t>(
            (rgb[i] * (255 - weight) + shade * weight) / 255);
      }
    }
  }
  return tinted;
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

Picture MakeRefocusPanel(const Picture& depth_colours, const WeightMap& map,
                         const Picture* image, FocusPoint focus) {
  const Picture& frame = image == nullptr ? depth_colours : *image;
  std::vector<Picture> tiles = {
      Stretch(depth_colours, frame.width, frame.height), ToGrey(map)};
  if (image != nullptr) {
    tiles.push_back(TintBlurred(*image, map));
    MarkFocus(tiles.back(), focus);
  }
  MarkFocus(tiles.front(), focus);
  return MakePanel(tiles);
}

}  // namespace zuqel::tools
