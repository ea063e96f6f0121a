// How much fine detail a frame has, in focus and elsewhere.
#include "look/sharpness.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>

namespace zuqel::tools {
namespace {

struct Sum {
  [[nodiscard]] double Mean() const {
    return count == 0 ? 0
                      : static_cast<double>(total) / static_cast<double>(count);
  }

  int64_t total = 0, count = 0;
};

// Of the columns from `begin` to before `end`, which all have neighbours.
void AddRow(const uint8_t* row, int width, int begin, int end, Sum& sum) {
  int64_t total = 0;
  for (int x = begin; x < end; ++x) {
    total += std::abs(4 * row[x] - row[x - 1] - row[x + 1] - row[x - width] -
                      row[x + width]);
  }
  sum.total += total;
  sum.count += std::max(end - begin, 0);
}

}  // namespace

Sharpness MeasureSharpness(const Nv21Frame& frame, Size picture,
                           FocusPoint focus) {
  constexpr int kReaches = 16;  // of the window, along the shorter side
  const int reach = std::min(picture.width, picture.height) / kReaches;
  const int last = std::max(picture.width - 1, 1);
  const int left = std::clamp(focus.x - reach, 1, last);
  const int right = std::clamp(focus.x + reach + 1, 1, last);
  Sum inside, outside;
  for (int y = 1; y + 1 < picture.height; ++y) {
    const uint8_t* const row = &frame.luma[PixelCount(frame.width, y)];
    if (std::abs(y - focus.y) > reach) {
      AddRow(row, frame.width, 1, last, outside);
      continue;
    }
    AddRow(row, frame.width, 1, left, outside);
    AddRow(row, frame.width, left, right, inside);
    AddRow(row, frame.width, right, last, outside);
  }
  return {inside.Mean(), outside.Mean()};
}

}  // namespace zuqel::tools
