// Heap memory that is kept between calls and grows when it has to.
#ifndef ZUQEL_BASE_BUFFER_H_
#define ZUQEL_BASE_BUFFER_H_

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <optional>
#include <span>

#include "base/image_size.h"

namespace zuqel {

// Bytes of width x height samples, or nothing when they pass 2^31 - 1, which
// counts as out of memory.
inline std::optional<size_t> ByteCount(int32_t width, int32_t height,
                                       int32_t bytes_per_sample) {
  // Each product is checked: two factors of 31 bits fit 64 bits, three do not.
  const int64_t samples =
      static_cast<int64_t>(NonNegative(width)) * NonNegative(height);
  if (samples > INT32_MAX || samples * bytes_per_sample > INT32_MAX) {
    return std::nullopt;
  }
  return static_cast<size_t>(samples * bytes_per_sample);
}

inline std::optional<size_t> ByteCount(ImageSize size,
                                       int32_t bytes_per_sample) {
  return ByteCount(size.width, size.height, bytes_per_sample);
}

class Buffer {
 public:
  // Makes sure there are at least `bytes` bytes, zeroed when newly made, from
  // the beginning of a cache line on: vectors that lie across two take longer.
  // False when there is no memory for them; then the buffer is as it was.
  [[nodiscard]] bool Reserve(std::optional<size_t> bytes) {
    if (!bytes) return false;
    if (bytes_ != nullptr && *bytes <= size_) return true;
    // One byte at least: an empty buffer that was made is not a missing one.
    const size_t taken = std::max(*bytes, size_t{1});
    void* fresh = nullptr;
    if (posix_memalign(&fresh, kCacheLine, taken) != 0) return false;
    bytes_.reset(static_cast<uint8_t*>(std::memset(fresh, 0, taken)));
    size_ = *bytes;
    return true;
  }

  void Release() {
    bytes_.reset();
    size_ = 0;
  }

  [[nodiscard]] bool exists() const { return bytes_ != nullptr; }
  [[nodiscard]] uint8_t* bytes() const { return bytes_.get(); }
  [[nodiscard]] size_t size() const { return size_; }
  [[nodiscard]] std::span<uint32_t> words() const {
    return {reinterpret_cast<uint32_t*>(bytes_.get()), size_ / 4};
  }

 private:
  static constexpr size_t kCacheLine = 64;

  struct Free {
    void operator()(uint8_t* bytes) const { std::free(bytes); }
  };
  std::unique_ptr<uint8_t, Free> bytes_;
  size_t size_ = 0;
};

}  // namespace zuqel

#endif  // ZUQEL_BASE_BUFFER_H_
