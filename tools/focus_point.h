// The focus point as people write it.
#ifndef ZUQEL_TOOLS_FOCUS_POINT_H_
#define ZUQEL_TOOLS_FOCUS_POINT_H_

#include <string>

#include "image.h"

namespace zuqel::tools {

// Reads "X,Y", which must lie inside a picture of this size. InputError else.
FocusPoint ParseFocusPoint(const std::string& text, int width, int height);

}  // namespace zuqel::tools

#endif  // ZUQEL_TOOLS_FOCUS_POINT_H_
