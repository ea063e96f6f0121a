// Chroma as the CPU render path works on it.
#ifndef ZUQEL_CPU_BOKEH_CHROMA_REGIONS_H_
#define ZUQEL_CPU_BOKEH_CHROMA_REGIONS_H_

#include <cstdint>
#include <span>

#include "base/plane.h"

namespace zuqel {

// U and V, each in a region of the frame's size: rows of half the frame's width
// are packed at its start, and the last of them is repeated to its end. All
// steps treat a region as a plane of the frame's size, so that one of its rows
// holds two rows of chroma.
struct ChromaRegions {
  Plane<uint8_t> u;
  Plane<uint8_t> v;
};

// Deinterleaves the pairs of V and U, width x (height / 2) bytes. Positions are
// linear indices: if the width is odd, the last pair of a row ends with the
// first byte of the next row, whose first pair is packed in its place. The one
// of the last row comes right after the packed rows, with a U of 0.
void SplitChroma(std::span<const uint8_t> vu, const ChromaRegions& regions);

// The number of rows of a region that JoinChroma reads.
int32_t RowsInUse(int32_t width, int32_t height);

// Interleaves the pairs again; bytes that would lie outside are dropped.
void JoinChroma(const ChromaRegions& regions, std::span<uint8_t> vu);

// The same a row of the regions at a time, for frames of an even width: a row
// is two rows of chroma, or the last one twice.
void SplitChromaRow(std::span<const uint8_t> vu, ImageSize frame, int32_t y,
                    uint8_t* u, uint8_t* v);
void JoinChromaRow(const uint8_t* u, const uint8_t* v, ImageSize frame,
                   int32_t y, std::span<uint8_t> vu);
// The rows that are not the last row of chroma again and again.
int32_t ChromaRowCount(ImageSize frame);

}  // namespace zuqel

#endif  // ZUQEL_CPU_BOKEH_CHROMA_REGIONS_H_
