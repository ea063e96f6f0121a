// The wrapper of a system without graphic buffers: nothing works, and every
// call reports it.
#include "gb_wrapper.h"

bool isValidGBWrapper() {
  return false;
}

GBWrapper::GBWrapper() = default;
GBWrapper::~GBWrapper() = default;

int GBWrapper::AllocBuffer(int /*width*/, int /*height*/, unsigned /*format*/,
                           int /*index*/) {
  return -1;
}

void* GBWrapper::getNativeBuffer(int /*index*/) {
  return nullptr;
}

int GBWrapper::lock_read(void** pixels, int /*index*/) {
  *pixels = nullptr;
  return -1;
}

int GBWrapper::unlock(int /*index*/) {
  return -1;
}
