// Statistics, hole filling, focus decision and region growing against their
// plain forms.
#include <array>

#include "depth/focus_mask.h"
#include "depth/hole_filling.h"
#include "depth/statistics.h"
#include "input.h"
#include "reference_depth.h"
#include "reference_focus_mask.h"
#include "require.h"

namespace zuqel::fuzz {
namespace {

using Map = Image<uint16_t>;

constexpr int32_t kAnyLargest = 0;

Map DrawMap(Input& input, int32_t largest = kAnyLargest) {
  if (largest == kAnyLargest) {
    largest = input.OneOf(std::array{1100, 1023, 65535});
  }
  const Size size =
      input.Flag() ? input.SizeUpTo(40, 30) : input.SizeUpTo(140, 5);
  return input.Draw<uint16_t>(size, largest);
}

void CheckRange(ValueRange (*kernel)(Plane<const uint16_t>, int32_t),
                const reference::RangeRule& rule, int32_t largest,
                Input& input) {
  const int32_t percent =
      input.Flag() ? input.Between(-1, 101) : input.AnyInteger();
  const Map map = DrawMap(input, largest);
  const auto [min, max] = kernel(map.View(), percent);
  Require(reference::MinMax{min, max} ==
              reference::TrimmedRange(map, percent, rule),
          "trimmed range");
}

void CheckDisparityRange(Input& input) {
  CheckRange(GetDispRange, reference::kDisparityRange, kAnyLargest, input);
}

void CheckDistanceRange(Input& input) {
  CheckRange(GetQuanDistRange, reference::kDistanceRange, 1023, input);
}

void CheckHoles(Input& input) {
  const bool is_disparity = input.Flag();
  Map map = DrawMap(input);
  const Map expected =
      reference::FillHoles(map, is_disparity ? reference::IsDisparityHole
                                             : reference::IsDistanceHole);
  (is_disparity ? FillDisparityHoles : FillDistanceHoles)(map.View());
  RequireSame(map, expected, "filled holes");
}

void CheckQuantised(Input& input) {
  const Map map = DrawMap(input);
  uint16_t smallest = UINT16_MAX;
  Map expected = map;
  for (const uint16_t value : map.values) smallest = std::min(smallest, value);
  for (uint16_t& value : expected.values) {
    value = static_cast<uint16_t>(std::min((value - smallest) / 4, 1023));
  }
  Require(SmallestDistance(map.View()) == smallest, "smallest distance");
  Map quantised = {map.width, map.height};
  QuantiseDistance(map.View(), smallest, quantised.View());
  RequireSame(quantised, expected, "quantised distance");
}

// The radius is 0 or 1 at these sizes.
void CheckFocus(Input& input) {
  const auto x = input.Between<uint16_t>(0, UINT16_MAX);
  const auto y = input.Between<uint16_t>(0, 64);
  Map map = DrawMap(input);
  const int32_t radius = 2 * std::min(map.width, map.height) >= 45 ? 1 : 0;
  std::array<int, 1024> counts = {};
  map.Visit([&](int32_t column, int32_t row, uint16_t value) {
    if (std::abs(column - x) > radius || std::abs(row - y) > radius) return;
    if (value != 0) ++counts.at(std::min(value, kInvalidDisparity));
  });
  const auto* const most = std::max_element(counts.begin(), counts.end());
  Require(GetFocusDisp(map.View(), x, y) == most - counts.begin(),
          "focus disparity");
}

void CheckFocusMask(Input& input) {
  const auto kind = input.OneOf(std::array{
      reference::kDisparity, reference::kDistance, reference::kExpansion});
  const int32_t largest = input.Flag() ? 1023 : 255;
  FocusRange range;
  for (uint16_t* end : {&range.max, &range.min, &range.focus}) {
    *end = static_cast<uint16_t>(input.Between(0, largest));
  }
  const Map map = input.Draw<uint16_t>(input.SizeUpTo(24, 20), largest);
  std::array<Image<uint8_t>, 3> planes;
  for (Image<uint8_t>& plane : planes) {
    plane = input.Draw<uint8_t>({map.width, map.height}, 255);
  }
  const ThreePlanes picture = {planes[0].values.data(), planes[1].values.data(),
                               planes[2].values.data()};
  Image<uint8_t> expected = {map.width, map.height}, mask = expected;
  reference::DecideFocus(kind, range, map.View(), picture, expected);
  if (kind == reference::kDisparity) {
    FocusMaskDisparity(map.View(), range, mask.View());
  } else if (kind == reference::kDistance) {
    FocusMaskDist(map.View(), range, mask.View());
  } else {
    Buffer scratch;
    Require(
        FocusMaskExpansion(map.View(), picture, range, scratch, mask.View()),
        "memory for growing");
  }
  RequireSame(mask, expected, reference::kKindNames.at(kind));
}

constexpr std::array kChecks = {CheckDisparityRange, CheckDistanceRange,
                                CheckHoles,          CheckQuantised,
                                CheckFocus,          CheckFocusMask};

}  // namespace

void Run(Input& input) {
  input.OneOf(kChecks)(input);
}

}  // namespace zuqel::fuzz
