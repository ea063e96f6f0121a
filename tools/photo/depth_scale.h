// From the values of a map file to depth, and from depth to the disparities
// that the library takes.
#ifndef ZUQEL_TOOLS_PHOTO_DEPTH_SCALE_H_
#define ZUQEL_TOOLS_PHOTO_DEPTH_SCALE_H_

#include <optional>
#include <string>

#include "image.h"
#include "photo/depth_map.h"
#include "photo/map_file.h"

namespace zuqel::tools {

// What 0 and 255 stand for; both above 0.
struct LengthRange {
  float near = 0;
  float far = 0;
};

// How the values of a file are to be understood.
struct MapReading {
  DepthMeaning meaning = DepthMeaning::kDisparity;
  // Marks no measurement, besides what always does.
  std::optional<float> unknown = {};
  bool is_turned_round = false;  // large values are what small ones usually are
  std::optional<LengthRange> lengths = {};  // of 8-bit kLength
};

// Infinity and NaN are unknown, and 0 and less as lengths. So is 1023 in 16-bit
// disparity of at most 1023, which is native.
//
// 8-bit kLength becomes kDisparity, 255 less the value, unless `lengths` are
// given. An 8-bit map turned round has 255 less its values. Any other is turned
// round within what is known of it: the largest becomes the smallest.
DepthMap ToDepth(const MapFile& file, const MapReading& reading);

// Turns round what is known, as above.
void TurnRound(DepthMap& depth);

struct DisparityScale {
  enum Kind {
    kByMap,  // native disparity as it is, any other spanned
    kSpan,   // linearly, so that what is known spans 1..1000
    kFactor  // times `factor`, cut to 0..1022
  };
  Kind kind = kByMap;
  double factor = 1;  // above 0
};

struct ScaledDisparity {
  DisparityMap map;
  // For people: "16-bit disparity, 0..4096 scaled to 1..1000".
  std::string assumed;
  bool is_scaled = false;  // the values are not those of the map
};

// Lengths by their inverse. All of a map of one value becomes 500 when spanned.
// Throws InputError, starting with `name`, if nothing is known, or if what
// differs does not differ in whole disparities.
ScaledDisparity ToDisparity(const std::string& name, const DepthMap& depth,
                            const DisparityScale& scale);

// Native lengths as they are; 0 is unknown.
DistanceMap ToDistance(const DepthMap& depth);

}  // namespace zuqel::tools

#endif  // ZUQEL_TOOLS_PHOTO_DEPTH_SCALE_H_
