// The wrapper of a system without graphic buffers.
#include "gb_wrapper.h"

bool isValidGBWrapper() {
  return false;
}
