// The slanted ground of the demo scene: a wooden table seen from its end.
#ifndef ZUQEL_TOOLS_DEMO_TABLE_H_
#define ZUQEL_TOOLS_DEMO_TABLE_H_

#include "demo/paint.h"

namespace zuqel::tools {

// The table begins at this row of the picture.
constexpr float kTableTop = 598;

// The disparity of what stands on the table at row `y`.
float TableDisparity(float y);

Surface PaintTable(float x, float y);

}  // namespace zuqel::tools

#endif  // ZUQEL_TOOLS_DEMO_TABLE_H_
