// Shows a refocus map beside what it was made of.
#ifndef ZUQEL_TOOLS_REFOCUS_PANEL_H_
#define ZUQEL_TOOLS_REFOCUS_PANEL_H_

#include "image.h"

namespace zuqel::tools {

// The depth's false colours with the focus point marked and the map in grey;
// with an `image`, also the image, whose blurred part is tinted. Tiles have the
// image's size, else the depth's; `focus` is in their pixels. `image` may be
// null.
Picture MakeRefocusPanel(const Picture& depth_colours, const WeightMap& map,
                         const Picture* image, FocusPoint focus);

}  // namespace zuqel::tools

#endif  // ZUQEL_TOOLS_REFOCUS_PANEL_H_
