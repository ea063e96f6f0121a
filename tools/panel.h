// Puts pictures side by side.
#ifndef ZUQEL_TOOLS_PANEL_H_
#define ZUQEL_TOOLS_PANEL_H_

#include <vector>

#include "image.h"

namespace zuqel::tools {

// Brought to a size by repeating or leaving out pixels.
Picture Stretch(const Picture& picture, int width, int height);

// One row of tiles on white, each the size of the first picture; the others are
// stretched to it. `pictures` is not empty.
Picture MakePanel(const std::vector<Picture>& pictures);

}  // namespace zuqel::tools

#endif  // ZUQEL_TOOLS_PANEL_H_
