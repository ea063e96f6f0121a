// The steps of the CPU render path.
#include "cpu_bokeh/expansion.h"

#include <algorithm>
#include <cstddef>

#include "base/log.h"
#include "cpu_bokeh/box_blur.h"
#include "cpu_bokeh/chroma_regions.h"
#include "depth/focus_mask.h"
#include "depth/hole_filling.h"
#include "depth/statistics.h"

namespace zuqel {
namespace {

constexpr uint16_t kDisparityBits = 1023;
constexpr int32_t kTrimPercent = 1;
constexpr int32_t kFeatherRadius = 1;

// The focus point in pixels of the map.
MaskPoint MapFocus(const ExpansionFrame& frame) {
  return {
      ScaleCoordinate(frame.focus_x, frame.luma.width, frame.disparity.width),
      ScaleCoordinate(frame.focus_y, frame.luma.height,
                      frame.disparity.height)};
}

// A recursive filter. From the fourth call on (`counter` 3), each byte becomes
// (current + 2 * previous + the one before) / 4, truncated, of masks that were
// smoothed in turn; the first three calls leave the mask as it is.
void SmoothOverFrames(int32_t counter, std::array<Buffer, 3>& history,
                      Plane<uint8_t> mask) {
  // The counter is negative once it has wrapped.
  const auto slot = static_cast<size_t>((counter % 3 + 3) % 3);
  if (counter > 2) {
    const uint8_t* previous = history[(slot + 2) % 3].bytes();
    const uint8_t* older = history[(slot + 1) % 3].bytes();
    for (size_t i = 0; i < mask.size(); ++i) {
      const uint32_t sum = mask.data[i] + 2U * previous[i] + older[i];
      mask.data[i] = static_cast<uint8_t>(sum >> 2);
    }
  }
  std::copy_n(mask.data, mask.size(), history[slot].bytes());
}

class Expansion {
 public:
  Expansion(const ExpansionFrame& frame, ExpansionBuffers& buffers,
            int32_t frame_counter)
      : frame_(frame), buffers_(buffers), frame_counter_(frame_counter) {}

  // Makes room for all that Run needs, which then cannot fail. False when there
  // is no memory; then nothing has changed.
  [[nodiscard]] bool Reserve() {
    const ImageSize frame = frame_.luma.extent();
    const ImageSize map = frame_.disparity.extent();
    // Too large a frame first, before anything is as large.
    if (!ByteCount(frame, 1) || !buffers_.blend.Reserve(frame, map)) {
      return false;
    }
    for (Buffer* buffer : {&buffers_.u_region, &buffers_.v_region}) {
      if (is_odd() && !buffer->Reserve(ByteCount(frame, 1))) return false;
    }
    for (Buffer* buffer : {&buffers_.focus_mask, &buffers_.work_mask}) {
      if (!buffer->Reserve(ByteCount(map, 1))) return false;
    }
    if (!buffers_.reduced_frame.Reserve(ByteCount(map, 3)) ||
        !buffers_.reduction.Reserve(frame, map) ||
        !ReserveRegionGrowing(map, buffers_.growth) ||
        !buffers_.cleanup.Reserve(map) ||
        !ReserveBoxBlur(map, kFeatherRadius, buffers_.feather)) {
      return false;
    }
    // The history last: the masks in it are kept when anything else fails.
    return std::all_of(
        buffers_.mask_history.begin(), buffers_.mask_history.end(),
        [&](Buffer& slot) { return slot.Reserve(ByteCount(map, 1)); });
  }

  bool Run() {
    ZUQEL_LOG("pindle PreviewWidth w = %d, h = %d", frame_.luma.width,
              frame_.luma.height);
    if (is_odd()) SplitChroma(frame_.chroma, Chroma());
    ReduceFrame();
    ZUQEL_LOG("pindle Depth w = %d, h = %d", frame_.disparity.width,
              frame_.disparity.height);
    if (!MakeMask(ReadDisparity())) return false;
    for (const int32_t expansionBlurScale : {2, 1}) {
      ZUQEL_LOG("pindle uwScaleW = %d, uwScaleH = %d ",
                frame_.luma.width / expansionBlurScale,
                frame_.luma.height / expansionBlurScale);
    }
    BlurAndBlendFrame();
    return true;
  }

 private:
  // Chroma that cannot be taken as rows of its regions where it lies.
  [[nodiscard]] bool is_odd() const { return frame_.luma.width % 2 != 0; }
  [[nodiscard]] ChromaRegions Chroma() const {
    return {AsPlane(buffers_.u_region, frame_.luma),
            AsPlane(buffers_.v_region, frame_.luma)};
  }
  // A buffer as a plane of that size.
  static Plane<uint8_t> AsPlane(const Buffer& buffer, const auto& size) {
    return {buffer.bytes(), size.width, size.height};
  }

