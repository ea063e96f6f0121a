// Thirds of sums.
#include "cpu_bokeh/box_kernels.h"

#include "base/byte_pairs.h"
#include "base/kernel_set.h"

namespace zuqel {
namespace {

// floor(sum / 3) for sums of three bytes: the multiplier is 2^16 / 3, rounded
// up, and 765 times its error of 2/3 is below 2^16 / 3.
inline uint16_t Third(uint16_t a, uint16_t b, uint16_t c = 0) {
  const auto sum = static_cast<uint16_t>(a + b + c);
  return static_cast<uint16_t>(sum * 21846U >> 16);
}

void Along(const uint8_t* row, size_t count, uint8_t* __restrict out) {
  for (size_t i = 0; i < count / 2; ++i) {
    const uint16_t ab = LoadPair(row + 2 * i), cd = LoadPair(row + 2 * i + 2);
    const auto bc = static_cast<uint16_t>(Second(ab) + First(cd));
    StorePair(Third(First(ab), bc), Third(bc, Second(cd)), out + 2 * i);
  }
  if (count % 2 == 0) return;
  const uint8_t* last = row + count - 1;
  out[count - 1] = static_cast<uint8_t>(Third(last[0], last[1], last[2]));
}

void Down(const uint8_t* above, const uint8_t* row, const uint8_t* below,
          size_t count, uint8_t* __restrict out) {
  for (size_t i = 0; i < count / 2; ++i) {
    const uint16_t a = LoadPair(above + 2 * i), b = LoadPair(row + 2 * i);
    const uint16_t c = LoadPair(below + 2 * i);
    StorePair(Third(First(a), First(b), First(c)),
              Third(Second(a), Second(b), Second(c)), out + 2 * i);
  }
  if (count % 2 == 0) return;
  const size_t last = count - 1;
  out[last] = static_cast<uint8_t>(Third(above[last], row[last], below[last]));
}

constexpr BoxKernels kKernels = {Along, Down};

}  // namespace

template <>
const BoxKernels& KernelsOf<BoxKernels, kCompiledSet>() {
  return kKernels;
}

}  // namespace zuqel
