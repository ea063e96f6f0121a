// Runs the chains over a frame's planes.
#include "cpu_bokeh/blur_and_blend.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

#include "cpu_bokeh/chroma_regions.h"

namespace zuqel {
namespace {

constexpr int32_t kMargin = BlurredPlane::kSourceMargin;

void RepeatEnds(int32_t width, uint8_t* row) {
  std::fill_n(row - kMargin, kMargin, row[0]);
  std::fill_n(row + width, kMargin, row[width - 1]);
}

}  // namespace

bool BlendScratch::Reserve(ImageSize frame, ImageSize map) {
  if (frame.pixel_count() == 0 || map.pixel_count() == 0) return true;
  // With this, all that is calculated from a width fits.
  if (!ByteCount(frame.width, 2 * BlurredPlane::kSourceRows, 1)) return false;
  const int32_t both = 2 * (frame.width + kMargin);
  return mask.Reserve(map, frame) && planes[0].Reserve(frame) &&
         planes[1].Reserve(frame) &&
         sharp.Reserve(both, BlurredPlane::kSourceRows, kMargin) &&
         blended.Reserve(ByteCount(both, 1, 1));
}

void BlendScratch::Begin(Plane<const uint8_t> map, ImageSize frame) {
  mask.Begin(map, frame);
}

void BlurAndBlend(int32_t rows, BlendScratch& scratch, Plane<uint8_t> plane) {
  if (plane.size() == 0 || scratch.mask.is_empty()) return;
  scratch.mask.Rewind();
  scratch.planes[0].Begin(plane.extent());
  scratch.sharp.Begin();
  const auto sharp = [&](int32_t y) {
    return scratch.sharp.Row(y, [&](int32_t made, uint8_t* row) {
      std::copy_n(plane.row(made), plane.width, row);
      RepeatEnds(plane.width, row);
    });
  };
  for (int32_t y = 0; y < rows; ++y) {
    scratch.planes[0].BlendRow(y, sharp, scratch.mask, plane.row(y));
  }
}

void BlurAndBlendChroma(ImageSize frame, BlendScratch& scratch,
                        std::span<uint8_t> vu) {
  if (frame.pixel_count() == 0 || scratch.mask.is_empty()) return;
  scratch.mask.Rewind();
  for (BlurredPlane& plane : scratch.planes) plane.Begin(frame);
  scratch.sharp.Begin();
  // Each row has U and then V.
  const int32_t to_v = frame.width + 2 * kMargin;
  const auto both = [&](int32_t y) {
    return scratch.sharp.Row(y, [&](int32_t made, uint8_t* row) {
      SplitChromaRow(vu, frame, made, row, row + to_v);
      RepeatEnds(frame.width, row);
      RepeatEnds(frame.width, row + to_v);
    });
  };
  const auto u = [&](int32_t y) { return both(y); };
  const auto v = [&](int32_t y) { return both(y) + to_v; };
  uint8_t* const blended_u = scratch.blended.bytes();
  uint8_t* const blended_v = blended_u + frame.width;
  for (int32_t y = 0; y < ChromaRowCount(frame); ++y) {
    const auto [zero, full] = scratch.mask.UniformSegments(y);
    if (zero == scratch.mask.segments().all()) continue;
    std::copy_n(u(y), frame.width, blended_u);
    std::copy_n(v(y), frame.width, blended_v);
    scratch.planes[0].BlendRow(y, u, scratch.mask, blended_u);
    scratch.planes[1].BlendRow(y, v, scratch.mask, blended_v);
    JoinChromaRow(blended_u, blended_v, frame, y, vu);
  }
}

}  // namespace zuqel