  // The frame at the size of the map, its three planes one after the other.
  void ReduceFrame() {
    const Plane<uint8_t> luma =
        AsPlane(buffers_.reduced_frame, frame_.disparity);
    Plane<uint8_t> u = luma, v = luma;
    u.data += luma.size();
    v.data += 2 * luma.size();
    FrameReduction& reduction = buffers_.reduction;
    reduction.ReducePlane(frame_.luma, luma);
    if (is_odd()) {
      reduction.ReducePlane(Chroma().u, u);
      reduction.ReducePlane(Chroma().v, v);
    } else {
      reduction.ReduceChroma(frame_.chroma, frame_.luma.extent(), u, v);
    }
  }

  // Cleans the map; gives its range and the disparity in focus.
  FocusRange ReadDisparity() {
    const Plane<uint16_t> disparity = frame_.disparity;
    for (size_t i = 0; i < disparity.size(); ++i) {
      disparity.data[i] &= kDisparityBits;
    }
    FillDisparityHoles(disparity);
    const auto [uwMinDisp, uwMaxDisp] = GetDispRange(disparity, kTrimPercent);
    ZUQEL_LOG("uwMaxDisp = %d\n", uwMaxDisp);
    ZUQEL_LOG("uwMinDisp = %d\n", uwMinDisp);
    focus_ = MapFocus(frame_);
    ZUQEL_LOG("(a_dFocusX,a_dFocusY)=(%d,%d), a_dReX = %d, a_dReY = %d \n",
              static_cast<int>(focus_.x), static_cast<int>(focus_.y),
              frame_.focus_x, frame_.focus_y);
    const uint16_t FocusDisp = ValueAt(disparity, focus_.x, focus_.y);
    ZUQEL_LOG("FocusDisp = %d\n", FocusDisp);
    return {uwMaxDisp, uwMinDisp, FocusDisp};
  }

  // The focus component without its holes, feathered and smoothed over calls,
  // in the work mask. The grown region is 255, so the inversion makes it 0
  // where it is in focus.
  bool MakeMask(const FocusRange& range) {
    const Plane<uint8_t> mask = AsPlane(buffers_.focus_mask, frame_.disparity);
    const Plane<uint8_t> work = AsPlane(buffers_.work_mask, frame_.disparity);
    const uint8_t* reduced = buffers_.reduced_frame.bytes();
    const size_t size = mask.size();
    uint32_t FocusComponentArea = 0;
    if (!FocusMaskExpansion(frame_.disparity,
                            {reduced, reduced + size, reduced + 2 * size},
                            range, buffers_.growth, mask) ||
        !PruneComponents(mask, focus_, /*keep_only_focus=*/true,
                         buffers_.cleanup, work, &FocusComponentArea)) {
      return false;
    }
    for (size_t i = 0; i < size; ++i) {
      work.data[i] = static_cast<uint8_t>(~work.data[i]);
    }
    const Plane<uint8_t>& smoothed = work;
    if (!RemoveSpecks(work, FocusComponentArea, buffers_.cleanup, mask) ||
        !BoxBlur(mask, kFeatherRadius, buffers_.feather, smoothed)) {
      return false;
    }
    SmoothOverFrames(frame_counter_, buffers_.mask_history, smoothed);
    return true;
  }

  void BlurAndBlendFrame() {
    const Plane<const uint8_t> mask =
        AsPlane(buffers_.work_mask, frame_.disparity);
    const ImageSize size = frame_.luma.extent();
    BlendScratch& scratch = buffers_.blend;
    scratch.Begin(mask, size);
    BlurAndBlend(size.height, scratch, frame_.luma);
    if (!is_odd()) {
      BlurAndBlendChroma(size, scratch, frame_.chroma);
      return;
    }
    for (const Plane<uint8_t> region : {Chroma().u, Chroma().v}) {
      BlurAndBlend(RowsInUse(size.width, size.height), scratch, region);
    }
    JoinChroma(Chroma(), frame_.chroma);
  }

  ExpansionFrame frame_;
  ExpansionBuffers& buffers_;
  int32_t frame_counter_;
  MaskPoint focus_;
};

}  // namespace

bool RenderExpansion(const ExpansionFrame& frame, ExpansionBuffers& buffers,
                     int32_t& expansionFrameCounter) {
  Expansion expansion(frame, buffers, expansionFrameCounter);
  if (!expansion.Reserve() || !expansion.Run()) return false;
  // Wraps.
  expansionFrameCounter =
      static_cast<int32_t>(static_cast<uint32_t>(expansionFrameCounter) + 1);
  return true;
}

}  // namespace zuqel
