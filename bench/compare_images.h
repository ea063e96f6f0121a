// What is looked at before another library is timed.
#ifndef ZUQEL_BENCH_COMPARE_IMAGES_H_
#define ZUQEL_BENCH_COMPARE_IMAGES_H_

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <span>

namespace zuqel::bench {

// Ends the program where the results are not the same.
inline void ExpectTrue(bool is_same, const char* what) {
  if (is_same) return;
  static_cast<void>(std::fprintf(stderr, "results differ: %s\n", what));
  std::abort();
}

// Share of the bytes that are at most `levels` apart.
inline double ShareWithin(int levels, std::span<const uint8_t> a,
                          std::span<const uint8_t> b) {
  if (a.size() != b.size() || a.empty()) return 0;
  size_t within = 0;
  for (size_t i = 0; i < a.size(); ++i) {
    within += std::abs(a[i] - b[i]) <= levels ? 1 : 0;
  }
  return static_cast<double>(within) / static_cast<double>(a.size());
}

}  // namespace zuqel::bench

#endif  // ZUQEL_BENCH_COMPARE_IMAGES_H_
