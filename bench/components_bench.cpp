// Times the labelling of masks and the clean-ups built on it.
#include "depth/labelling/components.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdint>
#include <vector>

#include "base/buffer.h"
#include "bench_masks.h"
#include "depth/component_cleanup.h"
#include "depth/refocus_refinement.h"
#include "time_rounds.h"

namespace zuqel::bench {
namespace {

constexpr size_t kLabelLimit = 65535;

// A pixel of the largest component.
MaskPoint FocusOf(const Image<uint8_t>& mask) {
  std::vector<uint32_t> labels(mask.values.size());
  std::vector<uint32_t> areas(kLabelLimit);
  Buffer scratch;
  const auto largest =
      zuqel::LabelComponents(mask.View(), labels, areas, scratch);
  const auto at = std::find(labels.begin(), labels.end(), largest.value_or(0));
  const auto index = at - labels.begin();
  return {index % mask.width, index / mask.width};
}

void LabelComponents(benchmark::State& state, MaskMaker make_mask) {
  const Image<uint8_t> mask = make_mask();
  std::vector<uint32_t> labels(mask.values.size());
  std::vector<uint32_t> areas(kLabelLimit);
  Buffer scratch;
  TimeRounds(state, 5 * mask.values.size(), [&] {
    benchmark::DoNotOptimize(
        zuqel::LabelComponents(mask.View(), labels, areas, scratch));
  });
}

void PruneComponents(benchmark::State& state, MaskMaker make_mask) {
  const Image<uint8_t> mask = make_mask();
  const MaskPoint focus = FocusOf(mask);
  Image<uint8_t> pruned = mask;
  CleanupScratch scratch;
  TimeRounds(state, 2 * mask.values.size(), [&] {
    benchmark::DoNotOptimize(
        zuqel::PruneComponents(mask.View(), focus, /*keep_only_focus=*/true,
                               scratch, pruned.View(), nullptr));
  });
}

// What is set in the mask is sharp in the map.
void RefineRefocusMap(benchmark::State& state, MaskMaker make_mask) {
  Image<uint8_t> map = make_mask();
  const MaskPoint focus = FocusOf(map);
  for (uint8_t& pixel : map.values) pixel = pixel == 0 ? 200 : 30;
  Image<uint8_t> refined = map;
  RefinementScratch scratch;
  TimeRounds(state, 2 * map.values.size(), [&] {
    benchmark::DoNotOptimize(
        zuqel::RefineRefocusMap(map.View(), focus, scratch, refined.View()));
  });
}

ZUQEL_BENCH_ON_MASKS(LabelComponents);
ZUQEL_BENCH_ON_MASKS(PruneComponents);
ZUQEL_BENCH_ON_MASKS(RefineRefocusMap);

}  // namespace
}  // namespace zuqel::bench
