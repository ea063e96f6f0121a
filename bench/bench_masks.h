// Inputs and counters of the mask kernels' benchmarks.
#ifndef ZUQEL_BENCH_BENCH_MASKS_H_
#define ZUQEL_BENCH_BENCH_MASKS_H_

#include <benchmark/benchmark.h>

#include <cstddef>
#include <cstdint>
#include <ctime>
#include <vector>

#include "base/plane.h"

namespace zuqel::bench {

struct Image {
  int32_t width = 0;
  int32_t height = 0;
  std::vector<uint8_t> pixels;

  [[nodiscard]] Plane<const uint8_t> View() const {
    return {pixels.data(), width, height};
  }
  Plane<uint8_t> View() { return {pixels.data(), width, height}; }
};

// Masks of 0 and 255 whose outer ring is clear, 640 x 480, always the same.
using MaskMaker = Image (*)();

// What a refocus map's mask looks like: a subject with ragged edges and holes,
// thin leaves, islands. The environment variable ZUQEL_BENCH_MASK may name a
// binary PGM of any size to take instead; from 128 on its pixels are set.
Image SceneMask();
// Each pixel set by chance; half of them, or enough for them to join up.
Image HalfNoise();
Image DenseNoise();
// Single pixels: more components than the clean-ups have labels for.
Image Checkerboard();

// Any values.
Image GreyNoise();

// Processor time that a copy takes that reads and writes `bytes` together.
double CopySeconds(size_t bytes);

// Times rounds that read and write `bytes` together; `of_copy` counts how many
// times as long one takes as such a copy.
template <typename Round>
void TimeRounds(benchmark::State& state, size_t bytes, Round round) {
  const double copy_seconds = CopySeconds(bytes);
  const std::clock_t start = std::clock();
  while (state.KeepRunning()) {
    round();
    benchmark::ClobberMemory();
  }
  const auto ticks = static_cast<double>(std::clock() - start);
  state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(bytes));
  state.counters["of_copy"] = ticks / CLOCKS_PER_SEC / copy_seconds /
                              static_cast<double>(state.iterations());
}

inline void Radii(benchmark::internal::Benchmark* benchmark) {
  benchmark->ArgName("radius")->Arg(2)->Arg(4)->Arg(32);
  benchmark->Unit(benchmark::kMicrosecond);
}

}  // namespace zuqel::bench

// One row for each of these masks.
#define ZUQEL_BENCH_ON_MASKS(function)                    \
  BENCHMARK_CAPTURE(function, scene, SceneMask)           \
      ->Unit(benchmark::kMicrosecond);                    \
  BENCHMARK_CAPTURE(function, noise_50, HalfNoise)        \
      ->Unit(benchmark::kMicrosecond);                    \
  BENCHMARK_CAPTURE(function, noise_60, DenseNoise)       \
      ->Unit(benchmark::kMicrosecond);                    \
  BENCHMARK_CAPTURE(function, checkerboard, Checkerboard) \
      ->Unit(benchmark::kMicrosecond)

#endif  // ZUQEL_BENCH_BENCH_MASKS_H_
