// Conversions between the caller's planes and RGBA pixels. A pixel is one
// 32-bit word, R in the low byte. Nothing here knows GL.
#ifndef ZUQEL_RENDER_PLANE_CONVERSION_H_
#define ZUQEL_RENDER_PLANE_CONVERSION_H_

#include <cstdint>
#include <span>

#include "base/plane.h"

namespace zuqel {

// Layouts of the chroma plane; every other value means a ready packed frame,
// written back like NV21.
inline constexpr int32_t kFormatNv21 = 0;
inline constexpr int32_t kFormatPlanar = 2;
inline constexpr int32_t kFormatPacked = 7;

// A frame in the caller's memory. `chroma` is width x (height / 2) bytes.
// Chroma positions are linear indices: one past a row's end is in the next row,
// one outside the buffer reads 0 and is not written.
struct Frame {
  Plane<uint8_t> luma;
  std::span<uint8_t> chroma;
};

// Weight w becomes (w, 0, 0, 128). `rgba` has room for all of them.
void PackWeights(Plane<const uint8_t> weights, std::span<uint32_t> rgba);

// Depth d becomes (low byte, high byte, 0, 0).
void PackDepth(Plane<const uint16_t> depth, std::span<uint32_t> rgba);

// Byte b becomes (b, 0, 0, 0).
void PackRefocusMap(Plane<const uint8_t> map, std::span<uint32_t> rgba);

// Writes the R byte of each pixel; `bytes` has room for as many.
void KeepRed(std::span<const uint32_t> rgba, uint8_t* bytes);

// Packs a frame of kFormatPacked into (Y, U, V, 255): four by four pixels share
// the first two of four chroma bytes, V then U.
void PackFrame(const Frame& frame, std::span<uint32_t> rgba);

// Writes pixels of (Y, U, V, any) into the frame. Of the pixels that share a
// chroma sample the last one in raster order gives it.
void UnpackFrame(std::span<const uint32_t> rgba, int32_t source_format,
                 const Frame& frame);

}  // namespace zuqel

#endif  // ZUQEL_RENDER_PLANE_CONVERSION_H_
