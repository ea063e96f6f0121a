// Labels, cleans up and filters masks.
#include "reference_masks.h"

#include <algorithm>

#include "masks.h"

namespace zuqel::reference {
namespace {

constexpr size_t kLabelLimit = 65535;

// 0 outside.
uint32_t LabelAt(const Components& components, int64_t index) {
  const auto at = static_cast<uint64_t>(index);  // huge below 0
  return at < components.labels.values.size() ? components.labels.values[at]
                                              : 0;
}

// Clears components, and refills the border, columns and then rows, from
// `steps` inward.
Mask Keep(Mask mask, const Components& components, int32_t steps,
          auto is_kept) {
  for (size_t i = 0; i < mask.values.size(); ++i) {
    if (!is_kept(components.labels.values[i])) mask.values[i] = 0;
  }
  const auto refill = [&mask](int32_t x, int32_t y, int32_t from_x,
                              int32_t from_y) {
    const uint8_t* from = mask.At(from_x, from_y);
    if (from != nullptr) *mask.At(x, y) = *from;
  };
  const int32_t right = mask.width - 1, bottom = mask.height - 1;
  for (int32_t y = 0; y <= bottom; ++y) refill(0, y, steps, y);
  for (int32_t y = 0; y <= bottom; ++y) refill(right, y, right - steps, y);
  for (int32_t x = 0; x <= right; ++x) refill(x, 0, x, steps);
  for (int32_t x = 0; x <= right; ++x) refill(x, bottom, x, bottom - steps);
  return mask;
}

}  // namespace

Components LabelComponents(const Mask& mask, size_t label_limit) {
  const auto width = static_cast<size_t>(mask.width);
  const size_t size = mask.values.size();
  Components made = {{mask.width, mask.height},
                     std::vector<uint32_t>(label_limit)};
  std::vector<uint32_t>& labels = made.labels.values;
  std::vector<uint32_t> least = {0};
  for (size_t i = width; i < size; ++i) {
    if (i % width == 0 || mask.values[i] != 255) continue;
    const uint8_t up = mask.values[i - width], left = mask.values[i - 1];
    if (up == 255 && left == 255) {
      labels[i] = std::min(labels[i - width], labels[i - 1]);
      const uint32_t a = least[labels[i - width]], b = least[labels[i - 1]];
      if (a != b) {
        std::replace(least.begin(), least.end(), std::max(a, b),
                     std::min(a, b));
      }
    } else if ((up == 255 && left == 0) || (up == 0 && left == 255)) {
      labels[i] = labels[up == 255 ? i - width : i - 1];
    } else if (up == 0 && left == 0) {
      labels[i] = static_cast<uint32_t>(least.size());
      least.push_back(labels[i]);
    }
  }
  for (size_t i = 0; i < size; ++i) {
    labels[i] = label_limit == 0
                    ? 0
                    : least[std::min<size_t>(labels[i], label_limit - 1)];
    const bool is_last = i % width == width - 1 || i + width >= size;
    if (labels[i] != 0 && !is_last) ++made.areas[labels[i]];
  }
  for (uint32_t label = 1; label + 1 < label_limit; ++label) {
    if (made.areas[label] > made.areas[made.largest]) made.largest = label;
  }
  return made;
}

Mask PruneComponents(Mask mask, int64_t focus, bool keep_only_focus,
                     uint32_t& focus_area) {
  SetRing(mask, 0, 0);
  const Components made = LabelComponents(mask, kLabelLimit);
  const std::vector<uint32_t>& areas = made.areas;
  const uint32_t at_focus = LabelAt(made, focus);
  const uint32_t largest = *std::max_element(areas.begin(), areas.end());
  focus_area = areas[at_focus];
  return Keep(mask, made, 1, [&](uint32_t label) {
    const bool is_large = !keep_only_focus && areas[label] > largest * 80 / 100;
    return areas[label] == 0 || is_large || label == at_focus;
  });
}

Mask KeepFocusAndBorderComponents(Mask mask, int64_t focus) {
  SetRing(mask, 0, 0);
  SetRing(mask, 1, 255);
  const Components made = LabelComponents(mask, kLabelLimit);
  return Keep(mask, made, 2, [&](uint32_t label) {
    return label == LabelAt(made, focus) ||
           label == LabelAt(made, int64_t{mask.width} + 1);
  });
}

Mask RemoveSpecks(Mask mask, uint32_t focus_area) {
  SetRing(mask, 0, 0);
  const Components made = LabelComponents(mask, kLabelLimit);
  return Keep(mask, made, 2, [&](uint32_t label) {
    return made.areas[label] == 0 || made.areas[label] > focus_area / 200;
  });
}

Mask FilterSquare(Mask mask, int32_t radius, Combine combine) {
  Mask made = mask;
  made.Visit([&](int32_t x, int32_t y, uint8_t& value) {
    const int32_t bottom = std::min(y + radius, mask.height - 1);
    const int32_t right = std::min(x + radius, mask.width - 1);
    for (int32_t row = std::max(y - radius, 0); row <= bottom; ++row) {
      for (int32_t column = std::max(x - radius, 0); column <= right; ++column)
        value = combine(value, *mask.At(column, row));
    }
  });
  return made;
}

void BoundaryBlur(Mask& map, Mask& marks) {
  const auto smooth = [&](int32_t x, int32_t y) {
    if (*marks.At(x, y) == 0) return;
    int32_t sum = 0, count = 0;
    for (int32_t near_y = y - 3; near_y <= y + 3; ++near_y) {
      for (int32_t near_x = x - 3; near_x <= x + 3; ++near_x) {
        const uint8_t* mark = marks.At(near_x, near_y);
        if (mark == nullptr || *mark == 255) continue;
        sum += *map.At(near_x, near_y);
        ++count;
      }
    }
    if (count == 0) return;
    *map.At(x, y) = static_cast<uint8_t>(sum / count);
    *marks.At(x, y) = 0;
  };
  const auto size = static_cast<int32_t>(map.values.size()), width = map.width;
  for (int32_t i = 0; i < size; ++i) smooth(i % width, i / width);
  for (int32_t i = size - 1; i >= 0; --i) smooth(i % width, i / width);
}

Mask RefineRefocusMap(Mask map, int64_t focus) {
  Mask sharp = map;
  for (uint8_t& pixel : sharp.values) pixel = pixel < 128 ? 255 : 0;
  uint32_t unused_area = 0;
  const Mask focused = PruneComponents(sharp, focus, true, unused_area);
  Mask blurred = focused;
  for (uint8_t& pixel : blurred.values) pixel ^= 255;
  const Mask background = KeepFocusAndBorderComponents(blurred, focus);
  Mask changes = sharp;
  for (size_t i = 0; i < changes.values.size(); ++i) {
    changes.values[i] ^= focused.values[i];
    if (blurred.values[i] != background.values[i]) changes.values[i] = 255;
  }
  changes = FilterSquare(changes, 2,
                         [](uint8_t a, uint8_t b) -> uint8_t { return a | b; });
  BoundaryBlur(map, changes);
  return map;
}

}  // namespace zuqel::reference
