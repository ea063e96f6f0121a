// The far end of the demo scene: a town at dusk under a string of lamps.
#ifndef ZUQEL_TOOLS_DEMO_BACKDROP_H_
#define ZUQEL_TOOLS_DEMO_BACKDROP_H_

#include "demo/paint.h"

namespace zuqel::tools {

// Fills the whole picture.
Surface PaintBackdrop(float x, float y);

}  // namespace zuqel::tools

#endif  // ZUQEL_TOOLS_DEMO_BACKDROP_H_
