// Puts pictures side by side.
#ifndef ZUQEL_TOOLS_LOOK_PANEL_H_
#define ZUQEL_TOOLS_LOOK_PANEL_H_

#include <vector>

#include "image.h"

namespace zuqel::tools {

// The picture with what is blurred in shades of one colour; what is sharp keeps
// its colours. The map is stretched to the picture.
Picture TintBlurred(const Picture& picture, const WeightMap& map);

// One row of tiles on white, each the size of the first picture; the others are
// stretched to it. `pictures` is not empty.
Picture MakePanel(const std::vector<Picture>& pictures);

// The depth in false colour with the focus point marked, and the map in grey;
// with an `image`, which may be null, also the image, tinted where it is
// blurred. Tiles have the image's size, else the depth's; `focus` is in their
// pixels.
Picture MakeRefocusPanel(const Picture& depth_colours, const WeightMap& map,
                         const Picture* image, FocusPoint focus);

}  // namespace zuqel::tools

#endif  // ZUQEL_TOOLS_LOOK_PANEL_H_
