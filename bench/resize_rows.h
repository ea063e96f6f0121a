// One row for each change of size that is timed.
#ifndef ZUQEL_BENCH_RESIZE_ROWS_H_
#define ZUQEL_BENCH_RESIZE_ROWS_H_

#include <benchmark/benchmark.h>

#include "resize_cases.h"

#define ZUQEL_BENCH_RESIZE_CASES(function)                                   \
  BENCHMARK_CAPTURE(function, half, kHalf)->Unit(benchmark::kMicrosecond);   \
  BENCHMARK_CAPTURE(function, quarter, kQuarter)                             \
      ->Unit(benchmark::kMicrosecond);                                       \
  BENCHMARK_CAPTURE(function, twice, kTwice)->Unit(benchmark::kMicrosecond); \
  BENCHMARK_CAPTURE(function, four_times, kFourTimes)                        \
      ->Unit(benchmark::kMicrosecond);                                       \
  BENCHMARK_CAPTURE(function, areas, kAreas)->Unit(benchmark::kMicrosecond)

#endif  // ZUQEL_BENCH_RESIZE_ROWS_H_
