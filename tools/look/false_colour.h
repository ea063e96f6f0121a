// Maps as false-colour pictures: blue is low, red is high.
#ifndef ZUQEL_TOOLS_LOOK_FALSE_COLOUR_H_
#define ZUQEL_TOOLS_LOOK_FALSE_COLOUR_H_

#include "image.h"

namespace zuqel::tools {

// The colours span the measured values; unknown values are black.
Picture FalseColour(const DisparityMap& map);

// Near is red here too. The colours span the 4092 units beyond the nearest
// distance, all that the library tells apart; unknown distances are black.
Picture FalseColourOfDistance(const DistanceMap& map);

// The colours span 0..255.
Picture FalseColour(const WeightMap& map);

}  // namespace zuqel::tools

#endif  // ZUQEL_TOOLS_LOOK_FALSE_COLOUR_H_
