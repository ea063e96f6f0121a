// Times the disparity kernels beside a plain copy of the map, the least that
// any pass over it can cost.
#include <benchmark/benchmark.h>

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <random>
#include <vector>

#include "depth/hole_filling.h"
#include "depth/statistics.h"

namespace {

struct Size {
  int32_t width = 0;
  int32_t height = 0;
};

Size SizeOf(const benchmark::State& state) {
  return {static_cast<int32_t>(state.range(0)),
          static_cast<int32_t>(state.range(1))};
}

// A slanted ground with nearer boxes, an invalid band left of each box as a
// stereo chip leaves it, and single invalid pixels: about 5 % holes.
std::vector<uint16_t> MakeMap(Size size) {
  const auto width = static_cast<size_t>(size.width);
  const auto height = static_cast<size_t>(size.height);
  std::seed_seq seed = {7};
  std::mt19937 random(seed);
  std::vector<uint16_t> map(width * height);
  for (size_t y = 0; y < height; ++y) {
    for (size_t x = 0; x < width; ++x) {
      const size_t column = x * 5 % width;  // five boxes across
      const bool box_row = y * 4 % height > height / 3;
      auto value = static_cast<uint16_t>(100 + 300 * y / height);
      if (box_row && column > width / 2) value = 700;
      const bool band = box_row && column > width * 46 / 100;
      if (band && column <= width / 2) value = zuqel::kInvalidDisparity;
      if (random() % 50 == 0) value = zuqel::kInvalidDisparity;
      map[y * width + x] = value;
    }
  }
  return map;
}

void SetBytes(benchmark::State& state, const std::vector<uint16_t>& map) {
  state.SetBytesProcessed(state.iterations() *
                          static_cast<int64_t>(map.size() * sizeof(map[0])));
}

void CopyMap(benchmark::State& state) {
  const std::vector<uint16_t> map = MakeMap(SizeOf(state));
  std::vector<uint16_t> copy(map.size());
  while (state.KeepRunning()) {
    std::memcpy(copy.data(), map.data(), map.size() * sizeof(map[0]));
    benchmark::ClobberMemory();
  }
  SetBytes(state, map);
}

void GetDispRange(benchmark::State& state) {
  const Size size = SizeOf(state);
  const std::vector<uint16_t> map = MakeMap(size);
  while (state.KeepRunning()) {
    benchmark::DoNotOptimize(
        zuqel::GetDispRange({map.data(), size.width, size.height}, 1));
  }
  SetBytes(state, map);
}

// Each round fills a fresh copy; making it is not timed.
void FillDisparityHoles(benchmark::State& state) {
  using Clock = std::chrono::steady_clock;
  const Size size = SizeOf(state);
  const std::vector<uint16_t> map = MakeMap(size);
  std::vector<uint16_t> filled(map.size());
  while (state.KeepRunning()) {
    filled = map;
    const Clock::time_point start = Clock::now();
    zuqel::FillDisparityHoles({filled.data(), size.width, size.height});
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
