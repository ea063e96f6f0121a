// Deinterleaves and interleaves.
#include "cpu_bokeh/chroma_kernels.h"

#include "base/byte_pairs.h"
#include "base/kernel_set.h"

namespace zuqel {
namespace {

void SplitPairs(const uint8_t* vu, size_t count, uint8_t* __restrict u,
                uint8_t* __restrict v) {
  for (size_t i = 0; i < count; ++i) {
    const uint16_t pair = LoadPair(vu + 2 * i);
    v[i] = static_cast<uint8_t>(First(pair));
    u[i] = static_cast<uint8_t>(Second(pair));
  }
}

void JoinPairs(const uint8_t* u, const uint8_t* v, size_t count,
               uint8_t* __restrict vu) {
  for (size_t i = 0; i < count; ++i) {
    vu[2 * i] = v[i];
    vu[2 * i + 1] = u[i];
  }
}

constexpr ChromaKernels kKernels = {SplitPairs, JoinPairs};

}  // namespace

template <>
const ChromaKernels& KernelsOf<ChromaKernels, kCompiledSet>() {
  return kKernels;
}

}  // namespace zuqel
