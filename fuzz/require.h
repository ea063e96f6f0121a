// Ends the program where something is wrong, which makes the input a finding.
#ifndef ZUQEL_FUZZ_REQUIRE_H_
#define ZUQEL_FUZZ_REQUIRE_H_

#include <algorithm>
#include <cstdio>
#include <cstdlib>

#include "plane_image.h"

namespace zuqel::fuzz {

inline void Require(bool is_right, const char* what) {
  if (is_right) return;
  static_cast<void>(std::fprintf(stderr, "wrong: %s\n", what));
  std::abort();
}

template <typename T>
void RequireSame(const Image<T>& actual, const Image<T>& expected,
                 const char* what) {
  const auto [a, b] =
      std::mismatch(actual.values.begin(), actual.values.end(),
                    expected.values.begin(), expected.values.end());
  if (a == actual.values.end() && b == expected.values.end()) return;
  static_cast<void>(std::fprintf(
      stderr, "%d x %d, value %td: %lld instead of %lld\n", actual.width,
      actual.height, a - actual.values.begin(),
      a == actual.values.end() ? -1LL : static_cast<long long>(*a),
      b == expected.values.end() ? -1LL : static_cast<long long>(*b)));
  Require(false, what);
}

}  // namespace zuqel::fuzz

#endif  // ZUQEL_FUZZ_REQUIRE_H_
