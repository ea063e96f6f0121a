// Conversions between planes and pixels against plain per-pixel forms, for
// sizes at which linear chroma indices run into one another.
#include "render/plane_conversion.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <utility>
#include <vector>

#include "guarded_memory.h"

namespace zuqel {
namespace {

constexpr uint8_t kMarker = 0xA5;

// The planes of a frame, with a guard behind each.
struct TestFrame {
  TestFrame(size_t width, size_t height)
      : luma(width * height), chroma(width * (height / 2)) {}

  [[nodiscard]] Frame frame(size_t width, size_t height) const {
    return {{luma.data(), static_cast<int32_t>(width),
             static_cast<int32_t>(height)},
            chroma.span()};
  }

  GuardedMemory<uint8_t> luma;
  GuardedMemory<uint8_t> chroma;
};

// Every pixel in raster order; what lies outside is dropped.
void UnpackFrameReference(std::span<const uint32_t> rgba, int32_t format,
                          size_t width, size_t height, std::span<uint8_t> luma,
                          std::span<uint8_t> chroma) {
  const auto write = [&](size_t index, uint32_t value) {
    if (index < chroma.size()) chroma[index] = static_cast<uint8_t>(value);
  };
  for (size_t i = 0; i < width * height; ++i) {
    const size_t x = i % width, y = i / width;
    const uint32_t u = rgba[i] >> 8, v = rgba[i] >> 16;
    luma[i] = static_cast<uint8_t>(rgba[i]);
    if (format == 2) {
      write((width / 2) * (height / 2) + x / 2 + width / 2 * (y / 2), u);
      write(x / 2 + width / 2 * (y / 2), v);
    } else if (format == 7) {
      write((x - x % 4) + width * (y / 4) + 1, u);
      write((x - x % 4) + width * (y / 4), v);
    } else {
      write((x - x % 2) + width * (y / 2) + 1, u);
      write((x - x % 2) + width * (y / 2), v);
    }
  }
}

uint32_t PackPixelReference(const TestFrame& frame, size_t width, size_t x,
                            size_t y) {
  const size_t at = (x - x % 4) + width * (y / 4);
  const auto read = [&](size_t index) -> uint32_t {
    return index < frame.chroma.size() ? frame.chroma.data()[index] : 0;
  };
  return frame.luma.data()[x + width * y] | read(at + 1) << 8 | read(at) << 16 |
         255U << 24;
}

std::vector<std::pair<size_t, size_t>> Sizes() {
  std::vector<std::pair<size_t, size_t>> sizes = {{0, 3}, {3, 0}};
  for (size_t height = 1; height <= 9; ++height) {
    for (size_t width = 1; width <= 9; ++width) {
      sizes.emplace_back(width, height);
    }
    for (const size_t width : {15U, 16U, 17U, 31U, 32U, 33U}) {
      sizes.emplace_back(width, height);
    }
  }
  return sizes;
}

// Words whose four bytes all differ from the next word's.
uint32_t Scramble(size_t i) {
  return static_cast<uint32_t>(i + 1) * 2654435761U;
}

TEST(PlaneConversion, UnpacksLikeEachPixelByItself) {
  for (const auto& [width, height] : Sizes()) {
    GuardedMemory<uint32_t> rgba(width * height);
    for (size_t i = 0; i < rgba.size(); ++i) rgba.data()[i] = Scramble(i);
    for (const int32_t format : {0, 1, 2, 7, -1}) {
      const TestFrame frame(width, height);
      std::ranges::fill(frame.chroma.span(), kMarker);
      std::vector<uint8_t> luma(frame.luma.size());
      std::vector<uint8_t> chroma(frame.chroma.size(), kMarker);
      UnpackFrame(rgba.span(), format, frame.frame(width, height));
      UnpackFrameReference(rgba.span(), format, width, height, luma, chroma);
      EXPECT_TRUE(std::ranges::equal(frame.luma.span(), luma) &&
                  std::ranges::equal(frame.chroma.span(), chroma))
          << width << "x" << height << ", format " << format;
    }
  }
}

TEST(PlaneConversion, PacksLikeEachPixelByItself) {
  for (const auto& [width, height] : Sizes()) {
    const TestFrame frame(width, height);
    for (size_t i = 0; i < frame.luma.size(); ++i) {
      frame.luma.data()[i] = static_cast<uint8_t>(Scramble(i) >> 24);
    }
    for (size_t i = 0; i < frame.chroma.size(); ++i) {
      frame.chroma.data()[i] = static_cast<uint8_t>(Scramble(i) >> 16 | 1);
    }
    const GuardedMemory<uint32_t> rgba(width * height);
    PackFrame(frame.frame(width, height), rgba.span());
    for (size_t i = 0; i < rgba.size(); ++i) {
      ASSERT_EQ(rgba.data()[i],
                PackPixelReference(frame, width, i % width, i / width))
          << width << "x" << height << ", pixel " << i;
    }
  }
}

TEST(PlaneConversion, PacksMaps) {
  GuardedMemory<uint8_t> weights(3);
  GuardedMemory<uint16_t> depth(3);
  const GuardedMemory<uint32_t> rgba(3);
  std::ranges::copy(std::array<uint8_t, 3>{0, 7, 255}, weights.data());
  std::ranges::copy(std::array<uint16_t, 3>{0, 0x3FE, 0xFFFF}, depth.data());
  PackWeights({weights.data(), 3, 1}, rgba.span());
  EXPECT_TRUE(std::ranges::equal(
      rgba.span(),
      std::array<uint32_t, 3>{0x80000000, 0x80000007, 0x800000FF}));
  PackDepth({depth.data(), 1, 3}, rgba.span());
  EXPECT_TRUE(std::ranges::equal(
      rgba.span(), std::array<uint32_t, 3>{0, 0x000003FE, 0x0000FFFF}));
}

}  // namespace
}  // namespace zuqel
