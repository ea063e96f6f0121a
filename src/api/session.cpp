// Holds the session.
#include "api/session.h"

#include <new>

namespace zuqel {

Session& TheSession() {
  alignas(Session) static unsigned char storage[sizeof(Session)];
  static auto* session = new (storage) Session;
  return *session;
}

}  // namespace zuqel
