// The size of a picture as people write it.
#ifndef ZUQEL_TOOLS_SIZE_H_
#define ZUQEL_TOOLS_SIZE_H_

#include <optional>
#include <string>
#include <string_view>

namespace zuqel::tools {

struct Size {
  bool operator==(const Size&) const = default;
  int width = 0, height = 0;
};

// Of a picture or map.
template <typename Image>
Size SizeOf(const Image& image) {
  return {image.width, image.height};
}

// "WxH".
std::string ToText(Size size);

// Nothing when the text is not "WxH".
std::optional<Size> ParseSize(std::string_view text);

// The value of the option --size; InputError when it is not "WxH".
Size ParseSizeOption(const std::string& text);

// InputError, which begins with `source`, when a side is not 1..kLargestSide.
void CheckSize(const std::string& source, Size size);

}  // namespace zuqel::tools

#endif  // ZUQEL_TOOLS_SIZE_H_
