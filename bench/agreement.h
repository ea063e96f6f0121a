// Compares results up to rounding.
#ifndef ZUQEL_BENCH_AGREEMENT_H_
#define ZUQEL_BENCH_AGREEMENT_H_

#include <cstdint>
#include <opencv2/core.hpp>
#include <span>

#include "difference.h"
#include "plane_image.h"

namespace zuqel::bench {

// Share of the bytes that are at most `levels` apart; 0 of different sizes.
inline double ShareWithin(int levels, std::span<const uint8_t> a,
                          std::span<const uint8_t> b) {
  if (a.size() != b.size() || a.empty()) return 0;
  return FindDifference(a, b, levels, 1).share_within;
}

// `b` has no gaps.
inline bool AllWithin(int levels, const Image<uint8_t>& a, const cv::Mat& b) {
  return ShareWithin(levels, a.values, {b.data, b.total()}) == 1;
}

}  // namespace zuqel::bench

#endif  // ZUQEL_BENCH_AGREEMENT_H_
