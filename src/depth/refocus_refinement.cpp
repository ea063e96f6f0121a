// Marks what the component clean-ups would change and smooths the map there.
#include "depth/refocus_refinement.h"

#include <cstddef>
#include <cstring>

#include "depth/boundary_blur.h"
#include "depth/morphology.h"

namespace zuqel {
namespace {

constexpr uint8_t kSharpBelow = 128;
constexpr uint8_t kMarked = 255;
constexpr uint8_t kChangeRadius = 2;

void MarkChanges(Plane<const uint8_t> before, Plane<const uint8_t> after,
                 Plane<uint8_t> changes) {
  for (size_t i = 0; i < changes.size(); ++i) {
    const uint8_t mark = before.data[i] != after.data[i] ? kMarked : 0;
    changes.data[i] = changes.data[i] | mark;
  }
}

void Complement(Plane<const uint8_t> in, Plane<uint8_t> out) {
  for (size_t i = 0; i < out.size(); ++i) {
    out.data[i] = static_cast<uint8_t>(~in.data[i]);
  }
}

}  // namespace

bool RefinementScratch::Reserve(ImageSize size) {
  for (Buffer* buffer : {&work_a, &work_b, &changes, &dilated_changes}) {
    if (!buffer->Reserve(ByteCount(size, 1))) return false;
  }
  return ReserveSquareFilter(size, kChangeRadius, dilation) &&
         cleanup.Reserve(size);
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
  std::memset(changes.data, 0, changes.size());
  if (!PruneComponents(a, focus, /*keep_only_focus=*/true, scratch.cleanup, b,
                       nullptr)) {
    return false;
  }
  MarkChanges(a, b, changes);
  Complement(b, a);
  if (!KeepFocusAndBorderComponents(a, focus, scratch.cleanup, b)) return false;
  MarkChanges(a, b, changes);
  if (!DilateMask(changes, kChangeRadius, scratch.dilation, marks)) {
    return false;
  }
  if (in.size() > 0) std::memmove(out.data, in.data, in.size());
  BoundaryBlur(out, marks);
  return true;
}

}  // namespace zuqel
