// Times the disparity kernels against a plain copy of the map, the least that
// any pass over it can cost.
#include <benchmark/benchmark.h>

#include <chrono>
#include <cstdint>
#include <cstring>

#include "depth/hole_filling.h"
#include "depth/statistics.h"
#include "disparity_scenes.h"

namespace {

using Map = zuqel::Image<uint16_t>;

Map MakeMap(const benchmark::State& state) {
  return zuqel::bench::BoxesScene(static_cast<int32_t>(state.range(0)),
                                  static_cast<int32_t>(state.range(1)));
}

void SetBytes(benchmark::State& state, const Map& map) {
  state.SetBytesProcessed(
      state.iterations() *
      static_cast<int64_t>(map.values.size() * sizeof(map.values[0])));
}

void CopyMap(benchmark::State& state) {
  const Map map = MakeMap(state);
  Map copy = map;
  while (state.KeepRunning()) {
    std::memcpy(copy.values.data(), map.values.data(),
                map.values.size() * sizeof(map.values[0]));
    benchmark::ClobberMemory();
  }
  SetBytes(state, map);
}

void GetDispRange(benchmark::State& state) {
  const Map map = MakeMap(state);
  while (state.KeepRunning()) {
    benchmark::DoNotOptimize(zuqel::GetDispRange(map.View(), 1));
  }
  SetBytes(state, map);
}

// Each round fills a fresh copy; making it is not timed.
void FillDisparityHoles(benchmark::State& state) {
  using Clock = std::chrono::steady_clock;
  const Map map = MakeMap(state);
  Map filled = map;
  while (state.KeepRunning()) {
    filled.values = map.values;
    const Clock::time_point start = Clock::now();
    zuqel::FillDisparityHoles(filled.View());
    benchmark::ClobberMemory();
    state.SetIterationTime(
        std::chrono::duration<double>(Clock::now() - start).count());
  }
  SetBytes(state, map);
}

void BothSizes(benchmark::internal::Benchmark* benchmark) {
  benchmark->ArgNames({"width", "height"})->Args({320, 240})->Args({640, 480});
  benchmark->Unit(benchmark::kMicrosecond);
}

BENCHMARK(CopyMap)->Apply(BothSizes);
BENCHMARK(GetDispRange)->Apply(BothSizes);
BENCHMARK(FillDisparityHoles)->Apply(BothSizes)->UseManualTime();

}  // namespace
