// Plain arithmetic of sampling, shaders and frames.
#include "reference_render.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace zuqel::reference {
namespace {

constexpr Size kHalfBlurred = {640, 480}, kConversion = {1280, 960};
constexpr int kNv21 = 0, kPlanar = 2, kPacked = 7;

Rgba operator*(double k, Rgba p) {
  return {k * p.r, k * p.g, k * p.b, k * p.a};
}

Rgba operator+(Rgba p, Rgba q) {
  return {p.r + q.r, p.g + q.g, p.b + q.b, p.a + q.a};
}

size_t Index(int x, int y, int width) {
  return static_cast<size_t>(x) +
         static_cast<size_t>(y) * static_cast<size_t>(width);
}

Rgba Texel(const Image& image, double column, double row) {
  const auto inside = [&](double texel, int size) {
    if (image.repeat) texel -= std::floor(texel / size) * size;
    return static_cast<int>(std::clamp(texel, 0.0, size - 1.0));
  };
  const int x = inside(column, image.size.width);
  const int y = inside(row, image.size.height);
  const uint8_t* p = &image.rgba[4 * Index(x, y, image.size.width)];
  return {p[0] / 255.0, p[1] / 255.0, p[2] / 255.0, p[3] / 255.0};
}

Point TextureCoordinates(Turn turn, double u, double v) {
  if (turn == Turn::kFlip) return {u, 1 - v};
  if (turn == Turn::kRotateCrop) return {0.99 - 0.98 * v, 0.99 - 0.98 * u};
  if (turn == Turn::kFlipCrop) return {0.01 + 0.98 * u, 0.99 - 0.98 * v};
  return {u, v};
}

double Disparity(Rgba depth, const DepthRange& range) {
  return std::clamp<double>(256 * 256 * depth.g + 256 * depth.r, range.min,
                            range.max);
}

}  // namespace

std::array<size_t, 2> ChromaIndex(size_t pixel, Size size, int format) {
  const int x = static_cast<int>(pixel) % size.width;
  const int y = static_cast<int>(pixel) / size.width;
  if (format == kPlanar) {
    const size_t v = Index(x / 2, y / 2, size.width / 2);
    return {Index(0, size.height / 2, size.width / 2) + v, v};
  }
  const int block = format == kPacked ? 4 : 2;
  const size_t v = Index(x / block * block, y / block, size.width);
  return {v + 1, v};
}

Image FromBytes(std::span<const uint8_t> bytes, Size size, int channels) {
  Image image(size);
  for (size_t i = 0; i < size.area(); ++i) {
    const uint8_t* in = &bytes[i * static_cast<size_t>(channels)];
    uint8_t* out = &image.rgba[4 * i];
    const size_t next = channels == 4 ? 1 : 0;  // else luminance
    for (size_t c = 0; c < 3; ++c) out[c] = in[c * next];
    out[3] = channels == 1 ? 255 : in[channels - 1];
  }
  return image;
}

Image FromDisparity(std::span<const uint16_t> disparity, Size size) {
  Image image(size);
  for (size_t i = 0; i < size.area(); ++i) {
    image.rgba[4 * i] = static_cast<uint8_t>(disparity[i] & 255);
    image.rgba[4 * i + 1] = static_cast<uint8_t>(disparity[i] >> 8);
  }
  return image;
}

Rgba Sample(const Image& image, Point at) {
  const double x = at.s * image.size.width;
  const double y = at.t * image.size.height;
  if (!image.linear) return Texel(image, std::floor(x), std::floor(y));
  const double left = std::floor(x - 0.5), top = std::floor(y - 0.5);
  const double fx = x - 0.5 - left, fy = y - 0.5 - top;
  const auto row = [&](double t) {
    return (1 - fx) * Texel(image, left, t) + fx * Texel(image, left + 1, t);
  };
  const Rgba p = (1 - fy) * row(top) + fy * row(top + 1);
  return {p.r - at.cut, p.g - at.cut, p.b - at.cut, p.a - at.cut};
}

Image Draw(Size target, Size viewport, Turn turn,
           const std::function<Rgba(Point)>& shader) {
  Image image(target);
  viewport.height = std::max(viewport.height, 1);
  for (int y = 0; y < std::min(viewport.height, target.height); ++y) {
    for (int x = 0; x < std::min(viewport.width, target.width); ++x) {
      const Rgba p = shader(TextureCoordinates(turn, (x + 0.5) / viewport.width,
                                               (y + 0.5) / viewport.height));
      uint8_t* out = &image.rgba[4 * Index(x, y, target.width)];
      for (const double value : {p.r, p.g, p.b, p.a}) {
        *out++ = static_cast<uint8_t>(
            std::lround(std::clamp(value, 0.0, 1.0) * 255));
      }
    }
  }
  return image;
}

