// Components, clean-ups and filters of masks against their plain forms, on
// masks that end where a protected page begins.
#include "depth/labelling/components.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "depth/boundary_blur.h"
#include "depth/component_cleanup.h"
#include "depth/morphology.h"
#include "depth/refocus_refinement.h"
#include "masks.h"
#include "reference_masks.h"
#include "same_image.h"

namespace zuqel {
namespace {

using Mask = Image<uint8_t>;

constexpr auto kShapes = std::to_array<MaskShape>({
    {"clear", IsNoise<0>, 1},
    {"full", IsNoise<100>, 2},
    {"30 % set", IsNoise<30>, 4},
    {"60 % set", IsNoise<60>, 6},
    {"90 % set", IsNoise<90>, 7},
    {"checkerboard", IsCheckerboard, 8},
    {"comb", IsComb, 9},
    {"comb on its side", IsCombOnItsSide, 10},
    {"spiral", IsSpiral, 13},
    {"subject", IsSubject, 14},
    {"50 % set, many other values", IsNoise<50>, 16, 60},
    {"spiral, a few other values", IsSpiral, 17, 3},
    {"full, a few other values", IsNoise<100>, 18, 10},
});

// Around the sizes of rings, of vectors and of words of 64 pixels.
constexpr auto kSizes = std::to_array<Size>({
    {0, 0},   {0, 3},   {3, 0},    {1, 1},   {1, 9},   {9, 1},
    {2, 2},   {2, 7},   {3, 3},    {3, 20},  {4, 5},   {5, 4},
    {6, 6},   {7, 31},  {15, 9},   {16, 16}, {17, 8},  {31, 7},
    {32, 11}, {33, 14}, {62, 5},   {63, 8},  {64, 30}, {65, 39},
    {71, 6},  {72, 25}, {127, 10}, {128, 4}, {129, 3}, {139, 38},
});

// Calls check(mask, random) with every shape in every size of up to
// `most_pixels`, as drawn and with a clear border.
void ForEachMask(size_t most_pixels, auto check) {
  for (const MaskShape& shape : kShapes) {
    for (const auto& [width, height] : kSizes) {
      Mask mask = DrawMask(shape, width, height);
      if (mask.values.size() > most_pixels) continue;
      for (const char* border : {"as drawn", "clear border"}) {
        SCOPED_TRACE(testing::Message() << shape.name << ", " << width << " x "
                                        << height << ", " << border);
        Random random(shape.seed);
        check(mask, random);
        if (testing::Test::HasFailure()) return;
        SetRing(mask, 0, 0);
      }
    }
  }
}

// What kernel(in, out) makes; empty where it says that it made nothing.
Mask Make(const Mask& mask, bool is_in_place, auto kernel) {
  const GuardedImage<uint8_t> in(mask), out(Mask{mask.width, mask.height});
  const GuardedImage<uint8_t>& made = is_in_place ? in : out;
  return kernel(in.View(), made.View()) ? made.Copy() : Mask{};
}

TEST(LabelComponents, EqualsTheLabelsPixelByPixel) {
  Buffer scratch;
  ForEachMask(SIZE_MAX, [&](const Mask& mask, Random&) {
    for (const size_t limit : {0U, 1U, 2U, 3U, 5U, 40U, 65535U}) {
      SCOPED_TRACE(testing::Message() << limit << " labels");
      const GuardedImage<uint8_t> in(mask);
      const GuardedImage<uint32_t> labels(
          NoiseImage<uint32_t>(mask.width, mask.height, 1));
      const GuardedMemory<uint32_t> areas(Random(2).Values<uint32_t>(limit));
      const auto largest =
          LabelComponents(in.View(), {labels.View().data, labels.View().size()},
                          areas.span(), scratch);
      const reference::Components expected =
          reference::LabelComponents(mask, limit);
      EXPECT_TRUE(IsSame(labels.Copy(), expected.labels));
      EXPECT_TRUE(std::equal(areas.span().begin(), areas.span().end(),
                             expected.areas.begin(), expected.areas.end()));
      EXPECT_EQ(largest, expected.largest);
    }
  });
}

void ExpectKeepsFocus(const Mask& mask, MaskPoint focus,
                      CleanupScratch& scratch) {
  const int64_t index = focus.x + focus.y * mask.width;
  SCOPED_TRACE(testing::Message() << "focus " << focus.x << ", " << focus.y);
  for (const bool keep_only_focus : {false, true}) {
    uint32_t area = 0, expected_area = 0;
    const Mask expected =
        reference::PruneComponents(mask, index, keep_only_focus, expected_area);
    const Mask pruned = Make(mask, false, [&](auto in, auto out) {
      return PruneComponents(in, focus, keep_only_focus, scratch, out, &area);
    });
    EXPECT_TRUE(IsSame(pruned, expected)) << "only focus: " << keep_only_focus;
    EXPECT_EQ(area, expected_area) << "only focus: " << keep_only_focus;
  }
  const Mask kept = Make(mask, false, [&](auto in, auto out) {
    return KeepFocusAndBorderComponents(in, focus, scratch, out);
  });
  EXPECT_TRUE(
      IsSame(kept, reference::KeepFocusAndBorderComponents(mask, index)));
}

void ExpectRemovesSpecks(const Mask& mask, uint32_t focus_area,
                         CleanupScratch& scratch) {
  testing::internal::CaptureStdout();
  const Mask cleaned = Make(mask, false, [&](auto in, auto out) {
    return RemoveSpecks(in, focus_area, scratch, out);
  });
  EXPECT_EQ(testing::internal::GetCapturedStdout(),
            "FocusComponentArea=" + std::to_string(focus_area) + "\n");
  EXPECT_TRUE(IsSame(cleaned, reference::RemoveSpecks(mask, focus_area)))
      << "focus area " << focus_area;
}

TEST(CleanUps, EqualTheirStepsOneByOne) {
  CleanupScratch scratch;
  Random choice(1);
  ForEachMask(SIZE_MAX, [&](const Mask& mask, Random& random) {
    ExpectKeepsFocus(mask, {mask.width / 2, mask.height / 2}, scratch);
    // Inside, in the second ring, in a later row, in front and below.
    const auto others =
        std::to_array<MaskPoint>({{mask.width / 3, mask.height / 3 + 1},
                                  {1, 1},
                                  {mask.width + 3, mask.height / 4},
                                  {-3, 0},
                                  {1, mask.height}});
    ExpectKeepsFocus(mask, others.at(choice.Below(others.size())), scratch);
    ExpectRemovesSpecks(mask, random.Below(2000), scratch);
  });
}

TEST(CleanUps, FoldLabelsPastTheLimit) {
  CleanupScratch scratch;
  const Mask mask = DrawMask({"", IsNoise<30>, 1}, 800, 700);
  const auto labels = reference::LabelComponents(mask, 100000).labels.values;
  ASSERT_GT(*std::max_element(labels.begin(), labels.end()), 66000U);
  ExpectKeepsFocus(mask, {398, 398}, scratch);
  ExpectRemovesSpecks(mask, 400, scratch);
}

TEST(CleanUps, TouchNothingWithoutMemory) {
  CleanupScratch scratch;
  const Plane<uint8_t> too_large = {nullptr, 20000, 15000};
  EXPECT_FALSE(KeepFocusAndBorderComponents(too_large, {}, scratch, too_large));
}

void CheckSquareFilter(bool (*kernel)(Plane<const uint8_t>, uint8_t, Buffer&,
                                      Plane<uint8_t>),
                       reference::Combine combine) {
  Buffer scratch;
  ForEachMask(500, [&](const Mask& mask, Random&) {
    for (const uint8_t radius : std::to_array<uint8_t>({0, 1, 2, 4, 32, 255})) {
      const Mask expected = reference::FilterSquare(mask, radius, combine);
      for (const bool is_in_place : {false, true}) {
        const Mask made = Make(mask, is_in_place, [&](auto in, auto out) {
          return kernel(in, radius, scratch, out);
        });
        EXPECT_TRUE(IsSame(made, expected)) << "radius " << +radius;
      }
    }
  });
}

TEST(SquareFilters, CombineAllPixelsWithinTheRadius) {
  CheckSquareFilter(DilateMask,
                    [](uint8_t a, uint8_t b) -> uint8_t { return a | b; });
  CheckSquareFilter(ErodeMin,
                    [](uint8_t a, uint8_t b) { return std::min(a, b); });
  CheckSquareFilter(DilateMax,
                    [](uint8_t a, uint8_t b) { return std::max(a, b); });
}

TEST(BoundaryBlur, SmoothsOnePixelAfterAnother) {
  Buffer scratch;
  ForEachMask(SIZE_MAX, [&](Mask marks, Random& random) {
    Mask map = NoiseImage<uint8_t>(marks.width, marks.height, random.Bits());
    const GuardedImage<uint8_t> blurred(map), left(marks);
    EXPECT_TRUE(BoundaryBlur(blurred.View(), left.View(), scratch));
    reference::BoundaryBlur(map, marks);
    EXPECT_TRUE(IsSame(blurred.Copy(), map));
    EXPECT_TRUE(IsSame(left.Copy(), marks)) << "the marks";
  });
}

// One scratch for all sizes.
TEST(RefineRefocusMap, IsTheChainOfItsSteps) {
  RefinementScratch scratch;
  ForEachMask(1500, [&](Mask map, Random& random) {
    // Half of the levels next to the threshold, the others anywhere.
    for (uint8_t& pixel : map.values) {
      const uint32_t level = random.Chance(50) ? random.Below(128) : 0;
      pixel = static_cast<uint8_t>((pixel & 128) + level);
    }
    const MaskPoint focus = {random.Between(0, map.width + 1),
                             random.Between(0, map.height + 1)};
    const Mask refined = Make(map, random.Chance(50), [&](auto in, auto out) {
      return RefineRefocusMap(in, focus, scratch, out);
    });
    EXPECT_TRUE(IsSame(refined, reference::RefineRefocusMap(
                                    map, focus.x + focus.y * map.width)))
        << "focus " << focus.x << ", " << focus.y;
  });
}

}  // namespace
}  // namespace zuqel
