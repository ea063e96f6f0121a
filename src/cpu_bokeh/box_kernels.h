// 3 x 3 box blurs, row by row.
#ifndef ZUQEL_CPU_BOKEH_BOX_KERNELS_H_
#define ZUQEL_CPU_BOKEH_BOX_KERNELS_H_

#include <cstddef>
#include <cstdint>

namespace zuqel {

// Both give floor((a + b + c) / 3) of bytes.
struct BoxKernels {
  // Of each sample and its neighbours in a row: of row[i], row[i + 1] and
  // row[i + 2] in out[i].
  void (*along)(const uint8_t* row, size_t count, uint8_t* out);
  // Of three rows. `out` may be none of them.
  void (*down)(const uint8_t* above, const uint8_t* row, const uint8_t* below,
               size_t count, uint8_t* out);
};

}  // namespace zuqel

#endif  // ZUQEL_CPU_BOKEH_BOX_KERNELS_H_
