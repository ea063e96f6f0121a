// Sizes and points in pixels, as options and file names give them.
#include "coordinates.h"

#include <algorithm>
#include <charconv>
#include <system_error>

#include "tool_error.h"

namespace zuqel::tools {
namespace {

struct IntegerPair {
  int first = 0, second = 0;
};

// Two integers with `separator` between them. Nothing if there is anything else
// in `text` or a number does not fit int.
std::optional<IntegerPair> ParseIntegerPair(std::string_view text,
                                            char separator) {
  const char* const end = text.data() + text.size();
  IntegerPair pair;
  const auto first = std::from_chars(text.data(), end, pair.first);
  if (first.ec != std::errc() || first.ptr == end || *first.ptr != separator) {
    return std::nullopt;
  }
  const auto second = std::from_chars(first.ptr + 1, end, pair.second);
  if (second.ec != std::errc() || second.ptr != end) return std::nullopt;
  return pair;
}

}  // namespace

std::string ToText(Size size) {
  return std::to_string(size.width) + "x" + std::to_string(size.height);
}

std::optional<Size> ParseSize(std::string_view text) {
  const std::optional<IntegerPair> sides = ParseIntegerPair(text, 'x');
  if (!sides) return std::nullopt;
  return Size{sides->first, sides->second};
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

FocusPoint ParseFocusPoint(const std::string& option, const std::string& text,
                           const char* frame, Size size) {
  const std::string given = option + " " + text;
  const std::optional<IntegerPair> numbers = ParseIntegerPair(text, ',');
  if (!numbers) throw InputError(given + ": is not X,Y in pixels");
  const FocusPoint point = {numbers->first, numbers->second};
  if (point.x < 0 || point.y < 0 || point.x >= size.width ||
      point.y >= size.height) {
    throw InputError(given + ": lies outside the " + frame + " of " +
                     std::to_string(size.width) + " x " +
                     std::to_string(size.height));
  }
  return point;
}

}  // namespace zuqel::tools
