// Puts pictures side by side.
#ifndef ZUQEL_TOOLS_PANEL_H_
#define ZUQEL_TOOLS_PANEL_H_

#include <vector>

#include "image.h"

namespace zuqel::tools {

// One row of tiles on white, each the size of the first picture; the others are
// brought to that size by repeating or leaving out pixels. `pictures` is not
// empty.
Picture MakePanel(const std::vector<Picture>& pictures);

}  // namespace zuqel::tools

#endif  // ZUQEL_TOOLS_PANEL_H_
