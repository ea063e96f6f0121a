// Holds the session.
#include "api/session.h"

#include <array>
#include <cstddef>
#include <new>

namespace zuqel {

Session& TheSession() {
  alignas(Session) static std::array<std::byte, sizeof(Session)> storage;
  static auto* session = new (storage.data()) Session;
  return *session;
}

}  // namespace zuqel
