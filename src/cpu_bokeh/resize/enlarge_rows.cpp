// Interpolates between neighbours by fixed weights.
#include "cpu_bokeh/resize/enlarge_rows.h"

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstring>

namespace zuqel {
namespace {

// `kShare` / 256 of b, the remainder of a.
template <uint32_t kShare, typename T>
inline T Between(T a, T b) {
  return static_cast<T>(static_cast<T>((256 - kShare) * a + kShare * b + 128) >>
                        8);
}

// The first of two bytes in the low half: one store writes both.
static_assert(std::endian::native == std::endian::little);
inline uint16_t Pair(uint16_t first, uint16_t second) {
  return static_cast<uint16_t>(first | second << 8);
}

}  // namespace

void EnlargeRowBy2(const uint16_t* row, int32_t width, uint8_t* out) {
  const size_t last = static_cast<size_t>(width) - 1;
  *out++ = static_cast<uint8_t>(row[0]);
  for (size_t x = 0; x < last; ++x) {
    const uint16_t a = row[x], b = row[x + 1];
    const uint16_t pair = Pair(Between<64>(a, b), Between<192>(a, b));
    std::memcpy(out + 2 * x, &pair, sizeof(pair));
  }
  out[2 * last] = static_cast<uint8_t>(row[last]);
}

void EnlargeRowBy4(const uint16_t* row, int32_t width, uint8_t* out) {
  const size_t last = static_cast<size_t>(width) - 1;
  std::fill_n(out, 2, static_cast<uint8_t>(row[0]));
  out += 2;
  for (size_t x = 0; x < last; ++x) {
    const uint16_t a = row[x], b = row[x + 1];
    const uint16_t near_a = Pair(Between<32>(a, b), Between<96>(a, b));
    const uint16_t near_b = Pair(Between<160>(a, b), Between<224>(a, b));
    std::memcpy(out + 4 * x, &near_a, sizeof(near_a));
    std::memcpy(out + 4 * x + 2, &near_b, sizeof(near_b));
  }
  std::fill_n(out + 4 * last, 2, static_cast<uint8_t>(row[last]));
}

void EnlargeRowBy3(const uint16_t* row, int32_t width, uint8_t* out) {
  const size_t last = static_cast<size_t>(width) - 1;
  *out++ = static_cast<uint8_t>(row[0]);
  for (size_t x = 0; x < last; ++x) {
    const uint16_t a = row[x], b = row[x + 1];
    out[3 * x] = static_cast<uint8_t>(a);
    out[3 * x + 1] = static_cast<uint8_t>(Between<85>(a, b));
    out[3 * x + 2] = static_cast<uint8_t>(Between<170>(a, b));
  }
  std::fill_n(out + 3 * last, 2, static_cast<uint8_t>(row[last]));
}

void EnlargeRowBy6(const uint16_t* row, int32_t width, uint8_t* out) {
  const size_t last = static_cast<size_t>(width) - 1;
  std::fill_n(out, 3, static_cast<uint8_t>(row[0]));
  out += 3;
  for (size_t x = 0; x < last; ++x) {
    const uint16_t a = row[x], b = row[x + 1];
    out[6 * x] = static_cast<uint8_t>(Between<21>(a, b));
    out[6 * x + 1] = static_cast<uint8_t>(Between<64>(a, b));
    out[6 * x + 2] = static_cast<uint8_t>(Between<106>(a, b));
    out[6 * x + 3] = static_cast<uint8_t>(Between<149>(a, b));
    out[6 * x + 4] = static_cast<uint8_t>(Between<192>(a, b));
    out[6 * x + 5] = static_cast<uint8_t>(Between<234>(a, b));
  }
  std::fill_n(out + 6 * last, 3, static_cast<uint8_t>(row[last]));
}

void EnlargeRowBy3Halves(const uint32_t* row, int32_t width, uint16_t* out) {
  const int32_t last = width - 1;
  for (int32_t x = 0; x < width; x += 2) {
    const uint32_t a = row[std::max(x - 1, 0)], b = row[x];
    const uint32_t c = row[x + 1], d = row[std::min(x + 2, last)];
    *out++ = static_cast<uint16_t>(Between<213>(a, b));
    *out++ = static_cast<uint16_t>(Between<128>(b, c));
    *out++ = static_cast<uint16_t>(Between<43>(c, d));
  }
}

}  // namespace zuqel
