// Checks results before another library is timed.
#ifndef ZUQEL_BENCH_EXPECT_H_
#define ZUQEL_BENCH_EXPECT_H_

#include <cstdio>
#include <cstdlib>

namespace zuqel::bench {

// Ends the program where the results are not the same.
inline void ExpectTrue(bool is_same, const char* what) {
  if (is_same) return;
  static_cast<void>(std::fprintf(stderr, "results differ: %s\n", what));
  std::abort();
}

}  // namespace zuqel::bench

#endif  // ZUQEL_BENCH_EXPECT_H_
