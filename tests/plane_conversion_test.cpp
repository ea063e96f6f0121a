// Conversions between planes and pixels against plain per-pixel forms, for
// sizes at which linear chroma indices run into one another.
#include "render/plane_conversion.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <utility>
#include <vector>

#include "guarded_memory.h"

namespace zuqel {
namespace {

// Where the U and the V of a pixel lie.
std::pair<size_t, size_t> PlaceOf(int32_t format, size_t x, size_t y,
                                  size_t width, size_t height) {
  if (format == 2) {
    const size_t at = x / 2 + width / 2 * (y / 2);
    return {(width / 2) * (height / 2) + at, at};
  }
  const size_t step = format == 7 ? 4 : 2;
  const size_t at = (x - x % step) + width * (y / step);
  return {at + 1, at};
}

// What lies outside reads as zero; written, it is dropped.
void ExpectLikeEachPixelByItself(size_t width, size_t height, int32_t format) {
  SCOPED_TRACE(testing::Message()
               << width << "x" << height << ", format " << format);
  const GuardedMemory<uint32_t> rgba(width * height);
  const GuardedMemory<uint8_t> luma(width * height);
  const GuardedMemory<uint8_t> chroma(width * (height / 2));
  const Frame frame = {
      {luma.data(), static_cast<int32_t>(width), static_cast<int32_t>(height)},
      chroma.span()};
  std::vector<uint8_t> expected_luma(luma.size());
  // Its last element stands for all that lies outside.
  std::vector<uint8_t> expected_chroma(chroma.size() + 1);
  const auto at = [&](size_t index) -> uint8_t& {
    return expected_chroma[std::min(index, chroma.size())];
  };
  for (size_t i = 0; i < rgba.size(); ++i) {
    // Four bytes that all differ from the next pixel's.
    const uint32_t pixel = static_cast<uint32_t>(i + 1) * 2654435761U;
    rgba.data()[i] = pixel;
    expected_luma[i] = static_cast<uint8_t>(pixel);
    const auto [u, v] = PlaceOf(format, i % width, i / width, width, height);
    at(u) = static_cast<uint8_t>(pixel >> 8);
    at(v) = static_cast<uint8_t>(pixel >> 16);
  }
  UnpackFrame(rgba.span(), format, frame);
  EXPECT_TRUE(std::equal(luma.span().begin(), luma.span().end(),
                         expected_luma.begin(), expected_luma.end()));
  expected_chroma.back() = 0;
  EXPECT_TRUE(std::equal(chroma.span().begin(), chroma.span().end(),
                         expected_chroma.begin()));
  if (format != 7) return;

  PackFrame(frame, rgba.span());
  for (size_t i = 0; i < rgba.size(); ++i) {
    const auto [u, v] = PlaceOf(format, i % width, i / width, width, height);
    ASSERT_EQ(rgba.data()[i], expected_luma[i] | uint32_t{at(u)} << 8 |
                                  uint32_t{at(v)} << 16 | 255U << 24);
  }
}

TEST(PlaneConversion, IsLikeEachPixelByItself) {
  for (const size_t width : {0U, 1U, 2U, 3U, 4U, 5U, 7U, 8U, 15U, 17U, 32U}) {
    for (const size_t height : {0U, 1U, 2U, 3U, 4U, 5U, 6U, 7U, 8U, 9U}) {
      for (const int32_t format : {0, 1, 2, 7, -1}) {
        ExpectLikeEachPixelByItself(width, height, format);
      }
    }
  }
}

TEST(PlaneConversion, PacksMaps) {
  std::vector<uint8_t> weights = {0, 7, 255};
  std::vector<uint16_t> depth = {0, 0x3FE, 0xFFFF};
  std::vector<uint32_t> rgba(3);
  PackWeights({weights.data(), 3, 1}, rgba);
  EXPECT_EQ(rgba, (std::vector<uint32_t>{0x80000000, 0x80000007, 0x800000FF}));
  PackDepth({depth.data(), 1, 3}, rgba);
  EXPECT_EQ(rgba, (std::vector<uint32_t>{0, 0x3FE, 0xFFFF}));
}

}  // namespace
}  // namespace zuqel
