// The size of a picture as people write it.
#include "size.h"

#include <algorithm>

#include "image_file.h"
#include "number_pair.h"
#include "tool_error.h"

namespace zuqel::tools {

std::string ToText(Size size) {
  return std::to_string(size.width) + "x" + std::to_string(size.height);
}

std::optional<Size> ParseSize(std::string_view text) {
  const std::optional<NumberPair> numbers = ParseNumberPair(text, 'x');
  if (!numbers) return std::nullopt;
  return Size{numbers->first, numbers->second};
}

Size ParseSizeOption(const std::string& text) {
  const std::optional<Size> size = ParseSize(text);
  if (!size) throw InputError("--size " + text + ": is not WxH");
  return *size;
}

void CheckSize(const std::string& source, Size size) {
  if (std::clamp(size.width, 1, kLargestSide) == size.width &&
      std::clamp(size.height, 1, kLargestSide) == size.height) {
    return;
  }
  throw InputError(source + ": " + ToText(size) + " is not between 1x1 and " +
                   ToText({kLargestSide, kLargestSide}));
}

}  // namespace zuqel::tools
