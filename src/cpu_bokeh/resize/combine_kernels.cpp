// Sums rows.
#include "cpu_bokeh/resize/combine_kernels.h"

#include "base/kernel_set.h"

// Arrays of the language: functions of std::array would be shared with files
// that are compiled for other sets.
// NOLINTBEGIN(modernize-avoid-c-arrays)
namespace zuqel {
namespace {

template <size_t kCount, typename Sample>
void Combine(const Sample* const* rows, const uint16_t* weights, size_t count,
             Lane<Sample>* __restrict out) {
  const Sample* at[kCount];
  uint32_t weight[kCount];
  for (size_t i = 0; i < kCount; ++i) {
    at[i] = rows[i];
    weight[i] = weights[i];
  }
  for (size_t x = 0; x < count; ++x) {
    uint32_t sum = 128;
    for (size_t i = 0; i < kCount; ++i) sum += weight[i] * at[i][x];
    const auto narrow = static_cast<Lane<Sample>>(sum);
    out[x] = static_cast<Lane<Sample>>(narrow >> 8);
  }
}

template <typename Sample>
void Widen(const Sample* const* rows, const uint16_t*, size_t count,
           Lane<Sample>* __restrict out) {
  const Sample* row = rows[0];
  for (size_t x = 0; x < count; ++x) out[x] = row[x];
}

template <typename Sample>
void Add(const Sample* row, uint32_t weight, size_t count,
         Lane<Sample>* __restrict sums) {
  for (size_t x = 0; x < count; ++x) {
    sums[x] = static_cast<Lane<Sample>>(sums[x] + weight * row[x]);
  }
}

template <typename Lanes>
void Round(size_t count, Lanes* sums) {
  for (size_t x = 0; x < count; ++x) {
    sums[x] = static_cast<Lanes>(sums[x] >> 8);
  }
}

template <typename Sample>
constexpr CombineKernels<Sample> kKernels = {
    Widen<Sample>,      Combine<2, Sample>, Combine<3, Sample>,
    Combine<4, Sample>, Add<Sample>,        Round<Lane<Sample>>};

}  // namespace

template <>
const CombineKernels<uint8_t>&
KernelsOf<CombineKernels<uint8_t>, kCompiledSet>() {
  return kKernels<uint8_t>;
}
template <>
const CombineKernels<uint16_t>&
KernelsOf<CombineKernels<uint16_t>, kCompiledSet>() {
  return kKernels<uint16_t>;
}

}  // namespace zuqel
// NOLINTEND(modernize-avoid-c-arrays)
