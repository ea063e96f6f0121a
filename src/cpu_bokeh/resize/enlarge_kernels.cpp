// Interpolates between neighbours by fixed weights.
#include "cpu_bokeh/resize/enlarge_kernels.h"

#include "base/byte_pairs.h"
#include "base/kernel_set.h"

// Arrays of the language: functions of std::array would be shared with files
// that are compiled for other sets.
// NOLINTBEGIN(modernize-avoid-c-arrays)
namespace zuqel {
namespace {

// `kShare` / 256 of b, the remainder of a.
template <uint32_t kShare, typename T>
inline T Between(T a, T b) {
  return static_cast<T>(static_cast<T>((256 - kShare) * a + kShare * b + 128) >>
                        8);
}

// Sets average bytes and round up. Down is up for inverted bytes: so rows lie
// inverted between the passes.
inline uint8_t Average(uint8_t a, uint8_t b) {
  return static_cast<uint8_t>((a + b + 1) >> 1);
}
inline uint8_t Inverted(uint8_t a) {
  return a ^ 0xFF;
}

// (3 * near + far + 2) / 4: where the inner average drops a half, the sum is
// odd, and the outer one rounds the same way.
inline uint8_t Lean(uint8_t near, uint8_t inverted_near, uint8_t inverted_far) {
  return Average(near, Inverted(Average(inverted_near, inverted_far)));
}

void LeanRows(const uint8_t* near, const uint8_t* far, size_t count,
              uint8_t* __restrict out) {
  for (size_t x = 0; x < count; ++x) {
    out[x] = Inverted(Lean(near[x], Inverted(near[x]), Inverted(far[x])));
  }
}

void By2(const uint8_t* row, size_t count, uint8_t* __restrict out) {
  const uint8_t* before = row - 1;
  const uint8_t* next = row + 1;
  for (size_t x = 0; x < count; ++x) {
    const uint8_t sample = Inverted(row[x]);
    out[2 * x] = Lean(sample, row[x], before[x]);
    out[2 * x + 1] = Lean(sample, row[x], next[x]);
  }
}

void By4(const uint16_t* row, size_t count, uint8_t* __restrict out) {
  for (size_t x = 0; x < count; ++x) {
    const uint16_t a = row[x], b = row[x + 1];
    const uint16_t before = row[static_cast<ptrdiff_t>(x) - 1];
    StorePair(Between<96>(a, before), Between<32>(a, before), out + 4 * x);
    StorePair(Between<32>(a, b), Between<96>(a, b), out + 4 * x + 2);
  }
}

// Instructions that spread samples three apart are not in each set, so sums are
// made beside each other, as many as stay in the first cache.
constexpr size_t kStretch = 64;

void By3(const uint16_t* row, size_t count, uint8_t* __restrict out) {
  for (size_t begin = 0; begin < count; begin += kStretch, row += kStretch) {
    const size_t end = count - begin < kStretch ? count - begin : kStretch;
    uint16_t left[kStretch], right[kStretch];
    const uint16_t* before = row - 1;
    for (size_t x = 0; x < end; ++x) {
      left[x] = Between<170>(before[x], row[x]);
      right[x] = Between<85>(row[x], row[x + 1]);
    }
    for (size_t x = 0; x < end; ++x, out += 3) {
      out[0] = static_cast<uint8_t>(left[x]);
      out[1] = static_cast<uint8_t>(row[x]);
      out[2] = static_cast<uint8_t>(right[x]);
    }
  }
}

void By6(const uint16_t* row, size_t count, uint8_t* __restrict out) {
  for (size_t x = 0; x < count; ++x) {
    const uint16_t a = row[x], b = row[x + 1];
    const uint16_t before = row[static_cast<ptrdiff_t>(x) - 1];
    out[6 * x] = static_cast<uint8_t>(Between<149>(before, a));
    out[6 * x + 1] = static_cast<uint8_t>(Between<192>(before, a));
    out[6 * x + 2] = static_cast<uint8_t>(Between<234>(before, a));
    out[6 * x + 3] = static_cast<uint8_t>(Between<21>(a, b));
    out[6 * x + 4] = static_cast<uint8_t>(Between<64>(a, b));
    out[6 * x + 5] = static_cast<uint8_t>(Between<106>(a, b));
  }
}

void By3Halves(const uint32_t* row, size_t count, uint16_t* __restrict out) {
  for (size_t begin = 0; begin < count;
       begin += kStretch, row += 2 * kStretch) {
    const size_t end = count - begin < kStretch ? count - begin : kStretch;
    uint16_t left[kStretch], middle[kStretch], right[kStretch];
    const uint32_t* before = row - 1;
    for (size_t x = 0; x < end; ++x) {
      const uint32_t a = row[2 * x], b = row[2 * x + 1], next = row[2 * x + 2];
      left[x] = static_cast<uint16_t>(Between<213>(before[2 * x], a));
      middle[x] = static_cast<uint16_t>(Between<128>(a, b));
      right[x] = static_cast<uint16_t>(Between<43>(b, next));
    }
    for (size_t x = 0; x < end; ++x, out += 3) {
      out[0] = left[x];
      out[1] = middle[x];
      out[2] = right[x];
    }
  }
}

constexpr EnlargeKernels kKernels = {By2, By4, By3, By6, By3Halves, LeanRows};

}  // namespace

template <>
const EnlargeKernels& KernelsOf<EnlargeKernels, kCompiledSet>() {
  return kKernels;
}

}  // namespace zuqel
// NOLINTEND(modernize-avoid-c-arrays)
