// Decides between foreground and background and maps values to mask bytes.
#include "depth/focus_mask.h"

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "base/kernel_set.h"
#include "base/log.h"
#include "depth/map_kernels.h"

namespace zuqel {
namespace {

uint16_t ClampToRange(uint16_t value, const FocusRange& range) {
  return std::max(std::min(range.max, value), range.min);
}

// `percent` of a range, truncated toward zero.
int32_t Percent(int32_t range, int32_t percent) {
  return range * percent / 100;
}

void FillWithZeros(Plane<uint8_t> mask) {
  if (mask.size() > 0) std::memset(mask.data, 0, mask.size());
}

// The side of the focus on which values are out of focus.
enum class Side : uint8_t { kAbove, kBelow };

// No value of a range lies beyond it, so that none has to be clamped to it: all
// beyond the ramp are blurred. In an empty range every value is the focus.
void WriteRamp(Plane<const uint16_t> values, const FocusRange& range, Side side,
               const MaskRamp& ramp, Plane<uint8_t> mask) {
  if (range.max <= range.min) {
    FillWithZeros(mask);
    return;
  }
  const auto& kernels = Kernels<MapKernels>();
  const auto write =
      side == Side::kAbove ? kernels.ramp_above : kernels.ramp_below;
  write(values.data, values.size(), ramp, mask.data);
}

// Sharp at the focus, blurred from the middle of the range on.
MaskRamp RampToMiddle(int32_t focus, int32_t middle) {
  const int32_t whole = std::abs(middle - focus);
  return {.focus = static_cast<uint16_t>(focus),
          .sharp_to = 0,
          .ramp_to = static_cast<uint16_t>(std::max(whole - 1, 0)),
          .whole = static_cast<uint16_t>(whole)};
}

// Between percentages of the background.
MaskRamp RampWithin(int32_t focus, int32_t background, int32_t sharp_percent,
                    int32_t blurred_percent) {
  return {
      .focus = static_cast<uint16_t>(focus),
      .sharp_to = static_cast<uint16_t>(Percent(background, sharp_percent)),
      .ramp_to = static_cast<uint16_t>(Percent(background, blurred_percent)),
      .whole = static_cast<uint16_t>(background)};
}

// Writes a decision to standard output.
void Print(const char* name, int32_t value) {
  static_cast<void>(std::printf("%s = %d\n", name, value));
}

}  // namespace

void FocusMaskDisparity(Plane<const uint16_t> disparity,
                        const FocusRange& range, Plane<uint8_t> mask) {
  const int32_t focus = ClampToRange(range.focus, range);
  const int32_t background = focus - range.min;
  const int32_t foreground = range.max - focus;
  ZUQEL_LOG("dRangeBg = %d\n", background);
  ZUQEL_LOG("dRangeFg = %d\n", foreground);
  if (background == 0 && foreground == 0) {
    FillWithZeros(mask);
    return;
  }
  if (background <= foreground / 2) {
    ZUQEL_LOG("Focus at BG!\n");
    const int32_t middle = (range.min + range.max) >> 1;
    WriteRamp(disparity, range, Side::kAbove, RampToMiddle(focus, middle),
              mask);
    ZUQEL_LOG("AllinMaxDisp = %d\n", middle);
    return;
  }
  static_cast<void>(std::puts("Focus at FG!"));
  const MaskRamp ramp = RampWithin(focus, background, 30, 40);
  WriteRamp(disparity, range, Side::kBelow, ramp, mask);
  ZUQEL_LOG("AllinMaxDisp = %d\n",
            static_cast<uint16_t>(focus + Percent(foreground, 40)));
  ZUQEL_LOG("AllinMinDisp = %d\n",
            static_cast<uint16_t>(focus - ramp.sharp_to));
}

void FocusMaskDist(Plane<const uint16_t> distance, const FocusRange& range,
                   Plane<uint8_t> mask) {
  const int32_t focus = ClampToRange(range.focus, range);
  const int32_t background = range.max - focus;
  const int32_t foreground = focus - range.min;
  if (background == 0 && foreground == 0) {
    FillWithZeros(mask);
    return;
  }
  Print("dRangeBg", background);
  Print("dRangeFg", foreground);
  if (foreground >= background) {
    const int32_t middle = (range.min + range.max) >> 1;
    WriteRamp(distance, range, Side::kBelow, RampToMiddle(focus, middle), mask);
    static_cast<void>(std::puts("Focus at BG!"));
    Print("AllinMaxDisp", range.max);
    Print("AllinMinDisp", middle);
    return;
  }
  const MaskRamp ramp = RampWithin(focus, background, 20, 40);
  WriteRamp(distance, range, Side::kAbove, ramp, mask);
  static_cast<void>(std::puts("Focus at FG!"));
  Print("AllinMaxDisp", static_cast<uint16_t>(focus + ramp.sharp_to));
  Print("AllinMinDisp", static_cast<uint16_t>(focus - Percent(foreground, 60)));
}

bool FocusMaskExpansion(Plane<const uint16_t> disparity,
                        const ThreePlanes& image, const FocusRange& range,
                        Buffer& scratch, Plane<uint8_t> mask) {
  const int32_t focus = ClampToRange(range.focus, range);
  const int32_t foreground = range.max - focus;
  const int32_t background = focus - range.min;
  if (background == 0 && foreground == 0) {
    FillWithZeros(mask);
    return true;
  }
  Print("dRangeBg", background);
  Print("dRangeFg", foreground);
  if (background > foreground / 2) {
    return GrowFocusRegion(disparity, image,
                           {.focus = focus,
                            .max = range.max,
                            .min = range.min,
                            .grow_limit = 40,
                            .seed_limit = 15},
                           scratch, mask);
  }
  static_cast<void>(std::puts("Focus at BG!"));
  const int32_t middle = (range.min + range.max) >> 1;
  WriteRamp(disparity, range, Side::kAbove, RampToMiddle(focus, middle), mask);
  Print("AllinMaxDisp", middle);
  return true;
}

}  // namespace zuqel
