// Times the square filters.
#include "depth/morphology.h"

#include <benchmark/benchmark.h>

#include <cstdint>

#include "base/buffer.h"
#include "bench_masks.h"
#include "time_rounds.h"

namespace zuqel::bench {
namespace {

using Filter = bool (*)(Plane<const uint8_t>, uint8_t, Buffer&, Plane<uint8_t>);

void SquareFilter(benchmark::State& state, Filter filter) {
  const Image image = NoiseImage<uint8_t>(640, 480, 5);
  const auto radius = static_cast<uint8_t>(state.range(0));
  Image<uint8_t> filtered = image;
  Buffer scratch;
  TimeRounds(state, 2 * image.values.size(), [&] {
    benchmark::DoNotOptimize(
        filter(image.View(), radius, scratch, filtered.View()));
  });
}

BENCHMARK_CAPTURE(SquareFilter, ErodeMin, ErodeMin)->Apply(Radii);
BENCHMARK_CAPTURE(SquareFilter, DilateMax, DilateMax)->Apply(Radii);
BENCHMARK_CAPTURE(SquareFilter, DilateMask, DilateMask)->Apply(Radii);

}  // namespace
}  // namespace zuqel::bench
