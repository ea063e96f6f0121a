// Rows of the conversions between planes and RGBA pixels.
#ifndef ZUQEL_RENDER_PLANE_CONVERSION_KERNELS_H_
#define ZUQEL_RENDER_PLANE_CONVERSION_KERNELS_H_

#include <cstddef>
#include <cstdint>

namespace zuqel {

// A pixel is one word, R in the low byte. Inputs and outputs do not overlap.
struct PlaneConversionKernels {
  // Each value in the low bytes of a pixel; `high` gives the others.
  void (*widen_bytes)(const uint8_t* bytes, size_t count, uint32_t high,
                      uint32_t* rgba);
  void (*widen_words)(const uint16_t* words, size_t count, uint32_t* rgba);
  // Blocks of four pixels that share the first two of four chroma bytes, V then
  // U, into (Y, U, V, 255).
  void (*pack_blocks)(const uint8_t* luma, const uint8_t* chroma, size_t blocks,
                      uint32_t* rgba);

  // R of each pixel.
  void (*keep_red)(const uint32_t* rgba, size_t count, uint8_t* bytes);
  // B and G of the second pixel of each pair: in turn, or to a plane each.
  void (*unpack_pairs)(const uint32_t* rgba, size_t pairs, uint8_t* chroma);
  void (*unpack_planes)(const uint32_t* rgba, size_t pairs, uint8_t* u,
                        uint8_t* v);
  // B and G of the last pixel of each block of four, into the first two of four
  // chroma bytes; the others stay.
  void (*unpack_blocks)(const uint32_t* rgba, size_t blocks, uint8_t* chroma);
};

}  // namespace zuqel

#endif  // ZUQEL_RENDER_PLANE_CONVERSION_KERNELS_H_
