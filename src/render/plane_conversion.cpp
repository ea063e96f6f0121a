// Walks the rows of planes and RGBA pixels.
#include "render/plane_conversion.h"

#include <cstddef>

#include "base/kernel_set.h"
#include "render/plane_conversion_kernels.h"

namespace zuqel {
namespace {

constexpr uint32_t kWeightAlpha = 128U << 24;
constexpr uint32_t kOpaque = 255U << 24;

uint8_t Green(uint32_t pixel) {
  return static_cast<uint8_t>(pixel >> 8);
}
uint8_t Blue(uint32_t pixel) {
  return static_cast<uint8_t>(pixel >> 16);
}

uint32_t ReadOrZero(std::span<const uint8_t> bytes, size_t index) {
  return index < bytes.size() ? bytes[index] : 0;
}

void WriteInside(std::span<uint8_t> bytes, size_t index, uint8_t value) {
  if (index < bytes.size()) bytes[index] = value;
}

uint32_t PackedChroma(uint32_t u, uint32_t v) {
  return u << 8 | v << 16 | kOpaque;
}

// Where the chroma sample of a pixel lies.
struct ChromaIndex {
  size_t u;
  size_t v;
};

ChromaIndex ChromaOf(size_t x, size_t y, size_t width, size_t height,
                     int32_t source_format) {
  if (source_format == kFormatPlanar) {
    const size_t index = x / 2 + width / 2 * (y / 2);
    return {index + width / 2 * (height / 2), index};
  }
  const size_t block = source_format == kFormatPacked ? 4 : 2;
  const size_t index = x / block * block + width * (y / block);
  return {index + 1, index};
}

// Any size: each pixel in raster order writes its block's sample, so that where
// indices of an odd size run into one another the last one stays.
void UnpackChroma(std::span<const uint32_t> rgba, int32_t source_format,
                  const Frame& frame) {
  const auto width = static_cast<size_t>(frame.luma.width);
  const auto height = static_cast<size_t>(frame.luma.height);
  for (size_t y = 0; y < height; ++y) {
    for (size_t x = 0; x < width; ++x) {
      const uint32_t pixel = rgba[x + width * y];
      const ChromaIndex at = ChromaOf(x, y, width, height, source_format);
      WriteInside(frame.chroma, at.u, Green(pixel));
      WriteInside(frame.chroma, at.v, Blue(pixel));
    }
  }
}

// Rows of blocks: the last pixel of each gives its chroma, from a row that was
// just read for its luma.
void UnpackWholeBlocks(std::span<const uint32_t> rgba, int32_t source_format,
                       const Frame& frame) {
  const auto& kernels = Kernels<PlaneConversionKernels>();
  const auto width = static_cast<size_t>(frame.luma.width);
  const auto height = static_cast<size_t>(frame.luma.height);
  const size_t block = source_format == kFormatPacked ? 4 : 2;
  uint8_t* chroma = frame.chroma.data();
  for (size_t row = 0; row < height / block; ++row) {
    const size_t first = row * block * width;
    kernels.keep_red(&rgba[first], block * width, frame.luma.data + first);
    const uint32_t* last_row = &rgba[first + (block - 1) * width];
    if (source_format == kFormatPlanar) {
      uint8_t* v_row = chroma + row * (width / 2);
      kernels.unpack_planes(last_row, width / 2,
                            v_row + (width / 2) * (height / 2), v_row);
    } else if (source_format == kFormatPacked) {
      kernels.unpack_blocks(last_row, width / 4, chroma + row * width);
    } else {
      kernels.unpack_pairs(last_row, width / 2, chroma + row * width);
    }
  }
}

}  // namespace

void PackWeights(Plane<const uint8_t> weights, std::span<uint32_t> rgba) {
  Kernels<PlaneConversionKernels>().widen_bytes(weights.data, weights.size(),
                                                kWeightAlpha, rgba.data());
}

void PackDepth(Plane<const uint16_t> depth, std::span<uint32_t> rgba) {
  Kernels<PlaneConversionKernels>().widen_words(depth.data, depth.size(),
                                                rgba.data());
}

void PackRefocusMap(Plane<const uint8_t> map, std::span<uint32_t> rgba) {
  Kernels<PlaneConversionKernels>().widen_bytes(map.data, map.size(), 0,
                                                rgba.data());
}

void KeepRed(std::span<const uint32_t> rgba, uint8_t* bytes) {
  Kernels<PlaneConversionKernels>().keep_red(rgba.data(), rgba.size(), bytes);
}

void PackFrame(const Frame& frame, std::span<uint32_t> rgba) {
  const auto& kernels = Kernels<PlaneConversionKernels>();
  const auto width = static_cast<size_t>(frame.luma.width);
  for (int32_t y = 0; y < frame.luma.height; ++y) {
    const uint8_t* luma = frame.luma.row(y);
    uint32_t* out = &rgba[static_cast<size_t>(y) * width];
    const size_t chroma_row = width * (static_cast<size_t>(y) / 4);
    const bool is_inside = chroma_row + width <= frame.chroma.size();
    const size_t blocks = is_inside ? width / 4 : 0;
    kernels.pack_blocks(
        luma, frame.chroma.data() + (is_inside ? chroma_row : 0), blocks, out);
    for (size_t x = blocks * 4; x < width; ++x) {
      const size_t at = chroma_row + x / 4 * 4;
      out[x] = luma[x] | PackedChroma(ReadOrZero(frame.chroma, at + 1),
                                      ReadOrZero(frame.chroma, at));
    }
  }
}

void UnpackFrame(std::span<const uint32_t> rgba, int32_t source_format,
                 const Frame& frame) {
  const int32_t block = source_format == kFormatPacked ? 4 : 2;
  if (frame.luma.width % block == 0 && frame.luma.height % block == 0) {
    UnpackWholeBlocks(rgba, source_format, frame);
  } else {
    KeepRed(rgba.first(frame.luma.size()), frame.luma.data);
    UnpackChroma(rgba, source_format, frame);
  }
}

}  // namespace zuqel
