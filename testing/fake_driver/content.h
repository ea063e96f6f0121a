// Pictures as hashes of all that they depend on.
#ifndef TESTING_FAKE_DRIVER_CONTENT_H_
#define TESTING_FAKE_DRIVER_CONTENT_H_

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <type_traits>

namespace zuqel::fake_driver {

class Hash {
 public:
  Hash() = default;
  explicit Hash(uint64_t value) : value_(value) {}

  // Values without padding.
  template <typename... Values>
  Hash& Add(const Values&... values) {
    static_assert((std::has_unique_object_representations_v<Values> && ...));
    (AddBytes(&values, sizeof(values)), ...);
    return *this;
  }
  Hash& AddBytes(const void* bytes, size_t count) {
    const auto* from = static_cast<const uint8_t*>(bytes);
    for (; count >= sizeof(uint64_t); count -= sizeof(uint64_t)) {
      uint64_t word = 0;
      std::memcpy(&word, from, sizeof(word));
      Mix(word);
      from += sizeof(word);
    }
    uint64_t rest = count;
    for (; count > 0; --count) rest = rest << 8 | *from++;
    Mix(rest);
    return *this;
  }
  [[nodiscard]] uint64_t value() const { return value_; }

  // Bytes that follow from the hash.
  void Generate(uint8_t* bytes, size_t count) {
    for (; count > 0; --count) {
      if (count % 8 == 0) Mix(count);
      *bytes++ = static_cast<uint8_t>(value_ >> (count % 8 * 8));
    }
  }

 private:
  void Mix(uint64_t word) {
    value_ = (value_ ^ word) * 0x9E3779B97F4A7C15U;
    value_ ^= value_ >> 29;
  }

  uint64_t value_ = 0xC0FFEE;
};

}  // namespace zuqel::fake_driver

#endif  // TESTING_FAKE_DRIVER_CONTENT_H_
