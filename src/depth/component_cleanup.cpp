// Cleans masks: a table by label says what to keep, and one pass applies it.
#include "depth/component_cleanup.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <span>

#include "depth/labelling/components.h"

namespace zuqel {
namespace {

constexpr size_t kLabelLimit = 65535;
constexpr uint8_t kSet = 255;

// By label: 255 keeps a pixel's bits, 0 clears them.
using KeepTable = std::array<uint8_t, kLabelLimit>;

struct Labelled {
  Plane<const uint32_t> labels;
  std::span<uint32_t> areas;

  [[nodiscard]] uint32_t LabelAt(MaskPoint point) const {
    return ValueAt(labels, point.x, point.y);
  }
};

// Sets the pixels `inset` steps inside the border, all around.
void SetRing(Plane<uint8_t> mask, int32_t inset, uint8_t value) {
  const int32_t right = mask.width - 1 - inset;
  const int32_t bottom = mask.height - 1 - inset;
  if (right < inset || bottom < inset) return;
  const auto count = static_cast<size_t>(right - inset) + 1;
  std::memset(mask.row(inset) + inset, value, count);
  std::memset(mask.row(bottom) + inset, value, count);
  for (int32_t y = inset; y <= bottom; ++y) {
    mask.row(y)[inset] = value;
    mask.row(y)[right] = value;
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

void Apply(const KeepTable& keep, Plane<const uint32_t> labels,
           Plane<uint8_t> mask) {
  for (size_t i = 0; i < mask.size(); ++i) {
    mask.data[i] = mask.data[i] & keep[labels.data[i]];
  }
}

// Clears pixels with neither label.
void KeepTwo(uint32_t label, uint32_t other, Plane<const uint32_t> labels,
             Plane<uint8_t> mask) {
  for (size_t i = 0; i < mask.size(); ++i) {
    const uint32_t at = labels.data[i];
    mask.data[i] = at == label || at == other ? mask.data[i] : 0;
  }
}

// Copies `in`, clears the outer ring, sets the second one if asked, and labels.
std::optional<Labelled> CopyAndLabel(Plane<const uint8_t> in, bool has_set_ring,
                                     CleanupScratch& scratch,
                                     Plane<uint8_t> out) {
  if (!scratch.Reserve(in.extent())) return std::nullopt;
  if (in.size() > 0) std::memmove(out.data, in.data, in.size());
  SetRing(out, 0, 0);
  if (has_set_ring) SetRing(out, 1, kSet);
  const std::span<uint32_t> labels = scratch.labels.words().first(in.size());
  const std::span<uint32_t> areas = scratch.areas.words().first(kLabelLimit);
  if (!LabelComponents(out, labels, areas, scratch.labelling)) {
    return std::nullopt;
  }
  return Labelled{{labels.data(), in.width, in.height}, areas};
}

// A table that drops the labels whose area, other than 0, is at most `limit`.
KeepTable KeepAbove(std::span<const uint32_t> areas, uint32_t limit) {
  KeepTable keep;
  for (size_t label = 0; label < keep.size(); ++label) {
    const bool is_dropped = areas[label] != 0 && areas[label] <= limit;
    keep[label] = is_dropped ? 0 : kSet;
  }
  return keep;
}

}  // namespace

bool CleanupScratch::Reserve(ImageSize size) {
  return labels.Reserve(ByteCount(size, 4)) && areas.Reserve(kLabelLimit * 4) &&
         ReserveLabelling(size, labelling);
}

bool PruneComponents(Plane<const uint8_t> in, MaskPoint focus,
                     bool keep_only_focus, CleanupScratch& scratch,
                     Plane<uint8_t> out, uint32_t* focus_area) {
  const auto labelled = CopyAndLabel(in, false, scratch, out);
  if (!labelled) return false;
  const uint32_t focus_label = labelled->LabelAt(focus);
  if (focus_area != nullptr) *focus_area = labelled->areas[focus_label];

  if (keep_only_focus) {
    // Pixels without a label are in no component.
    KeepTwo(focus_label, 0, labelled->labels, out);
  } else {
    const uint32_t largest =
        *std::max_element(labelled->areas.begin(), labelled->areas.end());
    KeepTable keep = KeepAbove(labelled->areas, largest * 80 / 100);
    keep[focus_label] = kSet;
    Apply(keep, labelled->labels, out);
  }
  RefillBorder(out, 1);
  return true;
}

bool KeepFocusAndBorderComponents(Plane<const uint8_t> in, MaskPoint focus,
                                  CleanupScratch& scratch, Plane<uint8_t> out) {
  const auto labelled = CopyAndLabel(in, true, scratch, out);
  if (!labelled) return false;
  KeepTwo(labelled->LabelAt(focus), labelled->LabelAt({1, 1}), labelled->labels,
          out);
  RefillBorder(out, 2);
  return true;
}

bool RemoveSpecks(Plane<const uint8_t> in, uint32_t focus_area,
                  CleanupScratch& scratch, Plane<uint8_t> out) {
  const auto labelled = CopyAndLabel(in, false, scratch, out);
  if (!labelled) return false;
  const auto area = static_cast<int32_t>(focus_area);
  static_cast<void>(std::printf("FocusComponentArea=%d\n", area));
  Apply(KeepAbove(labelled->areas, static_cast<uint32_t>(area / 200)),
        labelled->labels, out);
  RefillBorder(out, 2);
  return true;
}

}  // namespace zuqel
