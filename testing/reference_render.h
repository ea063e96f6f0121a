// The rendering written down plainly for the tests: one pixel at a time, in
// floating point, every stage rounded to eight bits as a target holds it.
#ifndef ZUQEL_TESTING_REFERENCE_RENDER_H_
#define ZUQEL_TESTING_REFERENCE_RENDER_H_

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <vector>

namespace zuqel::reference {

struct Size {
  int width = 0, height = 0;

  [[nodiscard]] size_t area() const {
    return static_cast<size_t>(width) * static_cast<size_t>(height);
  }
};

// Row 0 is the first in memory: t = 0.
struct Image {
  explicit Image(Size image_size)
      : size(image_size), rgba(image_size.area() * 4) {}

  Size size;
  std::vector<uint8_t> rgba;
  bool linear = true, repeat = false;  // how it is sampled
};

struct Point {
  double s = 0, t = 0;
  double cut = 0;  // what a driver's filter loses of a value sampled there
};

struct Rgba {
  double r = 0, g = 0, b = 0, a = 0;
};

// Bytes of 1 (luminance), 2 (luminance, alpha) or 4 channels, as a texture
// expands them.
Image FromBytes(std::span<const uint8_t> bytes, Size size, int channels);
// The low byte in red, the high one in green.
Image FromDisparity(std::span<const uint16_t> disparity, Size size);

Rgba Sample(const Image& image, Point at);

// The quads, by what they do to the picture.
enum class Turn { kFlip, kRotateCrop, kUpright, kFlipCrop };

// A cleared target with the viewport's part of it filled; a viewport height of
// 0 counts as 1.
Image Draw(Size target, Size viewport, Turn turn,
           const std::function<Rgba(Point)>& shader);

// The fragment shaders.
Rgba Gaussian5(const Image& image, Point at, Point step);
Rgba Nv21ToRgb(const Image& luma, const Image& chroma, Point at);
Rgba Composite(const Image& sharp, const Image& blurred, const Image& weights,
               Point at);
// `step` is the distance of neighbours; the largest or smallest red wins.
Rgba Pick3x3(const Image& image, Point at, Point step, bool largest);
struct DepthRange {
  int focus = 0, min = 0, max = 0;
};
Rgba DepthWeight(Rgba depth, const DepthRange& range);
Rgba AllInFocusWeight(Rgba depth, const DepthRange& range);

// Vertically into 640 x 480, then horizontally into a viewport of `size`.
Image SeparableBlur(const Image& source, Size size, double scale, Size target);
double BlurScale(double f_number);

// A frame in the caller's layout; `format` is GLInitInfo's srcformat.
struct Planes {
  Size size;
  std::vector<uint8_t> luma, chroma;
};

// Where the chroma of a pixel lies in a layout: U, then V.
std::array<size_t, 2> ChromaIndex(size_t pixel, Size size, int format);

// What the passes make of a frame before they blur it: off screen, where
// `packed` stands in for formats that are not read from the planes, and on.
Image PackedImage(const Planes& planes, int format, bool from_depth,
                  const Image& packed);
Image RgbImage(const Planes& planes);
void WriteBack(const Image& image, int format, Planes& planes);

}  // namespace zuqel::reference

#endif  // ZUQEL_TESTING_REFERENCE_RENDER_H_
