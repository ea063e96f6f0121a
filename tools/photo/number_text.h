// Numbers as headers, attributes and options give them.
#ifndef ZUQEL_TOOLS_PHOTO_NUMBER_TEXT_H_
#define ZUQEL_TOOLS_PHOTO_NUMBER_TEXT_H_

#include <optional>
#include <string>

namespace zuqel::tools {

// Decimal, with a point and an exponent if wanted. Nothing if there is anything
// else in `text`, such as white space, or the number is too large.
std::optional<double> ParseNumber(const std::string& text);

}  // namespace zuqel::tools

#endif  // ZUQEL_TOOLS_PHOTO_NUMBER_TEXT_H_
