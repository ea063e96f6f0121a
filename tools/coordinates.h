// Sizes and points in pixels, as options and file names give them.
#ifndef ZUQEL_TOOLS_COORDINATES_H_
#define ZUQEL_TOOLS_COORDINATES_H_

#include <optional>
#include <string>
#include <string_view>

#include "image.h"

namespace zuqel::tools {

// "WxH".
std::string ToText(Size size);

// Nothing if the text is not "WxH".
std::optional<Size> ParseSize(std::string_view text);

// The value of the option --size; InputError unless it is "WxH".
Size ParseSizeOption(const std::string& text);

// InputError, starting with `source`, unless both sides are 1..kLargestSide.
void CheckSize(const std::string& source, Size size);

// Parses "X,Y", the value of `option`. InputError if it is not that or lies
// outside of `frame`, which names what has this size.
FocusPoint ParseFocusPoint(const std::string& option, const std::string& text,
                           const char* frame, Size size);

}  // namespace zuqel::tools

#endif  // ZUQEL_TOOLS_COORDINATES_H_
