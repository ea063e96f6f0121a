// The default keys, from a header that the build generates from the key files.
#include "calib/built_in_keys.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <tuple>

#include "default_keys.h"

namespace zuqel::calib {
namespace {

// The array is empty when no key file was given.
template <size_t kSize>
const Key* KeyOrNull(const std::array<uint8_t, kSize>& bytes) {
  if constexpr (kSize == std::tuple_size_v<Key>) {
    return &bytes;
  } else {
    static_assert(kSize == 0);
    return nullptr;
  }
}

}  // namespace

DefaultKeys BuiltInKeys() {
  return {.general = KeyOrNull(kGeneralKey), .kind4 = KeyOrNull(kKind4Key)};
}

}  // namespace zuqel::calib
