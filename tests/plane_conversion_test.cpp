// Conversions between planes and pixels against plain per-pixel forms, also in
// sizes at which linear chroma indices overlap.
#include "render/plane_conversion.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <vector>

#include "reference_render.h"
#include "same_image.h"

namespace zuqel {
namespace {

struct PlainFrame {
  Image<uint8_t> luma, chroma;
};

// What lies outside reads as zero; written, it is dropped.
PlainFrame ReferenceUnpack(const Image<uint32_t>& rgba, int32_t format) {
  PlainFrame made = {{rgba.width, rgba.height}, {rgba.width, rgba.height / 2}};
  const auto write = [&](size_t index, uint32_t value) {
    std::vector<uint8_t>& chroma = made.chroma.values;
    if (index < chroma.size()) chroma[index] = static_cast<uint8_t>(value);
  };
  for (size_t i = 0; i < rgba.values.size(); ++i) {
    const uint32_t pixel = rgba.values[i];
    const auto [u, v] =
        reference::ChromaIndex(i, {rgba.width, rgba.height}, format);
    made.luma.values[i] = static_cast<uint8_t>(pixel);
    write(u, pixel >> 8);
    write(v, pixel >> 16);
  }
  return made;
}

Image<uint32_t> ReferencePack(const PlainFrame& frame) {
  const auto read = [&](size_t index) -> uint32_t {
    const std::vector<uint8_t>& chroma = frame.chroma.values;
    return index < chroma.size() ? chroma[index] : 0;
  };
  const auto& [width, height, luma] = frame.luma;
  Image<uint32_t> rgba = {width, height};
  for (size_t i = 0; i < luma.size(); ++i) {
    const auto [u, v] =
        reference::ChromaIndex(i, {width, height}, kFormatPacked);
    rgba.values[i] = luma[i] | read(u) << 8 | read(v) << 16 | 255U << 24;
  }
  return rgba;
}

void CheckConversions(int32_t width, int32_t height, int32_t format) {
  const Image rgba = NoiseImage<uint32_t>(width, height, 1);
  const GuardedImage<uint8_t> luma(Image<uint8_t>{width, height});
  const GuardedImage<uint8_t> chroma(Image<uint8_t>{width, height / 2});
  const Plane<uint8_t> chroma_plane = chroma.View();
  const Frame frame = {luma.View(), {chroma_plane.data, chroma_plane.size()}};
  const GuardedMemory<uint32_t> guarded(rgba.values);
  UnpackFrame(guarded.span(), format, frame);
  const PlainFrame expected = ReferenceUnpack(rgba, format);
  EXPECT_TRUE(IsSame(luma.Copy(), expected.luma));
  EXPECT_TRUE(IsSame(chroma.Copy(), expected.chroma)) << "chroma";
  if (format != kFormatPacked) return;

  PackFrame(frame, guarded.span());
  EXPECT_TRUE(
      IsSame({width, height, {guarded.span().begin(), guarded.span().end()}},
             ReferencePack(expected)));
}

TEST(PlaneConversion, EqualsThatOfEachPixelByItself) {
  // The three that there are, one unknown, one negative.
  for (const int32_t format :
       {kFormatNv21, kFormatPlanar, kFormatPacked, 1, -1}) {
    for (const int32_t width : {0, 1, 2, 3, 4, 5, 7, 8, 15, 17, 32, 524}) {
      for (int32_t height = 0; height <= 9; ++height) {
        SCOPED_TRACE(testing::Message() << "format " << format << ", " << width
                                        << " x " << height);
        CheckConversions(width, height, format);
      }
    }
  }
}

TEST(PlaneConversion, PacksMaps) {
  constexpr int32_t kWidth = 67;  // a vector, and some
  const auto check = [](auto pack, auto image, uint32_t high) {
    std::vector<uint32_t> rgba(kWidth), expected;
    pack(image.View(), rgba);
    for (const uint32_t value : image.values) expected.push_back(value | high);
    EXPECT_EQ(rgba, expected);
  };
  check(PackWeights, NoiseImage<uint8_t>(kWidth, 1, 1), 0x80000000);
  check(PackRefocusMap, NoiseImage<uint8_t>(kWidth, 1, 2), 0);
  check(PackDepth, NoiseImage<uint16_t>(kWidth, 1, 3), 0);
}

}  // namespace
}  // namespace zuqel