Rgba Gaussian5(const Image& image, Point at, Point step) {
  const auto tap = [&](double k) {
    return Sample(image, {at.s + k * step.s, at.t + k * step.t});
  };
  return 0.408076 * tap(0) + 0.241971 * (tap(0.5) + tap(-0.5)) +
         0.053991 * (tap(1) + tap(-1));
}

Rgba Nv21ToRgb(const Image& luma, const Image& chroma, Point at) {
  const double y = Sample(luma, at).r;
  const double u = Sample(chroma, at).a - 0.5;
  const double v = Sample(chroma, at).r - 0.5;
  return {y + 1.402 * v, y - 0.34414 * u - 0.71414 * v, y + 1.772 * u, 1};
}

Rgba Composite(const Image& sharp, const Image& blurred, const Image& weights,
               Point at) {
  const double w = Sample(weights, at).r;
  return (1 - w) * Sample(sharp, at) + w * Sample(blurred, at);
}

Rgba Pick3x3(const Image& image, Point at, Point step, bool largest) {
  constexpr std::array<std::array<int, 2>, 8> kOrder = {
      {{1, 0}, {0, 1}, {-1, 0}, {0, -1}, {1, 1}, {-1, 1}, {-1, -1}, {1, -1}}};
  Rgba picked = Sample(image, at);
  for (const auto& [x, y] : kOrder) {
    const Rgba other = Sample(image, {at.s + x * step.s, at.t + y * step.t});
    if (largest ? other.r > picked.r : other.r < picked.r) picked = other;
  }
  return picked;
}

Rgba DepthWeight(Rgba depth, const DepthRange& range) {
  const double current = Disparity(depth, range);
  const int focus = std::clamp(range.focus, range.min, range.max);
  const double diff =
      current > focus ? (current - focus) / 1.2 : focus - current;
  const int side = current > focus ? range.max - focus : focus - range.min;
  const double percent = 100 * diff / std::max(side, 10);
  return {std::clamp((percent - 30) / 40, 0.0, 1.0), 0, 0, 1};
}

Rgba AllInFocusWeight(Rgba depth, const DepthRange& range) {
  const double current = Disparity(depth, range);
  const int focus = std::clamp(range.focus, range.min, range.max);
  const double behind = focus - range.min, before = range.max - focus;
  const double far_end = (range.max + range.min) / 2.0;
  double weight = 1;
  if (behind > before / 2) {
    if (current >= focus - behind * 0.4)
      weight = 1 - (focus - current) / behind;
    if (current >= focus - behind * 0.3) weight = 0;
  } else {
    if (current < far_end) weight = 1 - (current - focus) / (far_end - focus);
    if (current <= focus) weight = 0;
  }
  return {weight, 0, 0, 1};
}

Image SeparableBlur(const Image& source, Size size, double scale, Size target) {
  const Image half =
      Draw(kHalfBlurred, kHalfBlurred, Turn::kFlip, [&](Point at) {
        return Gaussian5(source, at, {0, scale / size.height});
      });
  return Draw(target, size, Turn::kFlip, [&](Point at) {
    return Gaussian5(half, at, {scale / size.width, 0});
  });
}

double BlurScale(double f_number) {
  if (!(f_number < 10)) return 0.1;  // also for no number
  return 4 - 0.4 * std::max(f_number, 1.0);
}

Image PackedImage(const Planes& planes, int format, bool from_depth,
                  const Image& packed) {
  if (format != kNv21 && format != kPlanar && format != kPacked) return packed;
  Image image = FromBytes(planes.luma, planes.size, 1);
  if (format == kPlanar && from_depth) return image;
  for (size_t i = 0; i < planes.luma.size(); ++i) {
    const auto [u, v] = ChromaIndex(i, planes.size, format);
    image.rgba[4 * i + 1] = planes.chroma.at(u);
    image.rgba[4 * i + 2] = planes.chroma.at(v);
  }
  return image;
}

Image RgbImage(const Planes& planes) {
  const Size half = {planes.size.width / 2, planes.size.height / 2};
  const Image luma = FromBytes(planes.luma, planes.size, 1);
  const Image chroma = FromBytes(planes.chroma, half, 2);
  return Draw(planes.size, kConversion, Turn::kUpright,
              [&](Point at) { return Nv21ToRgb(luma, chroma, at); });
}

void WriteBack(const Image& image, int format, Planes& planes) {
  for (size_t i = 0; i < planes.luma.size(); ++i) {
    const auto [u, v] = ChromaIndex(i, planes.size, format);
    planes.luma[i] = image.rgba[4 * i];
    planes.chroma.at(u) = image.rgba[4 * i + 1];
    planes.chroma.at(v) = image.rgba[4 * i + 2];
  }
}

}  // namespace zuqel::reference
