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

constexpr size_t kBlock = BoxKernels::kBlock;
constexpr size_t kPairs = kBlock / 2;

// The lane of sample `x`.
inline size_t Lane(size_t x) {
  return x / kBlock * kBlock + x % 2 * kPairs + x % kBlock / 2;
}

struct Pair {
  uint16_t even, odd;
};

inline Pair ThirdsAlong(const uint8_t* row) {
  const uint16_t ab = LoadPair(row), cd = LoadPair(row + 2);
  const auto bc = static_cast<uint16_t>(Second(ab) + First(cd));
  return {Third(First(ab), bc), Third(bc, Second(cd))};
}

// A block, or its first pairs.
[[gnu::always_inline]] inline void AlongBlock(const uint8_t* row, size_t pairs,
                                              uint16_t* __restrict out) {
  for (size_t i = 0; i < pairs; ++i) {
    const Pair thirds = ThirdsAlong(row + 2 * i);
    out[i] = thirds.even;
    out[i + kPairs] = thirds.odd;
  }
}

void Along(const uint8_t* __restrict row, size_t count,
           uint16_t* __restrict out) {
  size_t x = 0;
  for (; x + kBlock <= count; x += kBlock) AlongBlock(row + x, kPairs, out + x);
  AlongBlock(row + x, (count - x) / 2, out + x);
  if (count % 2 == 0) return;
  const uint8_t* last = row + count - 1;
  out[Lane(count - 1)] = Third(last[0], last[1], last[2]);
}

[[gnu::always_inline]] inline void DownBlock(const uint16_t* above,
                                             const uint16_t* row,
                                             const uint16_t* below,
                                             size_t pairs,
                                             uint8_t* __restrict out) {
  for (size_t i = 0; i < pairs; ++i) {
    const size_t j = i + kPairs;
    StorePair(Third(above[i], row[i], below[i]),
              Third(above[j], row[j], below[j]), out + 2 * i);
  }
}

void Down(const uint16_t* __restrict above, const uint16_t* __restrict row,
          const uint16_t* __restrict below, size_t count,
          uint8_t* __restrict out) {
  size_t x = 0;
  for (; x + kBlock <= count; x += kBlock) {
    DownBlock(above + x, row + x, below + x, kPairs, out + x);
  }
  DownBlock(above + x, row + x, below + x, (count - x) / 2, out + x);
  if (count % 2 == 0) return;
  const size_t last = Lane(count - 1);
  out[count - 1] =
      static_cast<uint8_t>(Third(above[last], row[last], below[last]));
}

[[gnu::always_inline]] inline void BothBlock(const uint8_t* in, size_t pairs,
                                             uint16_t* __restrict highest,
                                             const uint16_t* middle,
                                             uint8_t* __restrict out) {
  for (size_t i = 0; i < pairs; ++i) {
    const size_t j = i + kPairs;
    const Pair lowest = ThirdsAlong(in + 2 * i);
    StorePair(Third(highest[i], middle[i], lowest.even),
              Third(highest[j], middle[j], lowest.odd), out + 2 * i);
    highest[i] = lowest.even;
    highest[j] = lowest.odd;
  }
}

void Both(const uint8_t* __restrict in, size_t count,
          uint16_t* __restrict highest, const uint16_t* __restrict middle,
          uint8_t* __restrict out, BoxKernels::Rows next) {
  size_t x = 0;
  // Two blocks, for a cache line of samples. Two planes do not fit the second
  // cache, and what is asked for a row ahead is there in time.
  for (; x + 2 * kBlock <= count; x += 2 * kBlock) {
    __builtin_prefetch(next.in + x, /*rw=*/0);
    __builtin_prefetch(next.out + x, /*rw=*/1);
    for (size_t i = x; i < x + 2 * kBlock; i += kBlock) {
      BothBlock(in + i, kPairs, highest + i, middle + i, out + i);
    }
  }
  for (; x < count; x += kBlock) {
    const size_t pairs = (count - x) / 2;
    BothBlock(in + x, pairs < kPairs ? pairs : kPairs, highest + x, middle + x,
              out + x);
  }
  if (count % 2 == 0) return;
  const size_t last = Lane(count - 1);
  const uint16_t lowest = Third(in[count - 1], in[count], in[count + 1]);
  out[count - 1] =
      static_cast<uint8_t>(Third(highest[last], middle[last], lowest));
  highest[last] = lowest;
}

constexpr BoxKernels kKernels = {Along, Down, Both};

}  // namespace

template <>
const BoxKernels& KernelsOf<BoxKernels, kCompiledSet>() {
  return kKernels;
}

}  // namespace zuqel
