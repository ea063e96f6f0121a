// Row loops between planes and RGBA pixels.
#include "render/plane_conversion.h"

#include <cstddef>

namespace zuqel {
namespace {

constexpr uint32_t kWeightAlpha = 128U << 24;
constexpr uint32_t kOpaque = 255U << 24;

uint8_t Red(uint32_t pixel) {
  return static_cast<uint8_t>(pixel);
}
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

// Blocks of four pixels with one chroma pair each.
void PackBlocks(const uint8_t* luma, const uint8_t* chroma, size_t blocks,
                uint32_t* out) {
  for (size_t x = 0; x < blocks * 4; x += 4) {
    const uint32_t shared = PackedChroma(chroma[x + 1], chroma[x]);
    for (size_t i = x; i < x + 4; ++i) out[i] = luma[i] | shared;
  }
}

// Each value in the low bytes of a word.
template <typename T>
void Widen(Plane<const T> plane, std::span<uint32_t> words) {
  const size_t count = plane.size();
  for (size_t i = 0; i < count; ++i) words[i] = plane.data[i];
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

// Whole blocks: only the last pixel of each is looked at.
void UnpackInterleavedRow(const uint32_t* last_row, size_t width,
                          uint8_t* chroma_row) {
  for (size_t x = 0; x < width; x += 2) {
    chroma_row[x] = Blue(last_row[x + 1]);
    chroma_row[x + 1] = Green(last_row[x + 1]);
  }
}

void UnpackPlanarRow(const uint32_t* last_row, size_t half_width,
                     uint8_t* u_row, uint8_t* v_row) {
  for (size_t x = 0; x < half_width; ++x) {
    u_row[x] = Green(last_row[2 * x + 1]);
    v_row[x] = Blue(last_row[2 * x + 1]);
  }
}

void UnpackPackedRow(const uint32_t* last_row, size_t width,
                     uint8_t* chroma_row) {
  for (size_t x = 0; x < width; x += 4) {
    chroma_row[x] = Blue(last_row[x + 3]);
    chroma_row[x + 1] = Green(last_row[x + 3]);
  }
}

void UnpackWholeBlocks(std::span<const uint32_t> rgba, int32_t source_format,
                       const Frame& frame) {
  const auto width = static_cast<size_t>(frame.luma.width);
  const auto height = static_cast<size_t>(frame.luma.height);
  const size_t block = source_format == kFormatPacked ? 4 : 2;
  uint8_t* chroma = frame.chroma.data();
  for (size_t row = 0; row < height / block; ++row) {
    const uint32_t* last_row = &rgba[(row * block + block - 1) * width];
    if (source_format == kFormatPlanar) {
      uint8_t* v_row = chroma + row * (width / 2);
      UnpackPlanarRow(last_row, width / 2, v_row + (width / 2) * (height / 2),
                      v_row);
    } else if (source_format == kFormatPacked) {
      UnpackPackedRow(last_row, width, chroma + row * width);
    } else {
      UnpackInterleavedRow(last_row, width, chroma + row * width);
    }
  }
}

}  // namespace

void PackWeights(Plane<const uint8_t> weights, std::span<uint32_t> rgba) {
  const size_t count = weights.size();
  for (size_t i = 0; i < count; ++i) rgba[i] = weights.data[i] | kWeightAlpha;
}

void PackDepth(Plane<const uint16_t> depth, std::span<uint32_t> rgba) {
  Widen(depth, rgba);
}

void PackRefocusMap(Plane<const uint8_t> map, std::span<uint32_t> rgba) {
  Widen(map, rgba);
}

void KeepRed(std::span<const uint32_t> rgba, uint8_t* bytes) {
  const size_t count = rgba.size();
  for (size_t i = 0; i < count; ++i) bytes[i] = Red(rgba[i]);
}

void PackFrame(const Frame& frame, std::span<uint32_t> rgba) {
  const auto width = static_cast<size_t>(frame.luma.width);
  for (int32_t y = 0; y < frame.luma.height; ++y) {
    const uint8_t* luma = frame.luma.row(y);
    uint32_t* out = &rgba[static_cast<size_t>(y) * width];
    const size_t chroma_row = width * (static_cast<size_t>(y) / 4);
    const bool is_inside = chroma_row + width <= frame.chroma.size();
    const size_t blocks = is_inside ? width / 4 : 0;
    PackBlocks(luma, frame.chroma.data() + (is_inside ? chroma_row : 0), blocks,
               out);
    for (size_t x = blocks * 4; x < width; ++x) {
      const size_t at = chroma_row + x / 4 * 4;
      out[x] = luma[x] | PackedChroma(ReadOrZero(frame.chroma, at + 1),
                                      ReadOrZero(frame.chroma, at));
    }
  }
}

void UnpackFrame(std::span<const uint32_t> rgba, int32_t source_format,
                 const Frame& frame) {
  KeepRed(rgba.first(frame.luma.size()), frame.luma.data);
  const int32_t block = source_format == kFormatPacked ? 4 : 2;
  if (frame.luma.width % block == 0 && frame.luma.height % block == 0) {
    UnpackWholeBlocks(rgba, source_format, frame);
  } else {
    UnpackChroma(rgba, source_format, frame);
  }
}

}  // namespace zuqel
