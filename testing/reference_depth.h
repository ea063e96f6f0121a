// Plain forms of the statistics and of the hole filling of maps.
#ifndef ZUQEL_TESTING_REFERENCE_DEPTH_H_
#define ZUQEL_TESTING_REFERENCE_DEPTH_H_

#include <array>
#include <cstddef>
#include <cstdint>

#include "depth/statistics.h"
#include "plane_image.h"

namespace zuqel::reference {

using Map = zuqel::Image<uint16_t>;
using MinMax = std::array<int, 2>;

struct RangeRule {
  MinMax none;     // of a map without valid values, all below its first
  size_t modulus;  // at which the count of a value wraps
};
inline constexpr RangeRule kDisparityRange = {{kInvalidDisparity, 0}, SIZE_MAX};
inline constexpr RangeRule kDistanceRange = {{65535, 0}, 65536};

MinMax TrimmedRange(const Map& map, int64_t percent, const RangeRule& rule);

inline bool IsDisparityHole(uint16_t value) {
  return value >= kInvalidDisparity;
}
inline bool IsDistanceHole(uint16_t value) {
  return value == 0;
}
Map FillHoles(Map map, bool (*is_hole)(uint16_t));

}  // namespace zuqel::reference

#endif  // ZUQEL_TESTING_REFERENCE_DEPTH_H_
