// System properties as numbers.
#ifndef ZUQEL_BASE_PROPERTY_H_
#define ZUQEL_BASE_PROPERTY_H_

#include <sys/system_properties.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>

namespace zuqel {

// The number that a property's text begins with, clamped to 32 bits; 0 when it
// is unset or begins with none.
inline int32_t ReadIntProperty(const char* name) {
  std::array<char, PROP_VALUE_MAX> text = {};
  __system_property_get(name, text.data());
  const long value = std::strtol(text.data(), nullptr, 10);
  return static_cast<int32_t>(std::clamp<long>(value, INT32_MIN, INT32_MAX));
}

}  // namespace zuqel

#endif  // ZUQEL_BASE_PROPERTY_H_
