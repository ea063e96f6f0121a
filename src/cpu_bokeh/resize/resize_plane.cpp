// Resizes all rows of a plane.
#include "cpu_bokeh/resize/resize_plane.h"

#include <algorithm>
#include <cstddef>

namespace zuqel {
namespace {

template <typename Sample>
bool Resize(Plane<const Sample> in, ResizedRows<Sample>& resized,
            Plane<Sample> out) {
  if (in.size() == 0 || out.size() == 0) {
    std::fill_n(out.data, out.size(), Sample{0});
    return true;
  }
  if (in.extent() == out.extent()) {
    std::copy_n(in.data, in.size(), out.data);
    return true;
  }
  if (!resized.Reserve(in.extent(), out.extent())) return false;
  resized.Begin(in.extent(), out.extent());
  const auto rows = [&](int32_t y) { return in.row(y); };
  for (int32_t y = 0; y < out.height; ++y) resized.MakeRow(y, rows, out.row(y));
  return true;
}

}  // namespace

bool ResizePlane(Plane<const uint8_t> in, ResizeScratch& scratch,
                 Plane<uint8_t> out) {
  return Resize(in, scratch.bytes, out);
}

bool ResizePlane(Plane<const uint16_t> in, ResizeScratch& scratch,
                 Plane<uint16_t> out) {
  return Resize(in, scratch.words, out);
}

}  // namespace zuqel
