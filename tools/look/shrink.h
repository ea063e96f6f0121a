// Makes pictures smaller.
#ifndef ZUQEL_TOOLS_LOOK_SHRINK_H_
#define ZUQEL_TOOLS_LOOK_SHRINK_H_

#include "image.h"

namespace zuqel::tools {

// Each pixel is the mean of the area that it covers. `size` is at most the
// picture's.
Picture Shrink(const Picture& picture, Size size);

}  // namespace zuqel::tools

#endif  // ZUQEL_TOOLS_LOOK_SHRINK_H_
