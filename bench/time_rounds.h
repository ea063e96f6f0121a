// Times kernels against copies of as many bytes.
#ifndef ZUQEL_BENCH_TIME_ROUNDS_H_
#define ZUQEL_BENCH_TIME_ROUNDS_H_

#include <benchmark/benchmark.h>

#include <cstddef>
#include <cstdint>
#include <ctime>

namespace zuqel::bench {

// Processor time of a copy that reads and writes `bytes` in all.
double CopySeconds(size_t bytes);

// Times rounds that read and write `bytes` in all; `of_copy` is the time of one
// as a multiple of such a copy.
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

#endif  // ZUQEL_BENCH_TIME_ROUNDS_H_
