// Means of blocks by fixed weights.
#include "cpu_bokeh/resize/reduce_kernels.h"

#ifdef __AVX2__
#include <immintrin.h>
#endif

#include "base/byte_pairs.h"
#include "base/kernel_set.h"

// Arrays of the language: functions of std::array would be shared with files
// that are compiled for other sets.
// As many samples are read as were made, which the analyzer does not see.
// NOLINTBEGIN(modernize-avoid-c-arrays,clang-analyzer-core.*)
namespace zuqel {
namespace {

// Written so that the compiler uses its byte-average instructions.
template <typename Sample>
inline Sample Average(Sample a, Sample b) {
  return static_cast<Sample>((uint32_t{a} + b + 1) >> 1);
}

// Means of samples `stride` apart, rounded to nearest.
struct Halves {
  static constexpr size_t kCount = 2;

  template <typename Sample>
  static Sample Down(const Sample* const* rows, size_t x) {
    return Average(rows[0][x], rows[1][x]);
  }
  template <typename Sample>
  static Sample Along(const Sample* row) {
    return Average(row[0], row[1]);
  }
  static uint8_t Along(const uint8_t* row) {
    const uint16_t pair = LoadPair(row);
    return static_cast<uint8_t>(Average(First(pair), Second(pair)));
  }
};

struct Quarters {
  static constexpr size_t kCount = 4;

  // (a + b + c + d + 2) >> 2 in bytes: the average of two rounded averages is
  // one too large if it was rounded up and one of them was, too.
  template <typename Sample>
  static Sample Down(const Sample* const* rows, size_t x) {
    const Sample a = rows[0][x], b = rows[1][x], c = rows[2][x], d = rows[3][x];
    const Sample ab = Average(a, b), cd = Average(c, d);
    const int excess = ((a ^ b) | (c ^ d)) & (ab ^ cd) & 1;
    return static_cast<Sample>(Average(ab, cd) - excess);
  }
  template <typename Sample>
  static Sample Along(const Sample* row) {
    const uint32_t sum = uint32_t{row[0]} + row[1] + row[2] + row[3];
    return static_cast<Sample>((sum + 2) >> 2);
  }
  // Four bytes in one 32-bit lane, of which two sums are made at once.
  static uint8_t Along(const uint8_t* row) {
    constexpr uint32_t kEveryOther = 0x00FF00FF;
    uint32_t four = 0;
    __builtin_memcpy(&four, row, sizeof(four));
    const uint32_t sums = (four & kEveryOther) + (four >> 8 & kEveryOther);
    return static_cast<uint8_t>(((sums >> 16) + (sums & 0xFFFF) + 2) >> 2);
  }
};

template <uint32_t... kWeights>
struct Weighted {
  static constexpr size_t kCount = sizeof...(kWeights);
  static constexpr uint32_t kAll[] = {kWeights...};

