// Numbers as headers, attributes and options give them.
#include "photo/number_text.h"

#include <cmath>
#include <cstdlib>

namespace zuqel::tools {

std::optional<double> ParseNumber(const std::string& text) {
  // strtod() also takes names, hexadecimal numbers and white space.
  if (text.find_first_not_of("0123456789+-.eE") != std::string::npos) {
    return std::nullopt;
  }
  const char* const begin = text.c_str();
  char* end = nullptr;
  const double number = std::strtod(begin, &end);
  const bool is_whole = end != begin && end == begin + text.size();
  if (!is_whole || !std::isfinite(number)) return std::nullopt;
  return number;
}

}  // namespace zuqel::tools
