// Two adjacent bytes as one 16-bit lane, for kernels: sums of bytes fit a lane,
// and neither widening nor narrowing moves bytes between lanes.
#ifndef ZUQEL_BASE_BYTE_PAIRS_H_
#define ZUQEL_BASE_BYTE_PAIRS_H_

#include <bit>
#include <cstdint>
#include <cstring>

namespace zuqel {
namespace {  // each kernel file's own, as what it emits has to be

static_assert(std::endian::native == std::endian::little);

inline uint16_t LoadPair(const uint8_t* bytes) {
  uint16_t pair = 0;
  __builtin_memcpy(&pair, bytes, sizeof(pair));
  return pair;
}
inline void StorePair(uint16_t first, uint16_t second, uint8_t* bytes) {
  const auto pair = static_cast<uint16_t>(first | second << 8);
  __builtin_memcpy(bytes, &pair, sizeof(pair));
}
inline uint16_t First(uint16_t pair) {
  return pair & 0xFF;
}
inline uint16_t Second(uint16_t pair) {
  return static_cast<uint16_t>(pair >> 8);
}

}  // namespace
}  // namespace zuqel

#endif  // ZUQEL_BASE_BYTE_PAIRS_H_
