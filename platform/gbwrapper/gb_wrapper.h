// The part of the maker's graphic-buffer wrapper library that is used. A device
// build can use the maker's own header instead.
//
// The one for Linux reads the property "zuqel.graphicbuffer" on every call: "0"
// simulates a device whose graphic buffers cannot be used, "unreadable" one
// whose buffers cannot be locked.
#ifndef PLATFORM_GBWRAPPER_GB_WRAPPER_H_
#define PLATFORM_GBWRAPPER_GB_WRAPPER_H_

#include <array>
#include <cstddef>

// True when graphic buffers can be used on this device.
bool isValidGBWrapper();

// Graphic buffers, by index: memory that GL draws into and the CPU reads
// without a copy.
class GBWrapper {
 public:
  GBWrapper();
  ~GBWrapper();
  GBWrapper(const GBWrapper&) = delete;
  GBWrapper& operator=(const GBWrapper&) = delete;

  // Makes buffer `index`; the format code is the maker's.
  int AllocBuffer(int width, int height, unsigned format, int index);
  // What an EGL image is made from; null if there is no such buffer.
  void* getNativeBuffer(int index);
  // Points `pixels` to the buffer's bytes, rows of width x 4, until `unlock`,
  // or to null when the buffer cannot be read.
  int lock_read(void** pixels, int index);
  int unlock(int index);

 private:
  static constexpr size_t kStorageBytes = 4096;
  // The maker's own fields, whatever they are.
  alignas(std::max_align_t) std::array<std::byte, kStorageBytes> storage_ = {};
};

#endif  // PLATFORM_GBWRAPPER_GB_WRAPPER_H_
