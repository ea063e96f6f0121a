// Chroma as the CPU render path works on it.
#ifndef ZUQEL_CPU_BOKEH_CHROMA_REGIONS_H_
#define ZUQEL_CPU_BOKEH_CHROMA_REGIONS_H_

#include <cstdint>
#include <span>

#include "base/plane.h"

namespace zuqel {

// U and V, each in a region of the frame's size: rows of half the frame's width
// are packed at its start, and everything behind repeats the last of them. All
// steps take a region for a plane of the frame's size, so that a row of it
// holds two rows of chroma.
struct ChromaRegions {
  Plane<uint8_t> u;
  Plane<uint8_t> v;
};

// Takes the pairs of V and U of width x (height / 2) bytes apart. Positions are
// linear indices: of an odd width, the last pair of a row belongs to the first
// one of the next row, too, and is packed in that one's place. The last row's
// stands right behind the packed rows, its U is 0.
void SplitChroma(std::span<const uint8_t> vu, const ChromaRegions& regions);

// Rows of a region that JoinChroma reads.
int32_t RowsInUse(int32_t width, int32_t height);

// Puts the pairs together again; what would lie outside is left out.
void JoinChroma(const ChromaRegions& regions, std::span<uint8_t> vu);

}  // namespace zuqel

#endif  // ZUQEL_CPU_BOKEH_CHROMA_REGIONS_H_
