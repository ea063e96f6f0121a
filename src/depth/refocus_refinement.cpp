// Marks what the component clean-ups would change and smooths the map there.
#include "depth/refocus_refinement.h"

#include <cstddef>
#include <cstring>

#include "depth/boundary_blur.h"
#include "depth/morphology.h"

namespace zuqel {
namespace {

constexpr uint8_t kSharpBelow = 128;
constexpr uint8_t kChangeRadius = 2;

}  // namespace

bool RefinementScratch::Reserve(ImageSize size) {
  for (Buffer* buffer : {&work_a, &work_b, &changes, &dilated_changes}) {
    if (!buffer->Reserve(ByteCount(size, 1))) return false;
  }
  return ReserveSquareFilter(size, kChangeRadius, dilation) &&
         ReserveBoundaryBlur(size, smoothing) && cleanup.Reserve(size);
}

bool RefineRefocusMap(Plane<const uint8_t> in, MaskPoint focus,
                      RefinementScratch& scratch, Plane<uint8_t> out) {
  if (!scratch.Reserve(in.extent())) return false;
  const auto plane = [&in](const Buffer& buffer) {
    return Plane<uint8_t>{buffer.bytes(), in.width, in.height};
  };
  const Plane<uint8_t> a = plane(scratch.work_a);
  const Plane<uint8_t> b = plane(scratch.work_b);
  const Plane<uint8_t> changes = plane(scratch.changes);
  const Plane<uint8_t> marks = plane(scratch.dilated_changes);

  for (size_t i = 0; i < in.size(); ++i) {
    a.data[i] = in.data[i] < kSharpBelow ? 255 : 0;
  }
  if (!PruneComponents(a, focus, /*keep_only_focus=*/true, scratch.cleanup, b,
                       nullptr)) {
    return false;
  }
  // Masks of 0 and 255 differ by 255.
  for (size_t i = 0; i < in.size(); ++i) {
    changes.data[i] = a.data[i] ^ b.data[i];
    a.data[i] = static_cast<uint8_t>(~b.data[i]);
  }
  if (!KeepFocusAndBorderComponents(a, focus, scratch.cleanup, b)) return false;
  for (size_t i = 0; i < in.size(); ++i) {
    changes.data[i] |= a.data[i] ^ b.data[i];
  }
  if (!DilateMask(changes, kChangeRadius, scratch.dilation, marks)) {
    return false;
  }
  if (in.size() > 0) std::memmove(out.data, in.data, in.size());
  return BoundaryBlur(out, marks, scratch.smoothing);
}

}  // namespace zuqel
