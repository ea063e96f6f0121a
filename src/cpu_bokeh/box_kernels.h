// 3 x 3 box blurs, row by row.
#ifndef ZUQEL_CPU_BOKEH_BOX_KERNELS_H_
#define ZUQEL_CPU_BOKEH_BOX_KERNELS_H_

#include <cstddef>
#include <cstdint>

namespace zuqel {

// Two passes, each giving floor((a + b + c) / 3). A row between them is in
// 16-bit lanes, in blocks: of kBlock samples those at even places, then those
// at odd ones. So neither pass moves samples between lanes.
struct BoxKernels {
  static constexpr int32_t kBlock = 32;

  // How many lanes a row takes. A part of it that begins with a block has its
  // lanes from there on. Of the widest rows, none of which fits a plane, it is
  // too many for any buffer.
  static constexpr int32_t Lanes(int32_t width) {
    constexpr int32_t kWidest = INT32_MAX - kBlock;
    return ((width < kWidest ? width : kWidest) + kBlock - 1) / kBlock * kBlock;
  }

  // Of each sample and its neighbours in a row: sample i is that of row[i],
  // row[i + 1] and row[i + 2].
  void (*along)(const uint8_t* row, size_t count, uint16_t* out);
  // Of three rows.
  void (*down)(const uint16_t* above, const uint16_t* row,
               const uint16_t* below, size_t count, uint8_t* out);

  // Both at once: `along` of a row, whose lanes come in place of those of the
  // highest of three, and `down` of the three. `next` is where the next row is
  // read and written.
  struct Rows {
    const uint8_t* in;
    uint8_t* out;
  };
  void (*both)(const uint8_t* in, size_t count, uint16_t* highest,
               const uint16_t* middle, uint8_t* out, Rows next);
};

}  // namespace zuqel

#endif  // ZUQEL_CPU_BOKEH_BOX_KERNELS_H_
