// The focus decision and the growing of the region in focus against plain
// forms, on memory that ends where a protected page begins.
#include "depth/focus_mask.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <numeric>
#include <string>
#include <vector>

#include "log_capture.h"
#include "reference_focus_mask.h"
#include "same_image.h"

namespace zuqel {
namespace {

using Mask = Image<uint8_t>;
using reference::DecideFocus;
using reference::Kind;

// A disparity map and a picture of its size.
struct Scene {
  [[nodiscard]] Plane<const uint16_t> View() const { return map.View(); }
  [[nodiscard]] ThreePlanes Picture() const {
    const size_t size = picture.size() / 3;
    return {picture.data(), picture.data() + size, picture.data() + 2 * size};
  }

  GuardedImage<uint16_t> map;
  GuardedMemory<uint8_t> picture;
};

// Makes each mask of a scene and compares it, what is logged and what is
// printed.
class FocusMasks : public testing::Test {
 protected:
  void Check(const Scene& scene, const FocusRange& range) {
    for (const Kind kind :
         {reference::kDisparity, reference::kDistance, reference::kExpansion}) {
      SCOPED_TRACE(reference::kKindNames.at(kind));
      Mask expected = {scene.View().width, scene.View().height};
      const std::string text =
          DecideFocus(kind, range, scene.View(), scene.Picture(), expected);
      const GuardedImage<uint8_t> made(
          NoiseImage<uint8_t>(expected.width, expected.height, 1));
      testing::internal::CaptureStdout();
      if (kind == reference::kDisparity) {
        FocusMaskDisparity(scene.View(), range, made.View());
      } else if (kind == reference::kDistance) {
        FocusMaskDist(scene.View(), range, made.View());
      } else {
        EXPECT_TRUE(FocusMaskExpansion(scene.View(), scene.Picture(), range,
                                       scratch_, made.View()));
      }
      std::string logged;
      for (const std::string& line : log_.Take()) logged += line;
      EXPECT_EQ(logged + "|" + testing::internal::GetCapturedStdout(), text);
      EXPECT_TRUE(IsSame(made.Copy(), expected));
    }
  }

 private:
  Buffer scratch_;
  LogCapture log_;
};

// On a map of all values.
TEST_F(FocusMasks, AreDecidedByTheRange) {
  Image<uint16_t> map = {40, 30};
  std::iota(map.values.begin(), map.values.end(), uint16_t{0});
  const Scene scene = {
      GuardedImage(map),
      GuardedMemory<uint8_t>(Random(1).Values<uint8_t>(3 * map.values.size()))};
  // From 100 to 121, ranges of every split, of one value and of two; a focus
  // outside; a turned range; a range from 0. From 0 to 1022, ramps of every
  // length.
  std::vector<FocusRange> ranges = {
      {140, 90, 0}, {140, 90, 1023}, {0, 1023, 500}, {100, 0, 50}};
  for (uint16_t max = 100; max <= 121; ++max) {
    for (uint16_t focus = 100; focus <= max; ++focus) {
      ranges.push_back({max, 100, focus});
    }
  }
  for (uint16_t focus = 0; focus <= 1022; ++focus) {
    ranges.push_back({1022, 0, focus});
  }
  for (const FocusRange& range : ranges) {
    SCOPED_TRACE(testing::Message() << range.min << " to " << range.max
                                    << ", focus " << range.focus);
    Check(scene, range);
  }
}

constexpr auto kSizes = std::to_array<Size>({
    {0, 30},
    {1, 1},
    {1, 30},
    {2, 30},
    {29, 1},
    {29, 2},
    {17, 30},
    {29, 30},
    {63, 9},
    {64, 9},
    {65, 9},
});

// A walk of disparities with a few outliers, and a picture of noise.
Scene DrawScene(int32_t first, int32_t reach, uint32_t picture_levels,
                const Size& size, Random& random) {
  Image<uint16_t> map = {size.width, size.height};
  const int32_t step = 1 + reach / 8;
  int32_t walk = first;
  for (uint16_t& disparity : map.values) {
    walk += random.Between(0, step) - random.Between(0, step);
    walk = std::clamp(walk, std::max(first - reach, 0), first + reach);
    disparity = static_cast<uint16_t>(random.Below(500) == 0 ? 2000 : walk);
  }
  std::vector<uint8_t> picture(3 * map.values.size());
  for (uint8_t& sample : picture) {
    sample = static_cast<uint8_t>(random.Below(picture_levels));
  }
  return {GuardedImage(map), GuardedMemory<uint8_t>(picture)};
}

// From far to near, flat and deep, grey and of more and more contrast.
// Differences between small disparities are large: far scenes meet squares that
// wrap.
TEST_F(FocusMasks, AreDecidedAndGrownInAllScenes) {
  uint64_t seed = 0;
  for (const int32_t first : {12, 150, 400, 900}) {
    for (const int32_t reach : {6, 10, 60, 99}) {
      for (const Size& size : kSizes) {
        for (int i = 0; i < 40 && !HasFailure(); ++i) {
          SCOPED_TRACE(testing::Message() << "seed " << ++seed);
          Random random(seed);
          const uint32_t picture_levels = 1U << random.Below(9);
          const int32_t focus = first + random.Between(0, reach);
          const int32_t min = focus - 2 * random.Between(0, reach);
          const int32_t max = focus + random.Between(0, 49);
          Check(DrawScene(first, reach, picture_levels, size, random),
                {static_cast<uint16_t>(max),
                 static_cast<uint16_t>(std::max(min, 0)),
                 static_cast<uint16_t>(focus)});
        }
      }
    }
  }
}

}  // namespace
}  // namespace zuqel
