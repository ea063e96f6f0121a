// The focus point as people write it.
#include "focus_point.h"

#include <charconv>
#include <system_error>

#include "tool_error.h"

namespace zuqel::tools {
namespace {

// Reads an integer at `text` and moves behind it.
bool TakeInteger(const char*& text, const char* end, int& value) {
  const auto [next, error] = std::from_chars(text, end, value);
  text = next;
  return error == std::errc();
}

}  // namespace

FocusPoint ParseFocusPoint(const std::string& text, int width, int height) {
  const char* next = text.data();
  const char* end = next + text.size();
  FocusPoint point;
  if (!TakeInteger(next, end, point.x) || next == end || *next++ != ',' ||
      !TakeInteger(next, end, point.y) || next != end) {
    throw InputError("--focus " + text + ": is not X,Y in pixels");
  }
  if (point.x < 0 || point.y < 0 || point.x >= width || point.y >= height) {
    throw InputError("--focus " + text + ": lies outside the picture of " +
                     std::to_string(width) + " x " + std::to_string(height));
  }
  return point;
}

}  // namespace zuqel::tools
