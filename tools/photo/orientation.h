// Turns pictures and maps upright.
#ifndef ZUQEL_TOOLS_PHOTO_ORIENTATION_H_
#define ZUQEL_TOOLS_PHOTO_ORIENTATION_H_

#include <cstdint>

#include "image.h"

namespace zuqel::tools {

// Orientations as EXIF numbers them, 1 to 8; 1 is upright, and so is what has
// another number. Holds one copy more at its peak.
void TurnUpright(Picture& picture, int orientation);
void TurnUpright(Map<float>& map, int orientation);

}  // namespace zuqel::tools

#endif  // ZUQEL_TOOLS_PHOTO_ORIENTATION_H_
