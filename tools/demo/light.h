// The light of the demo scene: from the upper left, with a warm sky behind.
#ifndef ZUQEL_TOOLS_DEMO_LIGHT_H_
#define ZUQEL_TOOLS_DEMO_LIGHT_H_

#include "demo/paint.h"

namespace zuqel::tools {

// Where a surface looks to; of length 1.
struct Normal {
  float right, up, toward;
};

// The colour of a lit surface; `gloss` is 0..1.
Colour Light(Colour colour, const Normal& normal, float gloss);

// How much light a thing leaves at a point of the table, 0..1. It stands at
// (`foot_x`, `foot_y`) and is `reach` wide to each side.
float Shadow(float foot_x, float foot_y, float reach, float x, float y);

}  // namespace zuqel::tools

#endif  // ZUQEL_TOOLS_DEMO_LIGHT_H_
