// Finds the centre of focus and draws the dot.
#include "frame/focus.h"

namespace zuqel {
namespace {

constexpr int64_t kLargestRefusedSide = 31;
constexpr int64_t kDotRadius = 5;
constexpr uint8_t kWhite = 255;

}  // namespace

std::optional<FocusPoint> CentreOfFocus(const FocusRect& rect,
                                        int32_t image_width,
                                        int32_t image_height) {
  const int64_t width = int64_t{rect.right} - rect.x;
  const int64_t height = int64_t{rect.bottom} - rect.y;
  const bool is_large =
      width > kLargestRefusedSide && height > kLargestRefusedSide;
  const bool is_inside = rect.x >= 0 && rect.y >= 0 &&
                         rect.bottom < image_height && rect.right < image_width;
  if (!is_large || !is_inside) return std::nullopt;
  return FocusPoint{static_cast<int32_t>(rect.x + width / 2),
                    static_cast<int32_t>(rect.y + height / 2)};
}

void DrawFocusDot(Plane<uint8_t> luma, FocusPoint centre) {
  const auto size = static_cast<int64_t>(luma.size());
  for (int64_t dy = -kDotRadius; dy <= kDotRadius; ++dy) {
    for (int64_t dx = -kDotRadius; dx <= kDotRadius; ++dx) {
      // A 32-bit row times a 31-bit width fits 64 bits.
      const int64_t index = centre.x + dx + (centre.y + dy) * luma.width;
      if (index >= 0 && index < size) luma.data[index] = kWhite;
    }
  }
}

}  // namespace zuqel
