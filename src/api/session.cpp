// Holds the session.
#include "api/session.h"

#include "base/never_destroyed.h"

namespace zuqel {

Session& TheSession() {
  return NeverDestroyed<Session>();
}

}  // namespace zuqel
