// Decides between foreground and background and maps values to mask bytes.
#include "depth/focus_mask.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdio>
#include <cstring>

#include "base/log.h"

namespace zuqel {
namespace {

uint16_t ClampToRange(uint16_t value, const FocusRange& range) {
  return std::max(std::min(range.max, value), range.min);
}

// `percent` of a range, truncated toward zero.
int32_t Percent(int32_t range, int32_t percent) {
  return range * percent / 100;
}

// 255 - 255 * part / whole in 8 bits; a whole of 0 gives 255.
uint8_t Complement(int32_t part, int32_t whole) {
  const int32_t quotient = whole == 0 ? 0 : part * 255 / whole;
  return static_cast<uint8_t>(~quotient);
}

// The mask byte depends on the clamped value alone: it is computed once for
// each value of the range and looked up for each pixel.
template <typename MaskByte>
void MapValues(Plane<const uint16_t> values, const FocusRange& range,
               MaskByte mask_byte, Plane<uint8_t> mask) {
  std::array<uint8_t, UINT16_MAX + 1> table;
  for (int32_t v = range.min; v <= std::max(range.min, range.max); ++v) {
    table[static_cast<size_t>(v)] = mask_byte(v);
  }
  for (size_t i = 0; i < values.size(); ++i) {
    mask.data[i] = table[ClampToRange(values.data[i], range)];
  }
}

void FillWithZeros(Plane<uint8_t> mask) {
  if (mask.size() > 0) std::memset(mask.data, 0, mask.size());
}

// Sharp up to the focus, blurred from the middle of the range on.
void MaskOnBackground(Plane<const uint16_t> disparity, const FocusRange& range,
                      int32_t focus, int32_t middle, Plane<uint8_t> mask) {
  MapValues(
      disparity, range,
      [=](int32_t d) -> uint8_t {
        if (d <= focus) return 0;
        if (d >= middle) return 255;
        return Complement(d - focus, middle - focus);
      },
      mask);
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
    MaskOnBackground(disparity, range, focus, middle, mask);
    ZUQEL_LOG("AllinMaxDisp = %d\n", middle);
    return;
  }
  static_cast<void>(std::puts("Focus at FG!"));
  const auto blurred_below =
      static_cast<uint16_t>(focus - Percent(background, 40));
  const auto sharp_from =
      static_cast<uint16_t>(focus - Percent(background, 30));
  MapValues(
      disparity, range,
      [=](int32_t d) -> uint8_t {
        if (d >= sharp_from) return 0;
        if (d < blurred_below) return 255;
        return Complement(focus - d, background);
      },
      mask);
  ZUQEL_LOG("AllinMaxDisp = %d\n",
            static_cast<uint16_t>(focus + Percent(foreground, 40)));
  ZUQEL_LOG("AllinMinDisp = %d\n", sharp_from);
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
    MapValues(
        distance, range,
        [=](int32_t d) -> uint8_t {
          if (d >= focus) return 0;
          if (d <= middle) return 255;
          return Complement(focus - d, focus - middle);
        },
        mask);
    static_cast<void>(std::puts("Focus at BG!"));
    Print("AllinMaxDisp", range.max);
    Print("AllinMinDisp", middle);
    return;
  }
  const auto sharp_to = static_cast<uint16_t>(focus + Percent(background, 20));
  const auto blurred_above =
      static_cast<uint16_t>(focus + Percent(background, 40));
  MapValues(
      distance, range,
      [=](int32_t d) -> uint8_t {
        if (d <= sharp_to) return 0;
        if (d > blurred_above) return 255;
        return Complement(d - focus, background);
      },
      mask);
  static_cast<void>(std::puts("Focus at FG!"));
  Print("AllinMaxDisp", sharp_to);
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
                            .background = background,
                            .grow_limit = 40,
                            .seed_limit = 15},
                           scratch, mask);
  }
  static_cast<void>(std::puts("Focus at BG!"));
  const int32_t middle = (range.min + range.max) >> 1;
  MaskOnBackground(disparity, range, focus, middle, mask);
  Print("AllinMaxDisp", middle);
  return true;
}

}  // namespace zuqel
