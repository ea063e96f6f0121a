// Resizes luma, and chroma as it lies.
#include "cpu_bokeh/frame_reduction.h"

#include <algorithm>
#include <cstddef>

#include "cpu_bokeh/chroma_regions.h"

namespace zuqel {
namespace {

// The most rows of the source that a row is made of.
int32_t MostRows(const ResizedRows<uint8_t>& resized, int32_t height) {
  int32_t most = 0;
  for (int32_t y = 0; y < height; ++y) {
    const auto [first, last] = resized.SourceRows(y);
    most = std::max(most, last - first + 1);
  }
  return most;
}

}  // namespace

bool FrameReduction::Reserve(ImageSize frame, ImageSize map) {
  if (frame.pixel_count() == 0 || map.pixel_count() == 0) return true;
  const auto both = ByteCount(frame.width, 2, 1);
  if (!both || !luma_.bytes.Reserve(frame, map)) return false;
  for (ResizedRows<uint8_t>& plane : chroma_) {
    if (!plane.Reserve(frame, map)) return false;
    plane.Begin(frame, map);
  }
  return pairs_.Reserve(static_cast<int32_t>(*both),
                        MostRows(chroma_[0], map.height));
}

void FrameReduction::ReducePlane(Plane<const uint8_t> in, Plane<uint8_t> out) {
  // There is room.
  static_cast<void>(ResizePlane(in, luma_, out));
}

void FrameReduction::ReduceChroma(std::span<const uint8_t> vu, ImageSize frame,
                                  Plane<uint8_t> u, Plane<uint8_t> v) {
  if (u.size() == 0 || frame.pixel_count() == 0) {
    std::fill_n(u.data, u.size(), uint8_t{0});
    std::fill_n(v.data, v.size(), uint8_t{0});
    return;
  }
  for (ResizedRows<uint8_t>& plane : chroma_) plane.Begin(frame, u.extent());
  pairs_.Begin();
  const auto both = [&](int32_t y) {
    return pairs_.Row(y, [&](int32_t made, uint8_t* row) {
      SplitChromaRow(vu, frame, made, row, row + frame.width);
    });
  };
  const auto u_rows = [&](int32_t y) { return both(y); };
  const auto v_rows = [&](int32_t y) { return both(y) + frame.width; };
  // From there on all rows of the regions are equal.
  const int32_t same_from = ChromaRowCount(frame);
  for (int32_t y = 0; y < u.height; ++y) {
    if (y > 0 && chroma_[0].SourceRows(y - 1).first >= same_from) {
      std::copy_n(u.row(y - 1), u.width, u.row(y));
      std::copy_n(v.row(y - 1), v.width, v.row(y));
      continue;
    }
    chroma_[0].MakeRow(y, u_rows, u.row(y));
    chroma_[1].MakeRow(y, v_rows, v.row(y));
  }
}

}  // namespace zuqel
