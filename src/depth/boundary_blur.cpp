// Two sweeps over the marked pixels.
#include "depth/boundary_blur.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

namespace zuqel {
namespace {

constexpr int32_t kReach = 3;
constexpr uint8_t kExcluded = 255;

void SmoothPixel(Plane<uint8_t> map, Plane<uint8_t> marks, int32_t x,
                 int32_t y) {
  const int32_t left = std::max(x - kReach, 0);
  const int32_t right = std::min(x + kReach, map.width - 1);
  const int32_t top = std::max(y - kReach, 0);
  const int32_t bottom = std::min(y + kReach, map.height - 1);
  uint32_t sum = 0;
  uint32_t count = 0;
  for (int32_t row = top; row <= bottom; ++row) {
    for (int32_t column = left; column <= right; ++column) {
      const uint32_t counts = marks.row(row)[column] != kExcluded ? 1 : 0;
      sum += map.row(row)[column] * counts;
      count += counts;
    }
  }
  if (count == 0) return;
  map.row(y)[x] = static_cast<uint8_t>(sum / count);
  marks.row(y)[x] = 0;
}

// Most pixels are not marked: eight at a time are passed over.
bool HasMarks(const uint8_t* marks) {
  uint64_t eight = 0;
  std::memcpy(&eight, marks, sizeof(eight));
  return eight != 0;
}

}  // namespace

void BoundaryBlur(Plane<uint8_t> map, Plane<uint8_t> marks) {
  for (int32_t y = 0; y < map.height; ++y) {
    const uint8_t* row = marks.row(y);
    for (int32_t x = 0; x < map.width;) {
      if (x + 8 <= map.width && !HasMarks(row + x)) {
        x += 8;
        continue;
      }
      if (row[x] != 0) SmoothPixel(map, marks, x, y);
      ++x;
    }
  }
  for (int32_t y = map.height - 1; y >= 0; --y) {
    const uint8_t* row = marks.row(y);
    for (int32_t x = map.width - 1; x >= 0;) {
      if (x >= 7 && !HasMarks(row + x - 7)) {
        x -= 8;
        continue;
      }
      if (row[x] != 0) SmoothPixel(map, marks, x, y);
      --x;
    }
  }
}

}  // namespace zuqel
