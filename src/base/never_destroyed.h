// Objects that live as long as the process.
#ifndef ZUQEL_BASE_NEVER_DESTROYED_H_
#define ZUQEL_BASE_NEVER_DESTROYED_H_

#include <array>
#include <cstddef>
#include <new>

namespace zuqel {

// The one T of the process, in static storage and never destroyed: calls may
// still come while the process exits.
template <typename T>
T& NeverDestroyed() {
  alignas(T) static std::array<std::byte, sizeof(T)> storage;
  static auto* object = new (storage.data()) T;
  return *object;
}

}  // namespace zuqel

#endif  // ZUQEL_BASE_NEVER_DESTROYED_H_
