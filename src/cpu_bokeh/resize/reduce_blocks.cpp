// Means of blocks by fixed weights. They are uneven where the factor does not
// divide 256; which sample gets the larger one decides the last bit.
#include "cpu_bokeh/resize/reduce_blocks.h"

#include <array>
#include <cstddef>

namespace zuqel {
namespace {

// Means of samples `stride` apart, rounded to nearest. Halves and quarters are
// written so that the compiler uses its byte-average instructions.
struct Halves {
  static constexpr size_t kCount = 2;

  template <typename Sample>
  static Sample Mean(const Sample* first, size_t stride) {
    return Average(first[0], first[stride]);
  }
  template <typename Sample>
  static Sample Average(Sample a, Sample b) {
    return static_cast<Sample>((uint32_t{a} + b + 1) >> 1);
  }
};

struct Quarters {
  static constexpr size_t kCount = 4;

  // (a + b + c + d + 2) >> 2 in bytes: the average of two rounded averages is
  // one too large if it was rounded up and one of them was, too.
  template <typename Sample>
  static Sample Mean(const Sample* first, size_t stride) {
    const Sample a = first[0], b = first[stride];
    const Sample c = first[2 * stride], d = first[3 * stride];
    const Sample ab = Halves::Average(a, b), cd = Halves::Average(c, d);
    const int excess = ((a ^ b) | (c ^ d)) & (ab ^ cd) & 1;
    return static_cast<Sample>(Halves::Average(ab, cd) - excess);
  }
};

template <uint32_t... kWeights>
struct Weighted {
  static constexpr size_t kCount = sizeof...(kWeights);

  template <typename Sample>
  static Sample Mean(const Sample* first, size_t stride) {
    constexpr std::array<uint32_t, kCount> kAll = {kWeights...};
    uint32_t sum = 128;
    for (size_t i = 0; i < kCount; ++i) sum += kAll[i] * first[i * stride];
    return static_cast<Sample>(sum >> 8);
  }
};
using Thirds = Weighted<85, 85, 86>;
using Sixths = Weighted<42, 43, 43, 42, 43, 43>;

// Target columns made together: the samples between the passes stay in the
// cache, and with a constant count both loops unroll.
constexpr size_t kStretch = 64;

// `stride` leads from row to row of the block.
template <typename Part, typename Sample>
inline void ReduceStretch(const Sample* block, size_t stride, size_t count,
                          Sample* out) {
  std::array<Sample, kStretch * Part::kCount> row;
  for (size_t x = 0; x < count * Part::kCount; ++x) {
    row[x] = Part::Mean(block + x, stride);
  }
  for (size_t x = 0; x < count; ++x) {
    out[x] = Part::Mean(row.data() + x * Part::kCount, 1);
  }
}

template <typename Part, typename Sample>
void Reduce(Plane<const Sample> in, Plane<Sample> out) {
  constexpr auto kRows = static_cast<int32_t>(Part::kCount);
  const auto stride = static_cast<size_t>(in.width);
  const auto width = static_cast<size_t>(out.width);
  const size_t whole = width / kStretch * kStretch;
  for (int32_t y = 0; y < out.height; ++y) {
    const Sample* block = in.row(y * kRows);
    for (size_t x = 0; x < whole; x += kStretch) {
      ReduceStretch<Part>(block + x * Part::kCount, stride, kStretch,
                          out.row(y) + x);
    }
    ReduceStretch<Part>(block + whole * Part::kCount, stride, width - whole,
                        out.row(y) + whole);
  }
}

}  // namespace

template <typename Sample>
void ReduceBlocks(int32_t factor, Plane<const Sample> in, Plane<Sample> out) {
  switch (factor) {
    case 2:
      return Reduce<Halves>(in, out);
    case 3:
      return Reduce<Thirds>(in, out);
    case 4:
      return Reduce<Quarters>(in, out);
    case 6:
      return Reduce<Sixths>(in, out);
    default:
      return;
  }
}

template void ReduceBlocks(int32_t, Plane<const uint8_t>, Plane<uint8_t>);
template void ReduceBlocks(int32_t, Plane<const uint16_t>, Plane<uint16_t>);

}  // namespace zuqel
