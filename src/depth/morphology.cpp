// Square filters. Along a row, windows grow threefold: the result over 3 n
// pixels combines three neighbouring results over n. Down the columns, the van
// Herk/Gil-Werman algorithm: rows come in blocks as long as the window, which
// is then the end of one block and the beginning of the next, so that a window
// of any length takes three operations per pixel.
#include "depth/morphology.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <utility>

namespace zuqel {
namespace {

// `kNeutral` stands for pixels outside the image.
struct Union {
  static constexpr uint8_t kNeutral = 0;
  static uint8_t Of(uint8_t a, uint8_t b) { return a | b; }
};
struct Minimum {
  static constexpr uint8_t kNeutral = 255;
  static uint8_t Of(uint8_t a, uint8_t b) { return std::min(a, b); }
};
struct Maximum {
  static constexpr uint8_t kNeutral = 0;
  static uint8_t Of(uint8_t a, uint8_t b) { return std::max(a, b); }
};

template <typename Op>
class SquareFilter {
 public:
  SquareFilter(ImageSize size, uint8_t radius)
      : width_(static_cast<size_t>(size.width)),
        height_(static_cast<size_t>(size.height)),
        // A window reaches no further than the image.
        reach_x_(std::min<size_t>(radius, width_)),
        reach_y_(std::min<size_t>(radius, height_)),
        row_(RoundUp(width_ + reach_x_)),
        padding_(RoundUp(4 * reach_x_)),
        block_(2 * reach_y_ + 1) {}

  // Two blocks, a row, and three times the rows filtered together, padded.
  [[nodiscard]] size_t ScratchBytes() const {
    return (2 * block_ + 1) * row_ + 3 * (kRowsAtOnce * row_ + padding_) +
           kVector;
  }

  void Run(Plane<const uint8_t> in, uint8_t* scratch, Plane<uint8_t> out) {
    // Vectors that straddle two cache lines cost twice as much.
    const auto past = reinterpret_cast<uintptr_t>(scratch) % kVector;
    uint8_t* ends = scratch + (kVector - past);
    uint8_t* next = ends + block_ * row_;
    uint8_t* beginning = next + block_ * row_;
    work_ = beginning + row_;
    std::memset(work_, Op::kNeutral, kRowsAtOnce * row_ + padding_);
    MakeBlock(in, 0, ends);
    MakeEnds(ends);
    // A block is read before rows of it are written.
    for (size_t y = 0; y < height_; y += block_) {
      MakeBlock(in, y + block_, next);
      std::memset(beginning, Op::kNeutral, width_);
      const size_t rows = std::min(block_, height_ - y);
      for (size_t i = 0; i < rows; ++i) {
        Join(ends + i * row_, next + i * row_, beginning,
             out.data + (y + i) * width_);
      }
      MakeEnds(next);
      std::swap(ends, next);
    }
  }

 private:
  static constexpr size_t kRowsAtOnce = 8;
  static constexpr size_t kVector = 32;

  // Loops over whole vectors leave no remainder.
  static size_t RoundUp(size_t count) {
    return (count + kVector - 1) / kVector * kVector;
  }

  // The rows of a block, filtered along themselves. Block 0 begins as far above
  // the image as a window reaches.
  void MakeBlock(Plane<const uint8_t> in, size_t first, uint8_t* rows) {
    for (size_t done = 0; done < block_; done += kRowsAtOnce) {
      const size_t count = std::min(kRowsAtOnce, block_ - done);
      for (size_t i = 0; i < count; ++i) {
        const size_t y = first + done + i - reach_y_;  // wraps above the image
        uint8_t* row = work_ + i * row_ + reach_x_;
        if (y < height_) {
          std::memcpy(row, in.data + y * width_, width_);
        } else {
          std::memset(row, Op::kNeutral, width_);
        }
      }
      FilterRows(count * row_, rows + done * row_);
    }
  }

  // Filters the rows in `work_` as if they were one: as many neutral pixels as
  // a window reaches lie before each row and after the last.
  void FilterRows(size_t count, uint8_t* out) const {
    const size_t window = 2 * reach_x_ + 1;
    const uint8_t* from = work_;
    uint8_t* to = work_ + kRowsAtOnce * row_ + padding_;
    uint8_t* spare = to + kRowsAtOnce * row_ + padding_;
    size_t reach = 1;
    for (; 3 * reach < window; reach *= 3) {
      CombineThree(from, from + reach, from + 2 * reach,
                   count + RoundUp(window - 3 * reach), to);
      from = to;
      std::swap(to, spare);
    }
    const size_t last = window - reach;
    if (last <= reach) {
      CombineTwo(from, from + last, count, out);
    } else {
      CombineThree(from, from + reach, from + last, count, out);
    }
  }

  // Each row becomes the combination of itself and all later rows of its block.
  void MakeEnds(uint8_t* rows) const {
    for (size_t i = block_ - 1; i-- > 0;) {
      uint8_t* row = rows + i * row_;
      CombineTwo(row, row + row_, row_, row);
    }
  }

  // Writes the window that ends with the row before `row`, which is then
  // combined into the beginning of its block.
  void Join(const uint8_t* end, const uint8_t* row, uint8_t* beginning,
            uint8_t* out) const {
    const size_t width = width_;  // writing bytes may alias the member
    for (size_t x = 0; x < width; ++x) {
      out[x] = Op::Of(end[x], beginning[x]);
      beginning[x] = Op::Of(beginning[x], row[x]);
    }
  }

  static void CombineTwo(const uint8_t* a, const uint8_t* b, size_t count,
                         uint8_t* out) {
    for (size_t i = 0; i < count; ++i) out[i] = Op::Of(a[i], b[i]);
  }

  static void CombineThree(const uint8_t* a, const uint8_t* b, const uint8_t* c,
                           size_t count, uint8_t* out) {
    for (size_t i = 0; i < count; ++i) {
      out[i] = Op::Of(Op::Of(a[i], b[i]), c[i]);
    }
  }

  size_t width_;
  size_t height_;
  size_t reach_x_;
  size_t reach_y_;
  size_t row_;      // bytes from row to row
  size_t padding_;  // bytes after the rows filtered together
  size_t block_;    // rows
  uint8_t* work_ = nullptr;
};

template <typename Op>
bool Filter(Plane<const uint8_t> in, uint8_t radius, Buffer& scratch,
            Plane<uint8_t> out) {
  if (!ReserveSquareFilter(in.extent(), radius, scratch)) return false;
  if (in.size() == 0) return true;
  SquareFilter<Op>(in.extent(), radius).Run(in, scratch.bytes(), out);
  return true;
}

}  // namespace

bool ReserveSquareFilter(ImageSize size, uint8_t radius, Buffer& scratch) {
  if (size.width == 0 || size.height == 0) return true;
  // The layout is the same for all operations.
  const size_t bytes = SquareFilter<Union>(size, radius).ScratchBytes();
  return bytes <= INT32_MAX && scratch.Reserve(bytes);
}

bool DilateMask(Plane<const uint8_t> in, uint8_t radius, Buffer& scratch,
                Plane<uint8_t> out) {
  return Filter<Union>(in, radius, scratch, out);
}

bool ErodeMin(Plane<const uint8_t> in, uint8_t radius, Buffer& scratch,
              Plane<uint8_t> out) {
  return Filter<Minimum>(in, radius, scratch, out);
}

bool DilateMax(Plane<const uint8_t> in, uint8_t radius, Buffer& scratch,
               Plane<uint8_t> out) {
  return Filter<Maximum>(in, radius, scratch, out);
}

}  // namespace zuqel
