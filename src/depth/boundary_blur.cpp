// Sweeps over the marked pixels, with running sums of windows over running sums
// of their columns.
#include "depth/boundary_blur.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <optional>

#include "base/kernel_set.h"
#include "depth/boundary_kernels.h"

namespace zuqel {
namespace {

constexpr int32_t kReach = 3;
constexpr int32_t kSide = 2 * kReach + 1;
constexpr uint8_t kExcluded = 255;

// Columns outside the image: as many as a window reaches that has moved past
// its last pixel.
constexpr size_t kMargin = kReach + 1;

// 2^20 / count, rounded up: the product with a sum of up to 255 * count gives
// the truncated quotient in its upper bits, and fits uint32_t.
constexpr int32_t kQuotientBits = 20;
constexpr std::array<uint32_t, kSide* kSide + 1> kReciprocals = [] {
  std::array<uint32_t, kSide* kSide + 1> reciprocals = {};
  for (uint32_t count = 1; count < reciprocals.size(); ++count) {
    reciprocals[count] = ((1U << kQuotientBits) + count - 1) / count;
  }
  return reciprocals;
}();

// Bytes of a sum and a number for each column.
std::optional<size_t> ColumnBytes(ImageSize size) {
  constexpr int32_t kEach = sizeof(uint16_t) + sizeof(uint8_t);
  const auto inside = ByteCount(size.width, 1, kEach);
  return inside ? std::optional(*inside + size_t{kEach} * 2 * kMargin)
                : std::nullopt;
}

class Smoothing {
 public:
  // `memory` is ColumnBytes() zeros.
  Smoothing(Plane<uint8_t> map, Plane<uint8_t> marks, uint8_t* memory)
      : map_(map),
        marks_(marks),
        sums_(reinterpret_cast<uint16_t*>(memory) + kMargin),
        numbers_(memory +
                 sizeof(uint16_t) *
                     (static_cast<size_t>(map.width) + 2 * kMargin) +
                 kMargin) {}

  // True if no mark is left.
  bool SweepForward() {
    bool is_done = true;
    for (int32_t y = 0; y < map_.height; ++y) {
      const uint8_t* row = marks_.row(y);
      for (int32_t x = 0; x < map_.width;) {
        if (x + kLine <= map_.width && AreClear(row + x, kLine)) {
          x += kLine;
        } else if (x + kStep <= map_.width && AreClear(row + x, kStep)) {
          x += kStep;
        } else {
          int32_t end = x;
          while (end + kStep <= map_.width && !AreClear(row + end, kStep)) {
            end += kStep;
          }
          if (end + kStep > map_.width) end = map_.width;
          is_done &= Smooth<true>(x, end, y);
          x = end;
        }
      }
    }
    return is_done;
  }
  // Marks are seldom left.
  void SweepBackward() {
    for (int32_t y = map_.height - 1; y >= 0; --y) {
      Smooth<false>(0, map_.width, y);
    }
  }

 private:
  // Most pixels are not marked, and as many at a time are skipped.
  static constexpr int32_t kLine = 64, kStep = 8;

  static bool AreClear(const uint8_t* marks, int32_t count) {
    uint64_t any = 0;
    for (int32_t i = 0; i < count; i += kStep) {
      uint64_t eight = 0;
      std::memcpy(&eight, marks + i, sizeof(eight));
      any |= eight;
    }
    return any == 0;
  }

  void Change(BoundaryKernels::Change change, int32_t y) {
    if (y < 0 || y >= map_.height) return;
    change(map_.row(y), marks_.row(y), static_cast<size_t>(map_.width), sums_,
           numbers_);
  }
  // Makes the columns those of the windows around row `y`. Each pixel that has
  // changed since has changed them, too.
  void MoveTo(int32_t y) {
    const auto& kernels = Kernels<BoundaryKernels>();
    if (std::abs(y - y_) > kReach) {
      const auto width = static_cast<size_t>(map_.width);
      std::fill_n(sums_, width, uint16_t{0});
      std::fill_n(numbers_, width, uint8_t{0});
      for (int32_t i = -kReach; i <= kReach; ++i) Change(kernels.add, y + i);
      y_ = y;
    }
    for (; y_ < y; ++y_) {
      Change(kernels.remove, y_ - kReach);
      Change(kernels.add, y_ + kReach + 1);
    }
    for (; y_ > y; --y_) {
      Change(kernels.remove, y_ + kReach);
      Change(kernels.add, y_ - kReach - 1);
    }
  }

  // Smooths the marked pixels of row `y` from `begin` up to `end`, or the other
  // way round. True if none has kept its mark.
  template <bool kForward>
  bool Smooth(int32_t begin, int32_t end, int32_t y) {
    MoveTo(y);
    constexpr ptrdiff_t kOn = kForward ? 1 : -1;
    uint8_t* values = map_.row(y);
    uint8_t* row_marks = marks_.row(y);
    ptrdiff_t x = kForward ? begin : end - 1;
    uint32_t sum = 0, number = 0;
    for (ptrdiff_t i = x - kReach; i <= x + kReach; ++i) {
      sum += sums_[i];
      number += numbers_[i];
    }
    bool is_done = true;
    for (int32_t i = begin; i < end; ++i, x += kOn) {
      const ptrdiff_t entering = x + kOn * (kReach + 1);
      const ptrdiff_t leaving = x - kOn * kReach;
      // All that the next window's sum does not need the mean for. It may wrap.
      uint32_t rest = sum + sums_[entering] - sums_[leaving];
      uint32_t mean = 0;
      const uint8_t mark = row_marks[x];
      if (mark != 0 && number != 0) {
        const uint32_t is_new = mark == kExcluded ? 1 : 0;
        mean = sum * kReciprocals[number] >> kQuotientBits;
        const uint32_t before = is_new != 0 ? 0U : values[x];
        rest -= before;
        sums_[x] = static_cast<uint16_t>(sums_[x] + mean - before);
        numbers_[x] = static_cast<uint8_t>(numbers_[x] + is_new);
        number += is_new;
        values[x] = static_cast<uint8_t>(mean);
        row_marks[x] = 0;
      }
      is_done &= row_marks[x] == 0;
      sum = rest + mean;
      number += uint32_t{numbers_[entering]} - numbers_[leaving];
    }
    return is_done;
  }

  Plane<uint8_t> map_;
  Plane<uint8_t> marks_;
  // By column of the image.
  uint16_t* sums_;
  uint8_t* numbers_;
  int32_t y_ = INT32_MIN / 2;  // far from each row
};

}  // namespace

bool ReserveBoundaryBlur(ImageSize size, Buffer& scratch) {
  return scratch.Reserve(ColumnBytes(size));
}

bool BoundaryBlur(Plane<uint8_t> map, Plane<uint8_t> marks, Buffer& scratch) {
  if (!ReserveBoundaryBlur(map.extent(), scratch)) return false;
  std::memset(scratch.bytes(), 0, *ColumnBytes(map.extent()));
  Smoothing smoothing(map, marks, scratch.bytes());
  if (!smoothing.SweepForward()) smoothing.SweepBackward();
  return true;
}

}  // namespace zuqel
