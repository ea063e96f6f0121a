// Labels runs and paints them.
#include "depth/labelling/components.h"

#include <algorithm>

#include "base/kernel_set.h"
#include "depth/labelling/mask_kernels.h"
#include "depth/labelling/run_labelling.h"

namespace zuqel {
namespace {

// Without branches, so that compilers use vectors.
uint32_t LargestLabel(std::span<const uint32_t> areas) {
  if (areas.size() < 3) return 0;
  const auto candidates = areas.subspan(1, areas.size() - 2);
  uint32_t largest = 0;
  for (const uint32_t area : candidates) largest = std::max(largest, area);
  if (largest == 0) return 0;
  const auto at = std::find(candidates.begin(), candidates.end(), largest);
  return static_cast<uint32_t>(at - candidates.begin()) + 1;
}

}  // namespace

std::optional<uint32_t> LabelComponents(Plane<const uint8_t> mask,
                                        std::span<uint32_t> labels,
                                        std::span<uint32_t> areas,
                                        Buffer& scratch) {
  if (!ReserveLabelling(mask.extent(), scratch)) return std::nullopt;
  if (areas.empty()) {
    std::fill(labels.begin(), labels.end(), 0U);
    return 0;
  }
  const ComponentRuns runs =
      FindRuns(mask, MaskBorder::kAsItIs, areas.size(), scratch);
  const auto& kernels = Kernels<MaskKernels>();
  const auto width = static_cast<size_t>(mask.width);
  const auto height = static_cast<size_t>(mask.height);
  // All before the first is read again: reading eight at once would wait for
  // the last ones written.
  for (size_t run = 1; run <= runs.runs_before[height]; ++run) {
    runs.run_labels[run] = runs.components[runs.run_labels[run]];
  }
  for (size_t y = 0; y < height; ++y) {
    const size_t row = y * runs.words;
    kernels.paint_labels(runs.set + row, runs.starts + row, width,
                         runs.run_labels + runs.runs_before[y],
                         labels.data() + y * width);
  }
  const size_t count = std::min(runs.areas.size(), areas.size());
  std::copy_n(runs.areas.begin(), count, areas.begin());
  std::fill(areas.begin() + static_cast<ptrdiff_t>(count), areas.end(), 0U);
  return LargestLabel(areas.first(std::min(count + 1, areas.size())));
}

}  // namespace zuqel
