// Compares results before another library is timed.
#ifndef ZUQEL_BENCH_EXPECT_H_
#define ZUQEL_BENCH_EXPECT_H_

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <span>

#include "difference.h"

namespace zuqel::bench {

// Ends the program where the results are not the same.
inline void ExpectTrue(bool is_same, const char* what) {
  if (is_same) return;
  static_cast<void>(std::fprintf(stderr, "results differ: %s\n", what));
  std::abort();
}

// Share of the bytes that are at most `levels` apart; 0 of different sizes.
inline double ShareWithin(int levels, std::span<const uint8_t> a,
                          std::span<const uint8_t> b) {
  if (a.size() != b.size() || a.empty()) return 0;
  return FindDifference(a, b, levels, 1).share_within;
}

}  // namespace zuqel::bench

#endif  // ZUQEL_BENCH_EXPECT_H_
