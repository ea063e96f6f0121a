// Oranges on the table of the demo scene.
#ifndef ZUQEL_TOOLS_DEMO_FRUIT_H_
#define ZUQEL_TOOLS_DEMO_FRUIT_H_

#include <array>

#include "demo/paint.h"

namespace zuqel::tools {

struct Orange {
  float x, y, radius;  // in the picture
};

// Nearest first.
inline constexpr std::array kOranges = {Orange{1010, 690, 58},
                                        Orange{1106, 662, 52}};

// True if the orange is visible at the point; sets `surface` then.
bool PaintOrange(const Orange& orange, float x, float y, Surface& surface);

// How much light its shadow leaves on the table at the point, 0..1.
float OrangeShadow(const Orange& orange, float x, float y);

}  // namespace zuqel::tools

#endif  // ZUQEL_TOOLS_DEMO_FRUIT_H_
