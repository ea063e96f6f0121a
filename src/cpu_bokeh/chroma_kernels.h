// Chroma pairs, row by row.
#ifndef ZUQEL_CPU_BOKEH_CHROMA_KERNELS_H_
#define ZUQEL_CPU_BOKEH_CHROMA_KERNELS_H_

#include <cstddef>
#include <cstdint>

namespace zuqel {

// `count` pairs of V and U.
struct ChromaKernels {
  void (*split)(const uint8_t* vu, size_t count, uint8_t* u, uint8_t* v);
  void (*join)(const uint8_t* u, const uint8_t* v, size_t count, uint8_t* vu);
};

}  // namespace zuqel

#endif  // ZUQEL_CPU_BOKEH_CHROMA_KERNELS_H_
