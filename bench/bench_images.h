// Images for the benchmarks, and the timing of kernels beside copies.
#ifndef ZUQEL_BENCH_BENCH_IMAGES_H_
#define ZUQEL_BENCH_BENCH_IMAGES_H_

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

// Any values, always the same.
Image GreyNoise(int32_t width, int32_t height);

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

}  // namespace zuqel::bench

#endif  // ZUQEL_BENCH_BENCH_IMAGES_H_
