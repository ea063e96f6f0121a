// The rendering written down plainly for the tests: one pixel at a time, in
// floating point, every stage rounded to eight bits as a target holds it.
#ifndef TESTS_REFERENCE_RENDER_H_
#define TESTS_REFERENCE_RENDER_H_

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace zuqel::reference {

struct Size {
  int width = 0;
  int height = 0;

  [[nodiscard]] size_t area() const {
    return static_cast<size_t>(width) * static_cast<size_t>(height);
  }
};

struct Rgba {
  float r = 0, g = 0, b = 0, a = 0;
};

// Row 0 is the first in memory: t = 0.
struct Image {
  Size size;
  std::vector<Rgba> pixels;

  explicit Image(Size image_size)
      : size(image_size), pixels(image_size.area()) {}
  [[nodiscard]] Rgba& at(int x, int y) {
    return pixels[static_cast<size_t>(y) * static_cast<size_t>(size.width) +
                  static_cast<size_t>(x)];
  }
  [[nodiscard]] const Rgba& at(int x, int y) const {
    return const_cast<Image*>(this)->at(x, y);
  }
};

// Bytes of 1 (luminance), 2 (luminance, alpha) or 4 channels, as a texture
// expands them.
Image FromBytes(std::span<const uint8_t> bytes, Size size, int channels);
std::vector<uint8_t> ToBytes(const Image& image);

struct Point {
  double s = 0, t = 0;
};

enum class Filter { kNearest, kLinear };
enum class Wrap { kClamp, kRepeat };

// Borrows its image.
struct Texture {
  const Image* image = nullptr;
  Filter filter = Filter::kLinear;
  Wrap wrap = Wrap::kClamp;
};

Rgba Sample(const Texture& texture, Point at);

// The quads, by what they do to the picture.
enum class Turn { kFlip, kRotateCrop, kUpright, kFlipCrop };

// Texture coordinates at (u, v) of the viewport, both from 0 to 1.
Point TextureCoordinates(Turn turn, double u, double v);

Rgba Quantised(Rgba value);

// Clears the target and fills the viewport's part of it; a viewport height of 0
// counts as 1.
template <typename Shader>
void Draw(Image& target, Size viewport, Turn turn, const Shader& shader) {
  target = Image(target.size);
  viewport.height = std::max(viewport.height, 1);
  for (int y = 0; y < std::min(viewport.height, target.size.height); ++y) {
    for (int x = 0; x < std::min(viewport.width, target.size.width); ++x) {
      target.at(x, y) = Quantised(shader(TextureCoordinates(
          turn, (x + 0.5) / viewport.width, (y + 0.5) / viewport.height)));
    }
  }
}

// The fragment shaders.
Rgba Gaussian5(const Texture& texture, Point at, Point step);
Rgba Nv21ToRgb(const Texture& luma, const Texture& chroma, Point at);
Rgba Composite(const Texture& sharp, const Texture& blurred,
               const Texture& weights, Point at);
// `step` is the distance of neighbours; the largest or smallest red wins.
Rgba Pick3x3(const Texture& texture, Point at, Point step, bool largest);

struct DepthRange {
  float focus = 0, min = 0, max = 0;
};
// Weights from 0 to 255 of a packed disparity.
float DepthWeight(Rgba depth, const DepthRange& range);
float AllInFocusWeight(Rgba depth, const DepthRange& range);

// Vertically into 640 x 480, then horizontally into a viewport of `size`.
Image SeparableBlur(const Texture& source, Size size, float scale, Size target);

float BlurScale(float f_number);

// A frame of even size in the caller's layout; `format` is GLInitInfo's
// srcformat.
struct Planes {
  Size size;
  std::vector<uint8_t> luma, chroma;
};

// What the passes make of a frame before they blur it. `packed` stands in for
// formats that are not read from the planes.
Image PackedImage(const Planes& planes, int format, bool from_depth,
                  const Image& packed);
Image RgbImage(const Planes& planes);

void WriteBack(const Image& image, int format, Planes& planes);

}  // namespace zuqel::reference

#endif  // TESTS_REFERENCE_RENDER_H_
