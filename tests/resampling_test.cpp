// Changes of size and box blurs against their plain forms, on planes that end
// where a protected page begins.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <vector>

#include "cpu_bokeh/blurred_plane.h"
#include "cpu_bokeh/box_blur.h"
#include "cpu_bokeh/resize/resize_plane.h"
#include "reference_planes.h"
#include "same_image.h"

namespace zuqel {
namespace {

using Bytes = std::vector<uint8_t>;
using Plane8 = Image<uint8_t>;

// Noise, and the largest value everywhere. One scratch for all sizes.
template <typename T>
void CheckResize(Size from, Size to) {
  static ResizeScratch scratch;
  Image<T> largest = {from.width, from.height};
  std::fill(largest.values.begin(), largest.values.end(), static_cast<T>(-1));
  for (const auto& image :
       {NoiseImage<T>(from.width, from.height, 1), largest}) {
    const GuardedImage<T> in(image), out(NoiseImage<T>(to.width, to.height, 1));
    const Plane<const T> plane = in.View();
    ASSERT_TRUE(ResizePlane(plane, scratch, out.View()));
    ASSERT_TRUE(
        IsSame(out.Copy(), reference::ResizePlane(image, to.width, to.height)))
        << "from " << from.width << " x " << from.height << ", bytes "
        << sizeof(T) << ", as large as can be: " << (image == largest);
  }
}

void CheckBothTypes(Size from, Size to) {
  if (testing::Test::HasFailure()) return;
  CheckResize<uint8_t>(from, to);
  CheckResize<uint16_t>(from, to);
}

TEST(ResizePlane, EqualsThePlainFormForAllLengths) {
  // What the other axis becomes meanwhile.
  for (const auto& [from, to] : {std::pair(6, 6), {13, 5}, {3, 11}}) {
    for (int32_t length = 0; length <= 40; ++length) {
      for (int32_t new_length = 0; new_length <= 40; ++new_length) {
        CheckBothTypes({length, from}, {new_length, to});
        CheckBothTypes({from, length}, {to, new_length});
      }
    }
  }
}

TEST(ResizePlane, EqualsThePlainFormForWholeFactors) {
  for (const auto& [width, height] : {Size{1, 1}, Size{1, 2}, Size{2, 1},
                                      Size{5, 3}, Size{17, 9}, Size{35, 20}}) {
    for (int32_t factor = 1; factor <= 14; ++factor) {
      for (int32_t other_factor = 1; other_factor <= 14; ++other_factor) {
        const int32_t wide = width * factor, high = height * other_factor;
        // Of the largest, the lesser factors and equal ones are enough.
        if (factor != other_factor && wide * high > 30000) continue;
        CheckBothTypes({width, height}, {wide, high});
        CheckBothTypes({wide, high}, {width, height});
        CheckBothTypes({wide, height}, {width, high});
      }
    }
  }
}

// Among them three halves, of which one has weights of its own.
TEST(ResizePlane, EqualsThePlainFormForSizesOfPictures) {
  CheckBothTypes({1440, 1080}, {640, 480});
  CheckBothTypes({1280, 960}, {320, 240});
  CheckBothTypes({320, 240}, {1280, 960});
  CheckBothTypes({1280, 720}, {1920, 1080});
  CheckBothTypes({1280, 960}, {1920, 1440});
  CheckBothTypes({1280, 640}, {1920, 1080});
  CheckBothTypes({1, 556}, {3, 555});
}

struct ResizeRow {
  const char* name;
  Plane8 image, resized;
};

Plane8 SameRows(int32_t count, const Bytes& row) {
  Plane8 image = {static_cast<int32_t>(row.size()), count, {}};
  for (int32_t y = 0; y < count; ++y) {
    image.values.insert(image.values.end(), row.begin(), row.end());
  }
  return image;
}

TEST(ResizePlane, GivesResultsWorkedOutByHand) {
  const Plane8 step = {2, 1, {0, 255}};
  for (const auto& [name, image, resized] : std::to_array<ResizeRow>({
           {"rounds to nearest", {2, 2, {0, 1, 1, 1}}, {1, 1, {1}}},
           {"covers 170, 86 + 85, 171",
            {3, 1, {0, 90, 255}},
            {2, 1, {30, 200}}},
           {"twice", step, SameRows(2, {0, 64, 191, 255})},
           {"three times", step, SameRows(3, {0, 0, 85, 169, 255, 255})},
           {"six times", step,
            SameRows(6, {0, 0, 0, 21, 64, 106, 148, 191, 233, 255, 255, 255})},
       })) {
    ResizeScratch scratch;
    const GuardedImage<uint8_t> in(image),
        out(NoiseImage<uint8_t>(resized.width, resized.height, 1));
    ASSERT_TRUE(
        ResizePlane(Plane<const uint8_t>(in.View()), scratch, out.View()));
    EXPECT_TRUE(IsSame(out.Copy(), resized)) << name;
  }
}

template <typename Blur>
Plane8 Blurred(const Plane8& image, Blur blur, int32_t argument) {
  const GuardedImage<uint8_t> in(image),
      out(NoiseImage<uint8_t>(image.width, image.height, 1));
  Buffer scratch;
  EXPECT_TRUE(blur(in.View(), argument, scratch, out.View()));
  return out.Copy();
}

void CheckBoxBlur(const Plane8& image, int32_t radius) {
  const Plane8 expected =
      reference::BoxBlur(image, std::clamp(radius, 0, 65535));
  const auto in_place = [](auto in, int32_t argument, Buffer& scratch,
                           Plane<uint8_t> out) {
    std::copy(in.data, in.data + in.size(), out.data);
    return BoxBlur(out, argument, scratch, out);
  };
  ASSERT_TRUE(IsSame(Blurred(image, BoxBlur, radius), expected))
      << "radius " << radius;
  ASSERT_TRUE(IsSame(Blurred(image, in_place, radius), expected))
      << "in place, radius " << radius;
}

// Also of planes smaller than the box.
TEST(BoxBlur, IsTheMeanOfRowsAndThenOfColumns) {
  for (int32_t radius = -1; radius <= 14; ++radius) {
    for (int32_t width = 0; width <= 13; ++width) {
      for (int32_t height = 0; height <= 13; ++height) {
        CheckBoxBlur(NoiseImage<uint8_t>(width, height, 2), radius);
      }
    }
    CheckBoxBlur(NoiseImage<uint8_t>(73, 13, 2), radius);
  }
  CheckBoxBlur(NoiseImage<uint8_t>(7, 9, 2), 100);
  // The smallest box is made in blocks.
  for (int32_t width = 14; width <= 130; ++width) {
    CheckBoxBlur(NoiseImage<uint8_t>(width, 5, 2), 1);
  }
}

// Around the first of 300 pixels, of which the first is 0 and the last is 1, a
// box of radius r sums to the sum of all of them and r - 299. So the mean there
// reaches 1 where that sum, 65535 + 299 or one more, reaches r + 300.
TEST(BoxBlur, CapsTheRadius) {
  Plane8 row = {300, 1, Bytes(300, 220)};
  std::fill_n(row.values.begin(), 274, uint8_t{221});
  row.values.front() = 0;
  row.values.back() = 1;
  for (int more = 0; more < 2; ++more, ++row.values[1]) {
    for (const int32_t radius : {65534, 65535, 65536, 70000}) {
      CheckBoxBlur(row, radius);
    }
  }
}

TEST(BoxBlur, ApproximatesAGaussianByThree) {
  // By strength.
  constexpr std::array<std::array<int32_t, 3>, 11> kRadii = {{{0, 0, 0},
                                                              {0, 0, 0},
                                                              {0, 0, 1},
                                                              {0, 0, 1},
                                                              {1, 1, 1},
                                                              {1, 1, 2},
                                                              {1, 1, 2},
                                                              {2, 2, 2},
                                                              {2, 2, 3},
                                                              {2, 2, 3},
                                                              {3, 3, 3}}};
  const Plane8 image = NoiseImage<uint8_t>(41, 23, 3);
  for (int32_t strength = -10; strength <= 10; ++strength) {
    Plane8 expected = image;
    for (const int32_t radius :
         kRadii.at(static_cast<size_t>(std::abs(strength)))) {
      expected = reference::BoxBlur(expected, radius);
    }
    EXPECT_TRUE(IsSame(Blurred(image, BoxGaussianBlur, strength), expected))
        << "strength " << strength;
  }
  EXPECT_EQ(GaussianBoxRadii(BlurredPlane::kStrength),
            (std::array{0, 0, BlurredPlane::kBoxRadius}));
  // More of the smaller boxes than an integer holds.
  EXPECT_EQ(GaussianBoxRadii(1600000000)[2], 533333332);
}

}  // namespace
}  // namespace zuqel
