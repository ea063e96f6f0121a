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
constexpr int32_t kStrongScale = 2;
constexpr int32_t kMildScale = 1;
constexpr int32_t kStrength = 2;

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
    for (Buffer* buffer :
         {&buffers_.u_region, &buffers_.v_region, &buffers_.preview_mask,
          &buffers_.strong_blur, &buffers_.mild_blur}) {
      if (!buffer->Reserve(ByteCount(frame, 1))) return false;
    }
    for (Buffer* buffer : {&buffers_.focus_mask, &buffers_.work_mask}) {
      if (!buffer->Reserve(ByteCount(map, 1))) return false;
    }
    if (!buffers_.reduced_frame.Reserve(ByteCount(map, 3)) ||
        !ReserveRegionGrowing(map, buffers_.growth) ||
        !buffers_.cleanup.Reserve(map) || !ReserveBlurs()) {
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
    SplitChroma(frame_.chroma, Chroma());
    if (!ReduceFrame()) return false;
    ZUQEL_LOG("pindle Depth w = %d, h = %d", frame_.disparity.width,
              frame_.disparity.height);
    if (!MakeMask(ReadDisparity()) || !BlurAndBlend(frame_.luma, true)) {
      return false;
    }
    // Nothing reads past the last chroma sample.
    for (const Plane<uint8_t> region : {Chroma().u, Chroma().v}) {
      if (!BlurAndBlend(UpToLastSample(region), false)) return false;
    }
    JoinChroma(Chroma(), frame_.chroma);
    return true;
  }

 private:
  [[nodiscard]] bool ReserveBlurs() {
    const ImageSize frame = frame_.luma.extent();
    const ImageSize map = frame_.disparity.extent();
    BlurScratch& blur = buffers_.blur;
    for (const ImageSize size : {frame, UpToLastSample(Chroma().u).extent()}) {
      for (const int32_t scale : {kStrongScale, kMildScale}) {
        if (!ReserveTwoLevelBlur(size, scale, kStrength, blur)) return false;
      }
    }
    return ReserveBoxBlur(map, kFeatherRadius, blur.box) &&
           ReserveResize<uint8_t>(frame, map, blur.resize) &&
           ReserveResize<uint8_t>(map, frame, blur.resize);
  }
  [[nodiscard]] ChromaRegions Chroma() const {
    return {AsPlane(buffers_.u_region, frame_.luma),
            AsPlane(buffers_.v_region, frame_.luma)};
  }
  // A buffer as a plane of that size.
  static Plane<uint8_t> AsPlane(const Buffer& buffer, const auto& size) {
    return {buffer.bytes(), size.width, size.height};
  }

  // The frame at the size of the map, its three planes one after the other.
  bool ReduceFrame() {
    const auto [u, v] = Chroma();
    Plane<uint8_t> reduced = AsPlane(buffers_.reduced_frame, frame_.disparity);
    for (const Plane<uint8_t> plane : {frame_.luma, u, v}) {
      if (!ResizePlane(Plane<const uint8_t>(plane), buffers_.blur.resize,
                       reduced)) {
        return false;
      }
      reduced.data += reduced.size();
    }
    return true;
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

  // The focus component without its holes, feathered, smoothed over calls and
  // enlarged. The grown region is 255, so the inversion makes it 0 where it is
  // in focus.
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
        !BoxBlur(mask, kFeatherRadius, buffers_.blur.box, smoothed)) {
      return false;
    }
    SmoothOverFrames(frame_counter_, buffers_.mask_history, smoothed);
    return ResizePlane(Plane<const uint8_t>(smoothed), buffers_.blur.resize,
                       AsPlane(buffers_.preview_mask, frame_.luma));
  }

  bool BlurAndBlend(Plane<uint8_t> plane, bool is_logged) {
    const Plane<uint8_t> strong = AsPlane(buffers_.strong_blur, plane);
    const Plane<uint8_t> mild = AsPlane(buffers_.mild_blur, plane);
    const auto blur = [&](int32_t expansionBlurScale, Plane<uint8_t> out) {
      const bool blurred = TwoLevelBlur(plane, expansionBlurScale, kStrength,
                                        buffers_.blur, out);
      if (blurred && is_logged) {
        ZUQEL_LOG("pindle uwScaleW = %d, uwScaleH = %d ",
                  plane.width / expansionBlurScale,
                  plane.height / expansionBlurScale);
      }
      return blurred;
    };
    if (!blur(kStrongScale, strong) || !blur(kMildScale, mild)) return false;
    BlendByMask(strong, mild, AsPlane(buffers_.preview_mask, plane), plane);
    return true;
  }

  // The rows of a region that affect the result, and as many more as the blurs
  // reach. Part of a region gives the same result as the whole only where the
  // strong blur halves both sides exactly.
  static Plane<uint8_t> UpToLastSample(Plane<uint8_t> region) {
    constexpr int32_t kReach = 8;
    if (region.width % 2 != 0 || region.height % 2 != 0) return region;
    const int32_t rows = RowsInUse(region.width, region.height);
    const int32_t even = (rows + kReach) / 2 * 2;
    return {region.data, region.width, std::min(even, region.height)};
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
