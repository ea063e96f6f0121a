// The version that the library reports and names its dumps with.
#ifndef ZUQEL_BASE_VERSION_H_
#define ZUQEL_BASE_VERSION_H_

#include <string_view>

namespace zuqel {

// Ends with a zero.
inline constexpr std::string_view kVersion = "0.54.07";

}  // namespace zuqel

#endif  // ZUQEL_BASE_VERSION_H_
