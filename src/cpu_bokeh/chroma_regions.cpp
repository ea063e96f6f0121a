// Deinterleaves and interleaves chroma.
#include "cpu_bokeh/chroma_regions.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

#include "base/kernel_set.h"
#include "cpu_bokeh/chroma_kernels.h"

namespace zuqel {
namespace {

// Fills the region after the packed rows. Without any it is zeroed, since it
// still holds another frame.
void RepeatLastRow(size_t row, size_t rows, Plane<uint8_t> region) {
  if (row == 0 || rows == 0) {
    std::fill_n(region.data, region.size(), uint8_t{0});
    return;
  }
  // Doubles what is there already: from the last row on, each byte equals the
  // one a row before it.
  for (size_t i = row * rows; i < region.size();) {
    const size_t count = std::min(i - row * (rows - 1), region.size() - i);
    std::memcpy(region.data + i, region.data + row * (rows - 1), count);
    i += count;
  }
}

}  // namespace

void SplitChroma(std::span<const uint8_t> vu, const ChromaRegions& regions) {
  const auto width = static_cast<size_t>(regions.u.width);
  const auto rows = static_cast<size_t>(regions.u.height / 2);
  const size_t half = width / 2;
  const auto split = Kernels<ChromaKernels>().split;
  if (width % 2 == 0) {
    split(vu.data(), half * rows, regions.u.data, regions.v.data);
  } else {
    for (size_t y = 0; y < rows; ++y) {
      split(vu.data() + y * width, half, regions.u.data + y * half,
            regions.v.data + y * half);
    }
  }
  RepeatLastRow(half, rows, regions.u);
  RepeatLastRow(half, rows, regions.v);
  if (width % 2 == 0 || rows == 0) return;
  // The U of the very last pair would lie outside.
  regions.v.data[half * rows] = vu.back();
  regions.u.data[half * rows] = 0;
}

int32_t RowsInUse(int32_t width, int32_t height) {
  if (width == 0 || height == 0) return 0;
  const int64_t last =
      (width - 1) / 2 + int64_t{width} * ((height - 1) / 2) / 2;
  return static_cast<int32_t>(last / width) + 1;
}

void JoinChroma(const ChromaRegions& regions, std::span<uint8_t> vu) {
  const auto width = static_cast<size_t>(regions.u.width);
  const auto height = static_cast<size_t>(regions.u.height);
  if (width % 2 == 0) {
    Kernels<ChromaKernels>().join(regions.u.data, regions.v.data, vu.size() / 2,
                                  vu.data());
    return;
  }
  for (size_t y = 0; 2 * y < height; ++y) {
    for (size_t x = 0; 2 * x < width; ++x) {
      const size_t from = x + width * y / 2;
      const size_t to = width * y + 2 * x;
      if (to < vu.size()) vu[to] = regions.v.data[from];
      if (to + 1 < vu.size()) vu[to + 1] = regions.u.data[from];
    }
  }
}

int32_t ChromaRowCount(ImageSize frame) {
  return (frame.height / 2 + 1) / 2;
}

void SplitChromaRow(std::span<const uint8_t> vu, ImageSize frame, int32_t y,
                    uint8_t* u, uint8_t* v) {
  const auto width = static_cast<size_t>(frame.width);
  const auto rows = static_cast<size_t>(frame.height / 2);
  if (rows == 0) {
    std::fill_n(u, width, uint8_t{0});
    std::fill_n(v, width, uint8_t{0});
    return;
  }
  const auto split = Kernels<ChromaKernels>().split;
  const size_t half = width / 2;
  for (size_t i = 0; i < 2; ++i) {
    const size_t row = std::min(2 * static_cast<size_t>(y) + i, rows - 1);
    split(vu.data() + row * width, half, u + i * half, v + i * half);
  }
}

void JoinChromaRow(const uint8_t* u, const uint8_t* v, ImageSize frame,
                   int32_t y, std::span<uint8_t> vu) {
  const auto width = static_cast<size_t>(frame.width);
  const size_t begin = 2 * width * static_cast<size_t>(y);
  const size_t pairs = std::min(2 * width, vu.size() - begin) / 2;
  Kernels<ChromaKernels>().join(u, v, pairs, vu.data() + begin);
}

}  // namespace zuqel
