// Compilers do not turn loops over pixels into the instructions that gather a
// bit of each byte, or permute labels; those are called by name. In their place
// there would be a multiplication for each eight pixels, and a load for each.
#include "depth/labelling/mask_kernels.h"

#include <array>

#include "base/kernel_set.h"

#if defined(__AVX2__)
#include <immintrin.h>
#elif defined(__SSE2__)
#include <emmintrin.h>
#elif defined(__ARM_NEON)
#include <arm_neon.h>
#endif

namespace zuqel {
namespace {

#if defined(__AVX2__)
constexpr size_t kVector = 32;
using Vector = __m256i;

inline Vector Load(const uint8_t* pixels) {
  return _mm256_loadu_si256(reinterpret_cast<const Vector*>(pixels));
}
inline uint64_t WhereEqual(Vector pixels, char value) {
  return static_cast<uint32_t>(
      _mm256_movemask_epi8(_mm256_cmpeq_epi8(pixels, _mm256_set1_epi8(value))));
}
inline void Keep(const uint8_t* in, uint64_t bits, uint8_t* out) {
  const Vector places =
      _mm256_set1_epi64x(static_cast<int64_t>(0x8040201008040201U));
  const Vector bytes = _mm256_setr_epi64x(
      0, 0x0101010101010101, 0x0202020202020202, 0x0303030303030303);
  const Vector all = _mm256_set1_epi32(static_cast<int32_t>(bits));
  const Vector bit = _mm256_and_si256(_mm256_shuffle_epi8(all, bytes), places);
  const Vector kept =
      _mm256_and_si256(Load(in), _mm256_cmpeq_epi8(bit, places));
  _mm256_storeu_si256(reinterpret_cast<Vector*>(out), kept);
}
#elif defined(__SSE2__)
constexpr size_t kVector = 16;
using Vector = __m128i;

inline Vector Load(const uint8_t* pixels) {
  return _mm_loadu_si128(reinterpret_cast<const Vector*>(pixels));
}
inline uint64_t WhereEqual(Vector pixels, char value) {
  return static_cast<uint32_t>(
      _mm_movemask_epi8(_mm_cmpeq_epi8(pixels, _mm_set1_epi8(value))));
}
inline void Keep(const uint8_t* in, uint64_t bits, uint8_t* out) {
  const Vector places =
      _mm_set1_epi64x(static_cast<int64_t>(0x8040201008040201U));
  // Two bytes: each twice, then four times, then eight.
  Vector all = _mm_cvtsi32_si128(static_cast<int32_t>(bits));
  all = _mm_unpacklo_epi8(all, all);
  all = _mm_shuffle_epi32(_mm_shufflelo_epi16(all, 0x50), 0x50);
  const Vector kept = _mm_and_si128(
      Load(in), _mm_cmpeq_epi8(_mm_and_si128(all, places), places));
  _mm_storeu_si128(reinterpret_cast<Vector*>(out), kept);
}
#elif defined(__ARM_NEON)
constexpr size_t kVector = 64;
using Vector = uint8x16x4_t;

inline Vector Load(const uint8_t* pixels) {
  return {vld1q_u8(pixels), vld1q_u8(pixels + 16), vld1q_u8(pixels + 32),
          vld1q_u8(pixels + 48)};
}
inline uint64_t WhereEqual(const Vector& pixels, char value) {
  const uint8x16_t wanted = vdupq_n_u8(static_cast<uint8_t>(value));
  const uint8x16_t places =
      vreinterpretq_u8_u64(vdupq_n_u64(0x8040201008040201U));
  const auto bits = [&](int part) {
    return vandq_u8(vceqq_u8(pixels.val[part], wanted), places);
  };
  const uint8x16_t sums =
      vpaddq_u8(vpaddq_u8(bits(0), bits(1)), vpaddq_u8(bits(2), bits(3)));
  return vgetq_lane_u64(vreinterpretq_u64_u8(vpaddq_u8(sums, sums)), 0);
}
inline void Keep(const uint8_t* in, uint64_t bits, uint8_t* out) {
  const uint8x16_t places =
      vreinterpretq_u8_u64(vdupq_n_u64(0x8040201008040201U));
  const Vector pixels = Load(in);
  for (int part = 0; part < 4; ++part) {
    const auto bytes = static_cast<uint16_t>(bits >> 16 * part);
    const uint8x16_t all =
        vcombine_u8(vdup_n_u8(static_cast<uint8_t>(bytes)),
                    vdup_n_u8(static_cast<uint8_t>(bytes >> 8)));
    vst1q_u8(out + 16 * part,
             vandq_u8(pixels.val[part], vtstq_u8(all, places)));
  }
}
#else
constexpr size_t kVector = 1;
using Vector = uint8_t;

inline Vector Load(const uint8_t* pixel) {
  return *pixel;
}
inline uint64_t WhereEqual(Vector pixel, char value) {
  return pixel == static_cast<uint8_t>(value) ? 1 : 0;
}
inline void Keep(const uint8_t* in, uint64_t bits, uint8_t* out) {
  *out = (bits & 1) != 0 ? *in : 0;
}
#endif

using WholeWord [[gnu::vector_size(kWordBits)]] = uint8_t;

inline void FindWord(const uint8_t* pixels, uint64_t* set, uint64_t* others) {
  uint64_t is_set = 0, is_clear = 0;
  for (size_t i = 0; i < kWordBits; i += kVector) {
    const Vector vector = Load(pixels + i);
    is_set |= WhereEqual(vector, static_cast<char>(255)) << i;
    is_clear |= WhereEqual(vector, 0) << i;
  }
  *set = is_set;
  *others = ~(is_set | is_clear);
}

bool FindBits(const uint8_t* pixels, size_t count, uint64_t* set,
              uint64_t* others) {
  uint64_t any_other = 0;
  for (; count >= kWordBits; count -= kWordBits, pixels += kWordBits) {
    FindWord(pixels, set++, others);
    any_other |= *others++;
  }
  if (count > 0) {
    WholeWord rest = {};
    __builtin_memcpy(&rest, pixels, count);
    FindWord(reinterpret_cast<const uint8_t*>(&rest), set, others);
    any_other |= *others;
  }
  return any_other != 0;
}

void KeepPixels(const uint8_t* in, const uint64_t* kept, size_t count,
                uint8_t* out) {
  for (; count >= kWordBits; count -= kWordBits, ++kept) {
    for (size_t i = 0; i < kWordBits; i += kVector) {
      Keep(in + i, *kept >> i, out + i);
    }
    in += kWordBits;
    out += kWordBits;
  }
  for (size_t i = 0; i < count; ++i) {
    out[i] = (*kept >> i & 1) != 0 ? in[i] : 0;
  }
}

// For eight bits: how many are set up to and with each of them, a byte each.
consteval std::array<uint64_t, 256> MakeCounts() {
  std::array<uint64_t, 256> counts = {};
  for (uint32_t bits = 0; bits < 256; ++bits) {
    uint64_t count = 0;
    for (uint32_t i = 0; i < 8; ++i) {
      count += bits >> i & 1;
      counts.at(bits) |= count << 8 * i;
    }
  }
  return counts;
}
constexpr std::array<uint64_t, 256> kCountTable = MakeCounts();
// A function of the array would be shared with other files.
constexpr const uint64_t* kCounts = kCountTable.data();

using FourLabels [[gnu::vector_size(16)]] = uint32_t;
using EightLabels [[gnu::vector_size(32)]] = uint32_t;

// `run_labels` begins with that of the run that goes on.
inline void PaintEight(uint8_t set, uint8_t starts, const uint32_t* run_labels,
                       uint32_t* out) {
#if defined(__AVX2__)
  // A start next to another may be the ninth label.
  if ((starts & starts << 1) == 0) {
    const __m256i places = _mm256_setr_epi32(1, 2, 4, 8, 16, 32, 64, 128);
    const __m256i labels =
        _mm256_loadu_si256(reinterpret_cast<const __m256i*>(run_labels));
    const __m256i runs = _mm256_cvtepu8_epi32(
        _mm_loadl_epi64(reinterpret_cast<const __m128i*>(kCounts + starts)));
    const __m256i is_set = _mm256_cmpeq_epi32(
        _mm256_and_si256(_mm256_set1_epi32(set), places), places);
    _mm256_storeu_si256(
        reinterpret_cast<__m256i*>(out),
        _mm256_and_si256(_mm256_permutevar8x32_epi32(labels, runs), is_set));
    return;
  }
#endif
  for (size_t i = 0; i < 8; i += 4) {
    const uint64_t runs = kCounts[starts] >> 8 * i;
    const FourLabels labels = {
        run_labels[runs & 0xFF], run_labels[runs >> 8 & 0xFF],
        run_labels[runs >> 16 & 0xFF], run_labels[runs >> 24 & 0xFF]};
    const FourLabels places = FourLabels{1, 2, 4, 8}
                              << static_cast<uint32_t>(i);
    const FourLabels bits = (FourLabels{} + set) & places;
    const FourLabels painted = bits == places ? labels : FourLabels{};
    __builtin_memcpy(out + i, &painted, sizeof(painted));
  }
}

void PaintLabels(const uint64_t* set, const uint64_t* starts, size_t count,
                 const uint32_t* run_labels, uint32_t* out) {
  for (; count >= kWordBits; count -= kWordBits, out += kWordBits) {
    const uint64_t pixels = *set++, begun = *starts++;
    if (begun == 0 && (pixels == 0 || pixels == ~uint64_t{0})) {
      const uint32_t label = pixels == 0 ? 0 : *run_labels;
      for (size_t i = 0; i < kWordBits; ++i) out[i] = label;
      continue;
    }
    for (size_t i = 0; i < kWordBits; i += 8) {
      const auto eight = static_cast<uint8_t>(begun >> i);
      PaintEight(static_cast<uint8_t>(pixels >> i), eight, run_labels, out + i);
      run_labels += kCounts[eight] >> 56;
    }
  }
  for (size_t i = 0; i < count; i += 8) {
    EightLabels labels;
    const auto eight = static_cast<uint8_t>(*starts >> i);
    PaintEight(static_cast<uint8_t>(*set >> i), eight, run_labels,
               reinterpret_cast<uint32_t*>(&labels));
    run_labels += kCounts[eight] >> 56;
    for (size_t j = 0; j < 8 && i + j < count; ++j) out[i + j] = labels[j];
  }
}

constexpr MaskKernels kKernels = {FindBits, KeepPixels, PaintLabels};

}  // namespace

template <>
const MaskKernels& KernelsOf<MaskKernels, kCompiledSet>() {
  return kKernels;
}

}  // namespace zuqel
