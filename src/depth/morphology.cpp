// Square filters as two passes of windows that double: the result over 2 n
// pixels is that over n combined with its neighbour's, so a window of any
// length costs the logarithm of its length.
#include "depth/morphology.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <optional>

namespace zuqel {
namespace {

// `kNeutral` stands for pixels outside the image.
struct Union {
  static constexpr uint8_t kNeutral = 0;
  static uint8_t Of(uint8_t a, uint8_t b) { return a | b; }
};
struct Smallest {
  static constexpr uint8_t kNeutral = 255;
  static uint8_t Of(uint8_t a, uint8_t b) { return std::min(a, b); }
};
struct Largest {
  static constexpr uint8_t kNeutral = 0;
  static uint8_t Of(uint8_t a, uint8_t b) { return std::max(a, b); }
};

template <typename Op>
void Combine(const uint8_t* a, const uint8_t* b, size_t count, uint8_t* out) {
  for (size_t i = 0; i < count; ++i) out[i] = Op::Of(a[i], b[i]);
}

// Turns `length` units of `unit` bytes, each one pixel or one row, into windows
// of `window` units that begin at each of them; writes as many as fit to `out`.
// `units` is used up.
template <typename Op>
void Windows(uint8_t* units, size_t unit, size_t length, size_t window,
             uint8_t* out) {
  size_t reach = 1;
  for (; reach * 2 <= window; reach *= 2) {
    length -= reach;
    // Read ahead of where it is written.
    Combine<Op>(units, units + reach * unit, length * unit, units);
  }
  const size_t rest = window - reach;
  Combine<Op>(units, units + rest * unit, (length - rest) * unit, out);
}

template <typename Op>
bool Filter(Plane<const uint8_t> in, uint8_t radius, Buffer& scratch,
            Plane<uint8_t> out) {
  if (in.size() == 0) return true;
  const int32_t border = 2 * radius;
  const auto width = static_cast<size_t>(in.width);
  const auto height = static_cast<size_t>(in.height);
  const auto padding = static_cast<size_t>(radius);
  const size_t window = 2 * padding + 1;
  const auto padded = ByteCount(in.width + border, in.height + border, 1);
  if (!padded || !scratch.Reserve(padded)) return false;

  // Rows as units.
  uint8_t* rows = scratch.bytes();
  std::memset(rows, Op::kNeutral, padding * width);
  std::memcpy(rows + padding * width, in.data, in.size());
  std::memset(rows + (padding + height) * width, Op::kNeutral, padding * width);
  Windows<Op>(rows, width, height + 2 * padding, window, out.data);

  // Pixels of each row as units.
  uint8_t* row = scratch.bytes();
  for (int32_t y = 0; y < out.height; ++y) {
    std::memset(row, Op::kNeutral, padding);
    std::memcpy(row + padding, out.row(y), width);
    std::memset(row + padding + width, Op::kNeutral, padding);
    Windows<Op>(row, 1, width + 2 * padding, window, out.row(y));
  }
  return true;
}

}  // namespace

bool DilateMask(Plane<const uint8_t> in, uint8_t radius, Buffer& scratch,
                Plane<uint8_t> out) {
  return Filter<Union>(in, radius, scratch, out);
}

bool ErodeMin(Plane<const uint8_t> in, uint8_t radius, Buffer& scratch,
              Plane<uint8_t> out) {
  return Filter<Smallest>(in, radius, scratch, out);
}

bool DilateMax(Plane<const uint8_t> in, uint8_t radius, Buffer& scratch,
               Plane<uint8_t> out) {
  return Filter<Largest>(in, radius, scratch, out);
}

}  // namespace zuqel
