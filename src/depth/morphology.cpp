// Square filters. Down the columns, the van Herk/Gil-Werman algorithm: rows
// come in blocks as long as the window, which is then the end of one block and
// the beginning of the next, so that a window of any length takes three
// operations per pixel. Along a row, windows grow threefold: the result over 3
// n pixels combines three neighbouring results over n.
#include "depth/morphology.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>
#include <utility>

#include "base/kernel_set.h"
#include "depth/morphology_kernels.h"

namespace zuqel {
namespace {

class SquareFilter {
 public:
  SquareFilter(ImageSize size, uint8_t radius)
      : width_(static_cast<size_t>(size.width)),
        height_(static_cast<size_t>(size.height)),
        // A window reaches no further than the image.
        reach_x_(std::min<size_t>(radius, width_)),
        reach_y_(std::min<size_t>(radius, height_)),
        columns_(std::max(width_, kFilterStrip)),
        left_(RoundUp(reach_x_)),
        row_(left_ + RoundUp(columns_ + reach_x_)),
        block_(2 * reach_y_ + 1) {}

  // The end of each window, the block filtered down its columns, two rows
  // filtered on the way, and one without pixels; a block of narrow rows.
  [[nodiscard]] size_t ScratchBytes() const {
    return kFilterStrip + block_ * RoundUp(columns_) + (block_ + 3) * row_ +
           (IsNarrow() ? block_ * columns_ : 0);
  }

  void Run(const SquareFilterSteps& steps, Plane<const uint8_t> in,
           uint8_t* scratch, Plane<uint8_t> out) {
    // Vectors that straddle two lines of the cache cost twice as much.
    const auto past = reinterpret_cast<uintptr_t>(scratch) % kFilterStrip;
    uint8_t* ends = scratch + (kFilterStrip - past);
    uint8_t* filtered = ends + block_ * RoundUp(columns_);
    work_ = filtered + block_ * row_;
    outside_ = work_ + 2 * row_;
    narrow_ = outside_ + row_;
    // All but the ends, which are written first.
    std::memset(filtered, steps.neutral,
                (block_ + 3) * row_ + (IsNarrow() ? block_ * columns_ : 0));
    const auto combine_columns = [&](size_t first, size_t out_rows) {
      FindRows(in, first - reach_y_);  // wraps above the image
      steps.combine_columns(rows_.data(), block_, columns_, ends, out_rows,
                            row_, filtered + left_);
    };
    combine_columns(0, 0);
    // A block is read before rows of it are written.
    for (size_t y = 0; y < height_; y += block_) {
      const size_t rows = std::min(block_, height_ - y);
      combine_columns(y + block_, rows);
      for (size_t i = 0; i < rows; ++i) {
        FilterRow(steps, filtered + i * row_ + left_ - reach_x_,
                  out.data + (y + i) * width_);
      }
    }
  }

 private:
  static constexpr size_t kMostRows = 2 * 255 + 1;

  static size_t RoundUp(size_t count) {
    return (count + kFilterStrip - 1) / kFilterStrip * kFilterStrip;
  }

  [[nodiscard]] bool IsNarrow() const { return width_ < kFilterStrip; }

  void FindRows(Plane<const uint8_t> in, size_t first) {
    for (size_t i = 0; i < block_; ++i) {
      const size_t y = first + i;
      rows_[i] = y < height_ ? in.data + y * width_ : outside_;
      if (!IsNarrow() || y >= height_) continue;
      uint8_t* row = narrow_ + i * columns_;
      std::memcpy(row, rows_[i], width_);
      rows_[i] = row;
    }
  }

  // As many neutral pixels as a window reaches lie before the row and after it.
  void FilterRow(const SquareFilterSteps& steps, const uint8_t* row,
                 uint8_t* out) const {
    const size_t window = 2 * reach_x_ + 1;
    uint8_t* to = work_;
    uint8_t* spare = work_ + row_;
    size_t reach = 1;
    for (; 3 * reach < window; reach *= 3) {
      steps.combine_along(row, reach, 2 * reach, columns_ + window - 3 * reach,
                          to);
      row = to;
      std::swap(to, spare);
    }
    const size_t last = window - reach;
    const size_t middle = std::min(reach, last);
    steps.combine_along(row, middle, last, columns_, IsNarrow() ? to : out);
    if (IsNarrow()) std::memcpy(out, to, width_);
  }

  size_t width_;
  size_t height_;
  size_t reach_x_;
  size_t reach_y_;
  size_t columns_;  // filtered
  size_t left_;     // bytes before a row's first pixel
  size_t row_;      // bytes from row to row
  size_t block_;    // rows
  uint8_t* work_ = nullptr;
  uint8_t* outside_ = nullptr;
  uint8_t* narrow_ = nullptr;
  std::array<const uint8_t*, kMostRows> rows_ = {};  // of the block
};

bool Filter(SquareFilterSteps SquareFilterKernels::*steps,
            Plane<const uint8_t> in, uint8_t radius, Buffer& scratch,
            Plane<uint8_t> out) {
  if (!ReserveSquareFilter(in.extent(), radius, scratch)) return false;
  if (in.size() == 0) return true;
  SquareFilter(in.extent(), radius)
      .Run(Kernels<SquareFilterKernels>().*steps, in, scratch.bytes(), out);
  return true;
}

}  // namespace

bool ReserveSquareFilter(ImageSize size, uint8_t radius, Buffer& scratch) {
  if (size.width == 0 || size.height == 0) return true;
  const size_t bytes = SquareFilter(size, radius).ScratchBytes();
  return bytes <= INT32_MAX && scratch.Reserve(bytes);
}

bool DilateMask(Plane<const uint8_t> in, uint8_t radius, Buffer& scratch,
                Plane<uint8_t> out) {
  return Filter(&SquareFilterKernels::by_union, in, radius, scratch, out);
}

bool ErodeMin(Plane<const uint8_t> in, uint8_t radius, Buffer& scratch,
              Plane<uint8_t> out) {
  return Filter(&SquareFilterKernels::minimum, in, radius, scratch, out);
}

bool DilateMax(Plane<const uint8_t> in, uint8_t radius, Buffer& scratch,
               Plane<uint8_t> out) {
  return Filter(&SquareFilterKernels::maximum, in, radius, scratch, out);
}

}  // namespace zuqel
