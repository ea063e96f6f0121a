// The focus point as people write it.
#ifndef ZUQEL_TOOLS_FOCUS_POINT_H_
#define ZUQEL_TOOLS_FOCUS_POINT_H_

#include <string>

#include "image.h"
#include "size.h"

namespace zuqel::tools {

// Reads "X,Y", the value of `option`, which must lie inside `frame`, a word for
// what has this size. InputError else.
FocusPoint ParseFocusPoint(const std::string& option, const std::string& text,
                           const char* frame, Size size);

}  // namespace zuqel::tools

#endif  // ZUQEL_TOOLS_FOCUS_POINT_H_
