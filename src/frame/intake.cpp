// Takes focus and depth statistics from a frame's arguments.
#include "frame/intake.h"

#include "base/log.h"
#include "depth/hole_filling.h"
#include "depth/statistics.h"

namespace zuqel {
namespace {

constexpr int32_t kDepthTrimPercent = 5;

// Raw disparity under the focus point.
uint16_t FocusDepth(const FrameCall& call, Plane<const uint16_t> depth,
                    ImageSize preview) {
  return ValueAt(depth,
                 ScaleCoordinate(call.focus_x, preview.width, depth.width),
                 ScaleCoordinate(call.focus_y, preview.height, depth.height));
}

}  // namespace

FocusPoint FindFocus(const FrameCall& call, ImageSize preview) {
  const auto centre = CentreOfFocus(call.rect, preview.width, preview.height);
  if (!centre) {
    ZUQEL_LOG("focus rect too small");
    return {static_cast<int32_t>(call.focus_x),
            static_cast<int32_t>(call.focus_y)};
  }
  ZUQEL_LOG("focus rect ok");
  ZUQEL_LOG("rect.x = %d, rect.y = %d, rect.right = %d, rect.bottom = %d ",
            call.rect.x, call.rect.y, call.rect.right, call.rect.bottom);
  ZUQEL_LOG("Src_focus_X = %d, Src_focus_Y = %d", centre->x, centre->y);
  return *centre;
}

DepthStatistics TakeDepth(const FrameSetup& setup, const FrameCall& call,
                          Plane<uint16_t> depth) {
  const auto range = GetDispRange(depth, kDepthTrimPercent);
  const DepthStatistics statistics = {range.min, range.max,
                                      FocusDepth(call, depth, setup.preview)};
  FillDisparityHoles(depth);
  return statistics;
}

}  // namespace zuqel
