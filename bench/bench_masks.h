// Inputs and counters of the mask kernels' benchmarks.
#ifndef ZUQEL_BENCH_BENCH_MASKS_H_
#define ZUQEL_BENCH_BENCH_MASKS_H_

#include <benchmark/benchmark.h>

#include <chrono>
#include <cstddef>
#include <cstdint>
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

// Seconds that a copy takes that reads and writes `bytes` together.
double CopySeconds(size_t bytes);

// Times rounds that read and write `bytes` together; `of_copy` counts how many
// times as long one takes as such a copy.
template <typename Round>
void TimeRounds(benchmark::State& state, size_t bytes, Round round) {
  using Clock = std::chrono::steady_clock;
  const double copy_seconds = CopySeconds(bytes);
  const Clock::time_point start = Clock::now();
  while (state.KeepRunning()) {
    round();
    benchmark::ClobberMemory();
  }
  const std::chrono::duration<double> elapsed = Clock::now() - start;
  state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(bytes));
  state.counters["of_copy"] =
      elapsed.count() / static_cast<double>(state.iterations()) / copy_seconds;
}

}  // namespace zuqel::bench

#endif  // ZUQEL_BENCH_BENCH_MASKS_H_
