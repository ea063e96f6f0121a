// The focus point as people write it.
#include "focus_point.h"

#include <optional>

#include "number_pair.h"
#include "tool_error.h"

namespace zuqel::tools {

FocusPoint ParseFocusPoint(const std::string& option, const std::string& text,
                           const char* frame, Size size) {
  const std::string given = option + " " + text;
  const std::optional<NumberPair> numbers = ParseNumberPair(text, ',');
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
