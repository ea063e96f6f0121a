// Compares images that must be the same.
#ifndef ZUQEL_TESTING_SAME_IMAGE_H_
#define ZUQEL_TESTING_SAME_IMAGE_H_

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>

#include "plane_image.h"

namespace zuqel {

// A failure names the first pixel that differs.
template <typename T>
testing::AssertionResult IsSame(const Image<T>& actual,
                                const Image<T>& expected) {
  if (actual.width != expected.width || actual.height != expected.height) {
    return testing::AssertionFailure()
           << actual.width << " x " << actual.height << " instead of "
           << expected.width << " x " << expected.height;
  }
  const auto [a, b] =
      std::mismatch(actual.values.begin(), actual.values.end(),
                    expected.values.begin(), expected.values.end());
  if (a == actual.values.end() && b == expected.values.end()) {
    return testing::AssertionSuccess();
  }
  const auto at = a - actual.values.begin();
  return testing::AssertionFailure()
         << "first difference of " << actual.width << " x " << actual.height
         << " at (" << at % actual.width << ", " << at / actual.width
         << "): " << +*a << " instead of " << +*b;
}

}  // namespace zuqel

#endif  // ZUQEL_TESTING_SAME_IMAGE_H_
