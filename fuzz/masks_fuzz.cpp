// Labelling, clean-ups, filters and refinement of masks against their plain
// forms.
#include <array>

#include "depth/boundary_blur.h"
#include "depth/component_cleanup.h"
#include "depth/labelling/components.h"
#include "depth/morphology.h"
#include "depth/refocus_refinement.h"
#include "input.h"
#include "masks.h"
#include "reference_masks.h"
#include "require.h"

namespace zuqel::fuzz {
namespace {

using Mask = Image<uint8_t>;

// Around the words of 64 pixels that labelling works in.
Mask DrawAnyMask(Input& input) {
  constexpr std::array kShapes = {IsNoise<30>,    IsNoise<60>, IsNoise<95>,
                                  IsCheckerboard, IsComb,      IsCombOnItsSide,
                                  IsSpiral,       IsSubject};
  const Size size =
      input.Flag() ? input.SizeUpTo(30, 20) : input.SizeUpTo(140, 6);
  const bool is_drawn = input.Flag();
  const auto shape = input.OneOf<decltype(&IsComb)>(kShapes);
  const auto seed = input.Between<uint64_t>(0, 255);
  const auto other_percent = input.OneOf(std::array<uint32_t, 4>{0, 0, 3, 60});
  if (!is_drawn) return input.Draw<uint8_t>(size, 255);
  return DrawMask({"", shape, seed, other_percent}, size.width, size.height);
}

MaskPoint AnyPoint(Input& input) {
  if (input.Flag()) return {input.AnyInteger(), input.AnyInteger()};
  return {input.Between(-3, 50), input.Between(-3, 40)};
}

// Of the plain forms; outside of every mask where it does not fit them.
int64_t IndexOf(MaskPoint point, const Mask& mask) {
  return point.x + point.y * mask.width;
}

void CheckLabels(Input& input) {
  const auto limit =
      input.OneOf(std::array<size_t, 8>{0, 1, 2, 3, 5, 40, 1000, 1000});
  const Mask mask = DrawAnyMask(input);
  Image<uint32_t> labels = {mask.width, mask.height};
  std::vector<uint32_t> areas(limit, 7);
  Buffer scratch;
  const auto largest =
      LabelComponents(mask.View(), labels.values, areas, scratch);
  const auto expected = reference::LabelComponents(mask, limit);
  RequireSame(labels, expected.labels, "labels");
  Require(areas == expected.areas && largest == expected.largest, "areas");
}

void CheckPruned(Input& input) {
  const MaskPoint focus = AnyPoint(input);
  const bool keep_only_focus = input.Flag();
  const Mask mask = DrawAnyMask(input);
  Mask out = {mask.width, mask.height};
  CleanupScratch scratch;
  uint32_t area = 0, expected_area = 0;
  Require(PruneComponents(mask.View(), focus, keep_only_focus, scratch,
                          out.View(), &area),
          "memory for pruning");
  RequireSame(out,
              reference::PruneComponents(mask, IndexOf(focus, mask),
                                         keep_only_focus, expected_area),
              "pruned components");
  Require(area == expected_area, "area of the focus");
}

void CheckKept(Input& input) {
  const MaskPoint focus = AnyPoint(input);
  const Mask mask = DrawAnyMask(input);
  Mask out = {mask.width, mask.height};
  CleanupScratch scratch;
  Require(KeepFocusAndBorderComponents(mask.View(), focus, scratch, out.View()),
          "memory for cleaning");
  RequireSame(
      out, reference::KeepFocusAndBorderComponents(mask, IndexOf(focus, mask)),
      "focus and border components");
}

void CheckSpecks(Input& input) {
  const uint32_t area = input.Between(0U, input.Flag() ? 4000U : INT32_MAX);
  const Mask mask = DrawAnyMask(input);
  Mask out = {mask.width, mask.height};
  CleanupScratch scratch;
  Require(RemoveSpecks(mask.View(), area, scratch, out.View()),
          "memory for removing");
  RequireSame(out, reference::RemoveSpecks(mask, area), "without specks");
}

struct Filter {
  bool (*kernel)(Plane<const uint8_t>, uint8_t, Buffer&, Plane<uint8_t>);
  reference::Combine combine;
};

void CheckFilter(Input& input) {
  constexpr std::array<Filter, 3> kFilters = {{
      {DilateMask, [](uint8_t a, uint8_t b) -> uint8_t { return a | b; }},
      {ErodeMin, [](uint8_t a, uint8_t b) { return std::min(a, b); }},
      {DilateMax, [](uint8_t a, uint8_t b) { return std::max(a, b); }},
  }};
  const auto [kernel, combine] = input.OneOf(kFilters);
  const auto radius = input.OneOf(
      std::array<uint8_t, 12>{0, 1, 2, 3, 4, 5, 7, 8, 12, 16, 31, 255});
  const bool is_in_place = input.Flag();
  const Size size =
      input.Flag() ? input.SizeUpTo(20, 20) : input.SizeUpTo(70, 4);
  Mask mask = input.Draw<uint8_t>(size, 255);
  const Mask expected = reference::FilterSquare(mask, radius, combine);
  Mask other = {mask.width, mask.height};
  Mask& out = is_in_place ? mask : other;
  Buffer scratch;
  Require(kernel(mask.View(), radius, scratch, out.View()),
          "memory for filtering");
  RequireSame(out, expected, "square filter");
}

void CheckBoundaryBlur(Input& input) {
  Mask marks = DrawAnyMask(input);
  Mask map = input.Draw<uint8_t>({marks.width, marks.height}, 255);
  Mask expected = map, expected_marks = marks;
  reference::BoundaryBlur(expected, expected_marks);
  Buffer scratch;
  Require(BoundaryBlur(map.View(), marks.View(), scratch),
          "memory for smoothing");
  RequireSame(map, expected, "smoothed map");
  RequireSame(marks, expected_marks, "marks left");
}

void CheckRefinement(Input& input) {
  const MaskPoint focus = AnyPoint(input);
  const Mask map = DrawAnyMask(input);
  Mask out = {map.width, map.height};
  RefinementScratch scratch;
  Require(RefineRefocusMap(map.View(), focus, scratch, out.View()),
          "memory for refining");
  RequireSame(out, reference::RefineRefocusMap(map, IndexOf(focus, map)),
              "refined map");
}

constexpr std::array kChecks = {CheckLabels,       CheckLabels,    CheckPruned,
                                CheckKept,         CheckSpecks,    CheckFilter,
                                CheckBoundaryBlur, CheckRefinement};

}  // namespace

void Run(Input& input) {
  input.OneOf(kChecks)(input);
}

}  // namespace zuqel::fuzz
