// NV21, the camera's frame format, and its conversion from and to RGB.
#include "photo/nv21.h"

#include <algorithm>

namespace zuqel::tools {
namespace {

// Factors have 16 fractional bits. Each row of the matrix sums to exactly 1
// (luma) or 0 (chroma), so that grey stays grey.
constexpr int kLumaR = 19595, kLumaG = 38470, kLumaB = 7471;
constexpr int kUFromR = -11058, kUFromG = -21710, kUFromB = 32768;
constexpr int kVFromR = 32768, kVFromG = -27439, kVFromB = -5329;
constexpr int kRFromV = 91881, kGFromU = -22554, kGFromV = -46802,
              kBFromU = 116130;

uint8_t ToByte(int value) {
  return static_cast<uint8_t>(std::clamp(value, 0, 255));
}

// Drops `bits` fractional bits, rounding halves up.
int Round(int value, int bits) {
  return (value + (1 << (bits - 1))) >> bits;
}

uint8_t Luma(const uint8_t* rgb) {
  return ToByte(Round(kLumaR * rgb[0] + kLumaG * rgb[1] + kLumaB * rgb[2], 16));
}

struct RgbSum {
  int r, g, b;
};

RgbSum SumOfBlock(const Picture& picture, int x, int y) {
  RgbSum sum = {};
  for (const int dy : {0, 1}) {
    for (const int dx : {0, 1}) {
      const uint8_t* rgb = picture.Pixel(x + dx, y + dy);
      sum.r += rgb[0];
      sum.g += rgb[1];
      sum.b += rgb[2];
    }
  }
  return sum;
}

}  // namespace

Nv21Frame ToNv21(const Picture& picture) {
  const int width = picture.width, height = picture.height;
  Nv21Frame frame = {width, height, {}, {}};
  frame.luma.reserve(PixelCount(width, height));
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      frame.luma.push_back(Luma(picture.Pixel(x, y)));
    }
  }
  frame.chroma.reserve(PixelCount(width, height) / 2);
  for (int y = 0; y < height; y += 2) {
    for (int x = 0; x < width; x += 2) {
      // Sums of four have two fractional bits: 4 * 255 * 2^16 fits int.
      const RgbSum s = SumOfBlock(picture, x, y);
      const int v = Round(kVFromR * s.r + kVFromG * s.g + kVFromB * s.b, 18);
      const int u = Round(kUFromR * s.r + kUFromG * s.g + kUFromB * s.b, 18);
      frame.chroma.push_back(ToByte(v + 128));
      frame.chroma.push_back(ToByte(u + 128));
    }
  }
  return frame;
}

void ExpandRange(Nv21Frame& frame) {
  // Twice 255 / 219 and 255 / 224, so that half a step can be added to round.
  for (uint8_t& y : frame.luma) y = ToByte(((y - 16) * 510 + 219) / 438);
  for (uint8_t& c : frame.chroma) {
    c = ToByte(((c - 128) * 510 + 128 * 448 + 224) / 448);
  }
}

void YuvToRgb(int luma, int u, int v, uint8_t* rgb) {
  u -= 128;
  v -= 128;
  rgb[0] = ToByte(luma + Round(kRFromV * v, 16));
  rgb[1] = ToByte(luma + Round(kGFromU * u + kGFromV * v, 16));
  rgb[2] = ToByte(luma + Round(kBFromU * u, 16));
}

Picture ToPicture(const Nv21Frame& frame) {
  Picture picture(frame.width, frame.height);
  for (int y = 0; y < frame.height; ++y) {
    const uint8_t* luma = frame.luma.data() + PixelCount(frame.width, y);
    const uint8_t* chroma =
        frame.chroma.data() + PixelCount(frame.width, y / 2);
    for (int x = 0; x < frame.width; ++x) {
      YuvToRgb(luma[x], chroma[x | 1], chroma[x & ~1], picture.Pixel(x, y));
    }
  }
  return picture;
}

}  // namespace zuqel::tools
