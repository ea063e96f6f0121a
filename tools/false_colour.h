// Shows a map as a picture: blue is low, red is high.
#ifndef ZUQEL_TOOLS_FALSE_COLOUR_H_
#define ZUQEL_TOOLS_FALSE_COLOUR_H_

#include "image.h"

namespace zuqel::tools {

// The colours span the measured values; unknown ones are black.
Picture FalseColour(const DisparityMap& map);

// Near is red here too. The colours span what the library tells apart, the
// first 4092 units behind the nearest; unknown distances are black.
Picture FalseColourOfDistance(const DistanceMap& map);

// The colours span 0..255.
Picture FalseColour(const WeightMap& map);

}  // namespace zuqel::tools

#endif  // ZUQEL_TOOLS_FALSE_COLOUR_H_
