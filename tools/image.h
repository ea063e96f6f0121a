// Pictures and maps in memory; rows are contiguous.
#ifndef ZUQEL_TOOLS_IMAGE_H_
#define ZUQEL_TOOLS_IMAGE_H_

#include <cstddef>
#include <cstdint>
#include <vector>

namespace zuqel::tools {

inline size_t PixelCount(int width, int height) {
  return static_cast<size_t>(width) * static_cast<size_t>(height);
}

// In pixels.
struct Size {
  bool operator==(const Size&) const = default;
  int width = 0, height = 0;
};

// The largest width and height that is read.
constexpr int kLargestSide = 8192;

// Of a picture, map or frame.
template <typename Image>
Size SizeOf(const Image& image) {
  return {image.width, image.height};
}

// A colour picture, three bytes per pixel: red, green, blue.
struct Picture {
  Picture() = default;
  Picture(int w, int h) : width(w), height(h), rgb(3 * PixelCount(w, h)) {}

  uint8_t* Pixel(int x, int y) {
    return rgb.data() + 3 * (PixelCount(width, y) + static_cast<size_t>(x));
  }
  [[nodiscard]] const uint8_t* Pixel(int x, int y) const {
    return rgb.data() + 3 * (PixelCount(width, y) + static_cast<size_t>(x));
  }

  int width = 0;
  int height = 0;
  std::vector<uint8_t> rgb;
};

// One value per pixel.
template <typename Value>
struct Map {
  Map() = default;
  Map(int w, int h) : width(w), height(h), values(PixelCount(w, h)) {}

  Value& At(int x, int y) {
    return values[PixelCount(width, y) + static_cast<size_t>(x)];
  }
  [[nodiscard]] const Value& At(int x, int y) const {
    return values[PixelCount(width, y) + static_cast<size_t>(x)];
  }

  int width = 0;
  int height = 0;
  std::vector<Value> values;
};

// 0..1022, larger is nearer; kUnknownDisparity where there is no measurement.
using DisparityMap = Map<uint16_t>;
constexpr uint16_t kUnknownDisparity = 1023;

// Larger is farther, in any unit; 0 where there is no measurement.
using DistanceMap = Map<uint16_t>;

// 0 keeps a pixel sharp, 255 blurs it fully.
using WeightMap = Map<uint8_t>;

// In pixels of a picture or map, from the top left.
struct FocusPoint {
  bool operator==(const FocusPoint&) const = default;
  int x = 0;
  int y = 0;
};

}  // namespace zuqel::tools

#endif  // ZUQEL_TOOLS_IMAGE_H_
