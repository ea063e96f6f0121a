// Cleans masks: a table by label says what to keep of each run, and one pass
// writes it.
#include "depth/component_cleanup.h"

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <optional>
#include <span>

#include "base/kernel_set.h"
#include "depth/labelling/mask_kernels.h"
#include "depth/labelling/run_labelling.h"

namespace zuqel {
namespace {

constexpr size_t kLabelLimit = 65535;
constexpr uint8_t kSet = 255;

// Calls visit(x, y) for the pixels `inset` steps inside the border, all around.
void ForEachInRing(Plane<uint8_t> mask, int32_t inset, auto visit) {
  const int32_t right = mask.width - 1 - inset;
  const int32_t bottom = mask.height - 1 - inset;
  if (right < inset || bottom < inset) return;
  for (int32_t x = inset; x <= right; ++x) {
    visit(x, inset);
    visit(x, bottom);
  }
  for (int32_t y = inset; y <= bottom; ++y) {
    visit(inset, y);
    visit(right, y);
  }
}

// Border columns, then border rows, become copies of those `steps` inward.
void RefillBorder(Plane<uint8_t> mask, int32_t steps) {
  if (steps < mask.width) {
    for (int32_t y = 0; y < mask.height; ++y) {
      uint8_t* row = mask.row(y);
      row[0] = row[steps];
      row[mask.width - 1] = row[mask.width - 1 - steps];
    }
  }
  if (steps < mask.height && mask.width > 0) {
    const auto width = static_cast<size_t>(mask.width);
    std::memcpy(mask.row(0), mask.row(steps), width);
    std::memcpy(mask.row(mask.height - 1), mask.row(mask.height - 1 - steps),
                width);
  }
}

// The runs of a mask whose outer ring is clear; nothing without memory.
std::optional<ComponentRuns> FindRunsInside(Plane<const uint8_t> mask,
                                            MaskBorder border,
                                            CleanupScratch& scratch) {
  if (!scratch.Reserve(mask.extent())) return std::nullopt;
  return FindRuns(mask, border, kLabelLimit, scratch.labelling);
}

// 0 outside the mask.
uint32_t ComponentAt(MaskPoint point, const ComponentRuns& runs,
                     Plane<const uint8_t> mask) {
  const auto index = static_cast<uint64_t>(point.x + point.y * mask.width);
  return index < mask.size()  // huge below 0
             ? runs.ComponentAt(index, static_cast<size_t>(mask.width))
             : 0;
}

// Copies the pixels of the components for which is_kept(component) is true; 0
// is that of all pixels in no run. Clears the others and the outer ring. Uses
// up the runs.
void KeepComponents(Plane<const uint8_t> in, const ComponentRuns& runs,
                    auto is_kept, Plane<uint8_t> out) {
  // From here on, all bits of a kept label.
  for (uint32_t& component : runs.components) {
    component = is_kept(component) ? UINT32_MAX : 0;
  }
  const auto bits_of = [&runs](uint32_t label) {
    return static_cast<uint64_t>(static_cast<int32_t>(runs.components[label]));
  };
  const uint64_t outside = bits_of(0);
  const auto& kernels = Kernels<MaskKernels>();
  uint64_t* bits = runs.set;
  const uint64_t* starts = runs.starts;
  const uint32_t* run_label = runs.run_labels;
  uint64_t last_run = 0;
  for (int32_t y = 0; y < in.height; ++y) {
    const uint64_t* row = bits;
    for (size_t word = 0; word < runs.words; ++word, ++bits) {
      uint64_t rest = *starts++;
      uint64_t begin = rest & (0 - rest);
      uint64_t kept = last_run & (begin - 1);
      while (rest != 0) {
        rest ^= begin;
        const uint64_t next = rest & (0 - rest);
        last_run = bits_of(*++run_label);
        kept |= (next - begin) & last_run;
        begin = next;
      }
      *bits = (kept & *bits) | (outside & ~*bits);
    }
    kernels.keep_pixels(in.row(y), row, static_cast<size_t>(in.width),
                        out.row(y));
  }
  ForEachInRing(out, 0, [&out](int32_t x, int32_t y) { out.row(y)[x] = 0; });
}

}  // namespace

bool CleanupScratch::Reserve(ImageSize size) {
  return ReserveLabelling(size, labelling);
}

bool PruneComponents(Plane<const uint8_t> in, MaskPoint focus,
                     bool keep_only_focus, CleanupScratch& scratch,
                     Plane<uint8_t> out, uint32_t* focus_area) {
  const auto runs = FindRunsInside(in, MaskBorder::kClear, scratch);
  if (!runs) return false;
  const uint32_t at_focus = ComponentAt(focus, *runs, in);
  if (focus_area != nullptr) *focus_area = runs->areas[at_focus];

  if (keep_only_focus) {
    KeepComponents(
        in, *runs,
        [&](uint32_t component) {
          return component == 0 || component == at_focus;
        },
        out);
  } else {
    const uint32_t largest =
        *std::max_element(runs->areas.begin(), runs->areas.end());
    const uint32_t limit = largest * 80 / 100;
    KeepComponents(
        in, *runs,
        [&](uint32_t component) {
          return component == 0 || component == at_focus ||
                 runs->areas[component] > limit;
        },
        out);
  }
  RefillBorder(out, 1);
  return true;
}

bool KeepFocusAndBorderComponents(Plane<const uint8_t> in, MaskPoint focus,
                                  CleanupScratch& scratch, Plane<uint8_t> out) {
  const auto runs = FindRunsInside(in, MaskBorder::kClearInsideSet, scratch);
  if (!runs) return false;
  const uint32_t at_focus = ComponentAt(focus, *runs, in);
  const uint32_t at_ring = ComponentAt({1, 1}, *runs, in);
  KeepComponents(
      in, *runs,
      [&](uint32_t component) {
        return component == at_focus || component == at_ring;
      },
      out);
  // Set by the border, whatever `in` has there, but not always kept.
  ForEachInRing(out, 1, [&](int32_t x, int32_t y) {
    const auto column = static_cast<size_t>(x);
    const uint64_t word =
        runs->set[static_cast<size_t>(y) * runs->words + column / kWordBits];
    out.row(y)[x] = (word >> column % kWordBits & 1) != 0 ? kSet : 0;
  });
  RefillBorder(out, 2);
  return true;
}

bool RemoveSpecks(Plane<const uint8_t> in, uint32_t focus_area,
                  CleanupScratch& scratch, Plane<uint8_t> out) {
  const auto runs = FindRunsInside(in, MaskBorder::kClear, scratch);
  if (!runs) return false;
  const auto area = static_cast<int32_t>(focus_area);
  static_cast<void>(std::printf("FocusComponentArea=%d\n", area));
  const auto limit = static_cast<uint32_t>(area / 200);
  KeepComponents(
      in, *runs,
      [&](uint32_t component) {
        return component == 0 || runs->areas[component] > limit;
      },
      out);
  RefillBorder(out, 2);
  return true;
}

}  // namespace zuqel
