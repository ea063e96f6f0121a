// Depth as files give it: any scale, near to far or far to near.
#ifndef ZUQEL_TOOLS_PHOTO_DEPTH_MAP_H_
#define ZUQEL_TOOLS_PHOTO_DEPTH_MAP_H_

#include <string>

#include "image.h"

namespace zuqel::tools {

enum class DepthMeaning {
  kDisparity,  // larger is nearer, linear in the inverse of length
  kLength      // larger is farther; its inverse is a disparity
};

// Values are finite, and NaN where there is no measurement. Lengths that are
// known are above 0.
struct DepthMap : Map<float> {
  using Map<float>::Map;

  DepthMeaning meaning = DepthMeaning::kDisparity;
  std::string unit;  // "m", "1/m"; empty when the file does not say
  std::string kind;  // what it was made from, for people: "GDepth, RangeLinear"
  // The library's own numbers: disparities of 0..1022, or 16-bit distances.
  bool is_native = false;
};

}  // namespace zuqel::tools

#endif  // ZUQEL_TOOLS_PHOTO_DEPTH_MAP_H_