  template <typename Sample>
  static Sample Down(const Sample* const* rows, size_t x) {
    Lane<Sample> sum = 128;
    for (size_t i = 0; i < kCount; ++i) {
      sum = static_cast<Lane<Sample>>(sum + kAll[i] * rows[i][x]);
    }
    return static_cast<Sample>(sum >> 8);
  }
  template <typename Sample>
  static Sample Along(const Sample* row) {
    Lane<Sample> sum = 128;
    for (size_t i = 0; i < kCount; ++i) {
      sum = static_cast<Lane<Sample>>(sum + kAll[i] * row[i]);
    }
    return static_cast<Sample>(sum >> 8);
  }
};
using Thirds = Weighted<85, 85, 86>;
using Sixths = Weighted<42, 43, 43, 42, 43, 43>;

// Target samples made together: the samples between the passes stay in the
// cache, and with a constant count both loops unroll.
constexpr size_t kStretch = 64;

template <typename Part, typename Sample>
[[gnu::always_inline]] inline void ReduceStretch(const Sample* const* rows,
                                                 size_t count,
                                                 Sample* __restrict out) {
  Sample combined[kStretch * Part::kCount];
  for (size_t x = 0; x < count * Part::kCount; ++x) {
    combined[x] = Part::Down(rows, x);
  }
  for (size_t x = 0; x < count; ++x) {
    out[x] = Part::Along(combined + x * Part::kCount);
  }
}

template <typename Part, typename Sample>
void Reduce(const Sample* const* rows, size_t count, Sample* out) {
  const Sample* at[Part::kCount];
  for (size_t i = 0; i < Part::kCount; ++i) at[i] = rows[i];
  for (; count >= kStretch; count -= kStretch, out += kStretch) {
    ReduceStretch<Part>(at, kStretch, out);
    for (const Sample*& row : at) row += kStretch * Part::kCount;
  }
  ReduceStretch<Part>(at, count, out);
}

template <typename Part, typename Sample>
constexpr typename ReduceKernels<Sample>::Reduce kReduce = Reduce<Part, Sample>;

#ifdef __AVX2__
// Compilers do not find the instructions that add adjacent samples, with which
// halves take four fifths of the time, and quarters two thirds. Rows are loaded
// by the instruction that they do not repeat for each use.
inline __m256i Load(const uint8_t* row) {
  return _mm256_lddqu_si256(reinterpret_cast<const __m256i*>(row));
}

// The second pass's sums of two samples, in 16-bit lanes.
inline __m256i PairSums(__m256i combined) {
  return _mm256_maddubs_epi16(combined, _mm256_set1_epi8(1));
}

// Means of the second pass, in 16-bit lanes, of as many samples as one store
// takes; the two halves of each vector are in turn.
inline __m256i Means(Halves, const uint8_t* const* rows, size_t x) {
  const auto mean = [&](size_t at) {
    const __m256i down =
        _mm256_avg_epu8(Load(rows[0] + at), Load(rows[1] + at));
    return _mm256_avg_epu16(PairSums(down), _mm256_setzero_si256());
  };
  return _mm256_permute4x64_epi64(_mm256_packus_epi16(mean(x), mean(x + 32)),
                                  0xD8);
}
inline __m256i Means(Quarters, const uint8_t* const* rows, size_t x) {
  const auto sum = [&](size_t at) {
    const __m256i a = Load(rows[0] + at), b = Load(rows[1] + at);
    const __m256i c = Load(rows[2] + at), d = Load(rows[3] + at);
    const __m256i ab = _mm256_avg_epu8(a, b), cd = _mm256_avg_epu8(c, d);
    const __m256i odd =
        _mm256_or_si256(_mm256_xor_si256(a, b), _mm256_xor_si256(c, d));
    const __m256i excess = _mm256_and_si256(
        _mm256_and_si256(odd, _mm256_xor_si256(ab, cd)), _mm256_set1_epi8(1));
    const __m256i down = _mm256_sub_epi8(_mm256_avg_epu8(ab, cd), excess);
    return _mm256_madd_epi16(PairSums(down), _mm256_set1_epi16(1));
  };
  const auto means = [&](size_t at) {
    const __m256i sums = _mm256_packus_epi32(sum(at), sum(at + 32));
    // A product by 1/4 in 15 bits, rounded to nearest.
    return _mm256_mulhrs_epi16(sums, _mm256_set1_epi16(1 << 13));
  };
  return _mm256_permutevar8x32_epi32(
      _mm256_packus_epi16(means(x), means(x + 64)),
      _mm256_setr_epi32(0, 4, 1, 5, 2, 6, 3, 7));
}

template <typename Part>
void ReduceBytes(const uint8_t* const* rows, size_t count,
                 uint8_t* __restrict out) {
  constexpr size_t kStore = 32;
  size_t x = 0;
  for (; x + kStore <= count; x += kStore) {
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(out + x),
                        Means(Part(), rows, Part::kCount * x));
  }
  if (x == count) return;
  const uint8_t* at[Part::kCount];
  for (size_t i = 0; i < Part::kCount; ++i) at[i] = rows[i] + Part::kCount * x;
  ReduceStretch<Part>(at, count - x, out + x);
}
template <>
constexpr ReduceKernels<uint8_t>::Reduce kReduce<Halves, uint8_t> =
    ReduceBytes<Halves>;
template <>
constexpr ReduceKernels<uint8_t>::Reduce kReduce<Quarters, uint8_t> =
    ReduceBytes<Quarters>;
#endif

// The means of all three adjacent samples, of which every third is wanted: few
// sets can load every third sample, each can load adjacent ones.
template <typename Sample>
void ThirdsAlong(const Lane<Sample>* row, size_t count,
                 Sample* __restrict out) {
  for (size_t begin = 0; begin < count; begin += kStretch) {
    const size_t some = count - begin < kStretch ? count - begin : kStretch;
    Sample means[3 * kStretch];
    for (size_t x = 0; x + 2 < 3 * some; ++x) {
      means[x] = static_cast<Sample>(
          static_cast<Lane<Sample>>(85U * row[x] + 85U * row[x + 1] +
                                    86U * row[x + 2] + 128) >>
          8);
    }
    for (size_t x = 0; x < some; ++x) out[x] = means[3 * x];
    row += 3 * kStretch;
    out += kStretch;
  }
}

template <typename Sample>
constexpr ReduceKernels<Sample> kKernels = {
    kReduce<Halves, Sample>, kReduce<Thirds, Sample>, kReduce<Quarters, Sample>,
    kReduce<Sixths, Sample>, ThirdsAlong<Sample>};

}  // namespace

template <>
const ReduceKernels<uint8_t>&
KernelsOf<ReduceKernels<uint8_t>, kCompiledSet>() {
  return kKernels<uint8_t>;
}
template <>
const ReduceKernels<uint16_t>&
KernelsOf<ReduceKernels<uint16_t>, kCompiledSet>() {
  return kKernels<uint16_t>;
}

}  // namespace zuqel
// NOLINTEND(modernize-avoid-c-arrays,clang-analyzer-core.*)
