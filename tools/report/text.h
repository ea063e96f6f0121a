// Texts from outside, such as file names, for where only good ones can go.
#ifndef ZUQEL_TOOLS_REPORT_TEXT_H_
#define ZUQEL_TOOLS_REPORT_TEXT_H_

#include <string>
#include <string_view>

namespace zuqel::tools {

// The same in valid UTF-8: bytes that are not, and control characters, become
// U+FFFD.
std::string ToUtf8(std::string_view text);

// Of ASCII letters, digits, '-', '_' and '.' alone, and not long: it can be in
// a link as it is, and starts the names of files on any system.
std::string ToFileStem(std::string_view text);

// Shortest decimal form, of up to six digits: "1", "2.8".
std::string ToText(double number);

}  // namespace zuqel::tools

#endif  // ZUQEL_TOOLS_REPORT_TEXT_H_
