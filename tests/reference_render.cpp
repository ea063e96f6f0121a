// Plain arithmetic of sampling, shaders and frames.
#include "reference_render.h"

#include <array>
#include <cmath>

namespace zuqel::reference {
namespace {

constexpr Size kHalfBlurred = {640, 480};
constexpr Size kConversion = {1280, 960};
constexpr int kNv21 = 0;
constexpr int kPlanar = 2;
constexpr int kPacked = 7;

Rgba operator*(double k, Rgba p) {
  const auto f = static_cast<float>(k);
  return {f * p.r, f * p.g, f * p.b, f * p.a};
}

Rgba operator+(Rgba p, Rgba q) {
  return {p.r + q.r, p.g + q.g, p.b + q.b, p.a + q.a};
}

Point operator+(Point p, Point q) {
  return {p.s + q.s, p.t + q.t};
}

Point operator*(double k, Point p) {
  return {k * p.s, k * p.t};
}

int Wrapped(double texel, int size, Wrap wrap) {
  if (wrap == Wrap::kRepeat) texel -= std::floor(texel / size) * size;
  return static_cast<int>(std::clamp(texel, 0.0, size - 1.0));
}

size_t Index(int x, int y, int width) {
  return static_cast<size_t>(x) +
         static_cast<size_t>(y) * static_cast<size_t>(width);
}

// Where the chroma of pixel (x, y) lies: U, then V.
std::array<size_t, 2> ChromaIndex(int x, int y, Size size, int format) {
  const Size half = {size.width / 2, size.height / 2};
  if (format == kPlanar) {
    const size_t v = Index(x / 2, y / 2, half.width);
    return {half.area() + v, v};
  }
  const size_t v = format == kPacked ? Index(x & ~3, y / 4, size.width)
                                     : Index(x & ~1, y / 2, size.width);
  return {v + 1, v};
}

float Decoded(Rgba depth, const DepthRange& range) {
  const float decoded = 256.0F * 256.0F * depth.g + 256.0F * depth.r;
  return std::max(std::min(decoded, range.max), range.min);
}

float FocusPlane(const DepthRange& range) {
  return std::max(std::min(range.focus, range.max), range.min);
}

}  // namespace

Image FromBytes(std::span<const uint8_t> bytes, Size size, int channels) {
  Image image(size);
  const auto stride = static_cast<size_t>(channels);
  for (size_t i = 0; i < image.pixels.size(); ++i) {
    std::array<float, 4> in = {};
    for (size_t c = 0; c < stride; ++c) {
      in.at(c) = static_cast<float>(bytes[i * stride + c]) / 255;
    }
    image.pixels[i] =
        channels == 4 ? Rgba{in[0], in[1], in[2], in[3]}
                      : Rgba{in[0], in[0], in[0], channels == 2 ? in[1] : 1};
  }
  return image;
}

std::vector<uint8_t> ToBytes(const Image& image) {
  std::vector<uint8_t> bytes;
  bytes.reserve(image.pixels.size() * 4);
  for (const Rgba& p : image.pixels) {
    for (const float value : {p.r, p.g, p.b, p.a}) {
      bytes.push_back(static_cast<uint8_t>(std::lround(value * 255)));
    }
  }
  return bytes;
}

Rgba Sample(const Texture& texture, Point at) {
  const Image& image = *texture.image;
  const auto texel = [&](double x, double y) {
    return image.at(Wrapped(x, image.size.width, texture.wrap),
                    Wrapped(y, image.size.height, texture.wrap));
  };
  const double x = at.s * image.size.width;
  const double y = at.t * image.size.height;
  if (texture.filter == Filter::kNearest) {
    return texel(std::floor(x), std::floor(y));
  }
  const double left = std::floor(x - 0.5);
  const double top = std::floor(y - 0.5);
  const double fx = x - 0.5 - left;
  const double fy = y - 0.5 - top;
  return (1 - fy) * ((1 - fx) * texel(left, top) + fx * texel(left + 1, top)) +
         fy * ((1 - fx) * texel(left, top + 1) + fx * texel(left + 1, top + 1));
}

Point TextureCoordinates(Turn turn, double u, double v) {
  switch (turn) {
    case Turn::kFlip:
      return {u, 1 - v};
    case Turn::kRotateCrop:
      return {0.99 - 0.98 * v, 0.99 - 0.98 * u};
    case Turn::kFlipCrop:
      return {0.01 + 0.98 * u, 0.99 - 0.98 * v};
    case Turn::kUpright:
      break;
  }
  return {u, v};
}

Rgba Quantised(Rgba value) {
  const auto quantise = [](float f) {
    return std::round(std::clamp(f, 0.0F, 1.0F) * 255) / 255;
  };
  return {quantise(value.r), quantise(value.g), quantise(value.b),
          quantise(value.a)};
}

Rgba Gaussian5(const Texture& texture, Point at, Point step) {
  return 0.408076 * Sample(texture, at) +
         0.241971 * Sample(texture, at + 0.5 * step) +
         0.053991 * Sample(texture, at + step) +
         0.241971 * Sample(texture, at + -0.5 * step) +
         0.053991 * Sample(texture, at + -1 * step);
}

Rgba Nv21ToRgb(const Texture& luma, const Texture& chroma, Point at) {
  const float y = Sample(luma, at).r;
  const float u = Sample(chroma, at).a - 0.5F;
  const float v = Sample(chroma, at).r - 0.5F;
  return {y + 1.402F * v, y - 0.34414F * u - 0.71414F * v, y + 1.772F * u, 1};
}

Rgba Composite(const Texture& sharp, const Texture& blurred,
               const Texture& weights, Point at) {
  const double w = std::min(Sample(weights, at).r, 3.0F);
  return (1 - w) * Sample(sharp, at) + w * Sample(blurred, at);
}

Rgba Pick3x3(const Texture& texture, Point at, Point step, bool largest) {
  constexpr std::array<Point, 9> kOrder = {{{0, 0},
                                            {1, 0},
                                            {0, 1},
                                            {-1, 0},
                                            {0, -1},
                                            {1, 1},
                                            {-1, 1},
                                            {-1, -1},
                                            {1, -1}}};
  Rgba picked = Sample(texture, at);
  float bound = largest ? 0.0F : 10000.0F;
  for (const Point& offset : kOrder) {
    const Rgba sample =
        Sample(texture, {at.s + offset.s * step.s, at.t + offset.t * step.t});
    if (largest ? sample.r > bound : sample.r < bound) {
      picked = sample;
      bound = sample.r;
    }
  }
  return picked;
}

float DepthWeight(Rgba depth, const DepthRange& range) {
  const float current = Decoded(depth, range);
  const float focus = FocusPlane(range);
  const bool front = current > focus;
  const float diff = front ? (current - focus) / 1.2F : focus - current;
  const float side = front ? range.max - focus : focus - range.min;
  const float level = 100 * diff / std::max(side, 10.0F);
  if (level < 30) return 0;
  return level < 70 ? 255 * (level - 30) / 40 : 255;
}

float AllInFocusWeight(Rgba depth, const DepthRange& range) {
  const float current = Decoded(depth, range);
  const float focus = FocusPlane(range);
  const float behind = focus - range.min;
  const float before = range.max - focus;
  if (behind == 0 && before == 0) return 0;
  if (behind > before / 2) {
    if (current >= focus - behind * 30 / 100) return 0;
    const bool on_ramp = current >= focus - behind * 40 / 100;
    return on_ramp ? 255 - (focus - current) * 255 / behind : 255;
  }
  const float far_end = (range.max + range.min) / 2;
  if (current <= focus) return 0;
  const bool on_ramp = current < far_end;
  return on_ramp ? 255 - (current - focus) * 255 / (far_end - focus) : 255;
}

Image SeparableBlur(const Texture& source, Size size, float scale,
                    Size target) {
  Image half(kHalfBlurred);
  Draw(half, kHalfBlurred, Turn::kFlip, [&](Point at) {
    return Gaussian5(source, at, {0, double{scale} / size.height});
  });
  Image blurred(target);
  Draw(blurred, size, Turn::kFlip, [&](Point at) {
    return Gaussian5({&half}, at, {double{scale} / size.width, 0});
  });
  return blurred;
}

float BlurScale(float f_number) {
  if (f_number < 1) f_number = 1;
  if (f_number > 10) f_number = 10;
  const auto scale = static_cast<float>((1 - 0.1 * f_number) * 4);
  return scale > 0 ? scale : 0.1F;  // also for no number
}

Image PackedImage(const Planes& planes, int format, bool from_depth,
                  const Image& packed) {
  const bool is_read =
      format == kNv21 || format == kPlanar || format == kPacked;
  if (!is_read) return packed;
  Image image = FromBytes(planes.luma, planes.size, 1);
  if (format == kPlanar && from_depth) return image;
  for (int y = 0; y < image.size.height; ++y) {
    for (int x = 0; x < image.size.width; ++x) {
      const auto [u, v] = ChromaIndex(x, y, planes.size, format);
      image.at(x, y).g = static_cast<float>(planes.chroma.at(u)) / 255;
      image.at(x, y).b = static_cast<float>(planes.chroma.at(v)) / 255;
    }
  }
  return image;
}

Image RgbImage(const Planes& planes) {
  const Image luma = FromBytes(planes.luma, planes.size, 1);
  const Image chroma = FromBytes(
      planes.chroma, {planes.size.width / 2, planes.size.height / 2}, 2);
  Image image(planes.size);
  Draw(image, kConversion, Turn::kUpright,
       [&](Point at) { return Nv21ToRgb({&luma}, {&chroma}, at); });
  return image;
}

void WriteBack(const Image& image, int format, Planes& planes) {
  const std::vector<uint8_t> rgba = ToBytes(image);
  for (int y = 0; y < planes.size.height; ++y) {
    for (int x = 0; x < planes.size.width; ++x) {
      const auto pixel = Index(x, y, planes.size.width);
      planes.luma[pixel] = rgba[4 * pixel];
      const auto [u, v] = ChromaIndex(x, y, planes.size, format);
      planes.chroma.at(u) = rgba[4 * pixel + 1];
      planes.chroma.at(v) = rgba[4 * pixel + 2];
    }
  }
}

}  // namespace zuqel::reference
