// Pottery on the table of the demo scene.
#ifndef ZUQEL_TOOLS_DEMO_POTTERY_H_
#define ZUQEL_TOOLS_DEMO_POTTERY_H_

#include <vector>

#include "demo/paint.h"

namespace zuqel::tools {

// A point of a pot's surface: its angle around the axis in quarter turns of the
// visible half, -1..1, and its height in pixels above the foot.
struct PotPoint {
  float angle;
  float height;
  float radius;
};

using PotPattern = Colour (*)(const PotPoint& point);

// The outline in equal steps from foot to rim, in pixels.
struct Pot {
  float x, foot;  // where it stands in the picture
  float height;
  std::vector<float> radii;
  PotPattern pattern;
  float gloss;  // 0..1
  bool open;    // the inside is visible
};

// True if the pot is visible at the point; sets `surface` then.
bool PaintPot(const Pot& pot, float x, float y, Surface& surface);

// How much light its shadow leaves on the table at the point, 0..1.
float PotShadow(const Pot& pot, float x, float y);

// The pots of the scene, nearest first.
std::vector<Pot> MakePots();

}  // namespace zuqel::tools

#endif  // ZUQEL_TOOLS_DEMO_POTTERY_H_
