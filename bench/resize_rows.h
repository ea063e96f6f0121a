// Changes of size that are timed, and one row for each.
#ifndef ZUQEL_BENCH_RESIZE_ROWS_H_
#define ZUQEL_BENCH_RESIZE_ROWS_H_

#include <benchmark/benchmark.h>

#include <cstdint>

namespace zuqel::bench {

struct ResizeCase {
  const char* name;
  int32_t from_width, from_height, to_width, to_height;
};

inline constexpr ResizeCase kHalf = {"half", 1280, 960, 640, 480};
inline constexpr ResizeCase kQuarter = {"quarter", 1280, 960, 320, 240};
inline constexpr ResizeCase kTwice = {"twice", 640, 480, 1280, 960};
inline constexpr ResizeCase kFourTimes = {"four times", 320, 240, 1280, 960};
inline constexpr ResizeCase kAreas = {"areas", 1440, 1080, 640, 480};

}  // namespace zuqel::bench

#define ZUQEL_BENCH_RESIZE_CASES(function)                                   \
  BENCHMARK_CAPTURE(function, half, kHalf)->Unit(benchmark::kMicrosecond);   \
  BENCHMARK_CAPTURE(function, quarter, kQuarter)                             \
      ->Unit(benchmark::kMicrosecond);                                       \
  BENCHMARK_CAPTURE(function, twice, kTwice)->Unit(benchmark::kMicrosecond); \
  BENCHMARK_CAPTURE(function, four_times, kFourTimes)                        \
      ->Unit(benchmark::kMicrosecond);                                       \
  BENCHMARK_CAPTURE(function, areas, kAreas)->Unit(benchmark::kMicrosecond)

#endif  // ZUQEL_BENCH_RESIZE_ROWS_H_
