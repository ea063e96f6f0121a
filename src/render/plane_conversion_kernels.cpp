// Converts rows.
#include "render/plane_conversion_kernels.h"

#include "base/kernel_set.h"

namespace zuqel {
namespace {

constexpr uint32_t kOpaque = 255U << 24;

// B and G in the order of a chroma pair.
inline uint16_t ChromaPair(uint32_t pixel) {
  return static_cast<uint16_t>((pixel >> 16 & 0xFF) | (pixel & 0xFF00));
}

void WidenBytes(const uint8_t* bytes, size_t count, uint32_t high,
                uint32_t* __restrict rgba) {
  for (size_t i = 0; i < count; ++i) rgba[i] = bytes[i] | high;
}

void WidenWords(const uint16_t* words, size_t count,
                uint32_t* __restrict rgba) {
  for (size_t i = 0; i < count; ++i) rgba[i] = words[i];
}

// In strips, whose chroma is spread over the pixels first: compilers put
// neither half on vectors when both are one loop. The first strip ends where a
// cache line of pixels does, so that no later store is split between two.
void PackBlocks(const uint8_t* luma, const uint8_t* chroma, size_t blocks,
                uint32_t* __restrict rgba) {
  constexpr size_t kStrip = 64, kLine = 64;
  alignas(kLine) uint32_t spread[4 * kStrip];  // NOLINT(*-avoid-c-arrays)
  size_t count = (kLine - reinterpret_cast<uintptr_t>(rgba) % kLine) / 16;
  for (size_t first = 0; first < blocks; first += count, count = kStrip) {
    const size_t left = blocks - first;
    count = left < count ? left : count;
    for (size_t i = 0; i < count; ++i) {
      uint32_t block = 0;
      __builtin_memcpy(&block, chroma + 4 * (first + i), sizeof(block));
      const uint32_t shared = (block & 0xFF00) | (block & 0xFF) << 16 | kOpaque;
      spread[4 * i] = shared;
      spread[4 * i + 1] = shared;
      spread[4 * i + 2] = shared;
      spread[4 * i + 3] = shared;
    }
    for (size_t x = 0; x < 4 * count; ++x) {
      rgba[4 * first + x] = luma[4 * first + x] | spread[x];
    }
  }
}

void KeepRed(const uint32_t* rgba, size_t count, uint8_t* __restrict bytes) {
  for (size_t i = 0; i < count; ++i) bytes[i] = static_cast<uint8_t>(rgba[i]);
}

void UnpackPairs(const uint32_t* rgba, size_t pairs,
                 uint8_t* __restrict chroma) {
  for (size_t i = 0; i < pairs; ++i) {
    const uint16_t pair = ChromaPair(rgba[2 * i + 1]);
    __builtin_memcpy(chroma + 2 * i, &pair, sizeof(pair));
  }
}

void UnpackPlanes(const uint32_t* rgba, size_t pairs, uint8_t* __restrict u,
                  uint8_t* __restrict v) {
  for (size_t i = 0; i < pairs; ++i) {
    const uint32_t pixel = rgba[2 * i + 1];
    u[i] = static_cast<uint8_t>(pixel >> 8);
    v[i] = static_cast<uint8_t>(pixel >> 16);
  }
}

void UnpackBlocks(const uint32_t* rgba, size_t blocks,
                  uint8_t* __restrict chroma) {
  for (size_t i = 0; i < blocks; ++i) {
    uint32_t block = 0;
    __builtin_memcpy(&block, chroma + 4 * i, sizeof(block));
    block = (block & 0xFFFF0000) | ChromaPair(rgba[4 * i + 3]);
    __builtin_memcpy(chroma + 4 * i, &block, sizeof(block));
  }
}

constexpr PlaneConversionKernels kKernels = {
    WidenBytes,  WidenWords,   PackBlocks,  KeepRed,
    UnpackPairs, UnpackPlanes, UnpackBlocks};

}  // namespace

template <>
const PlaneConversionKernels&
KernelsOf<PlaneConversionKernels, kCompiledSet>() {
  return kKernels;
}

}  // namespace zuqel
