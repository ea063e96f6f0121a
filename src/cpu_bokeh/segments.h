// Parts of a row, as bits of one word.
#ifndef ZUQEL_CPU_BOKEH_SEGMENTS_H_
#define ZUQEL_CPU_BOKEH_SEGMENTS_H_

#include <algorithm>
#include <bit>
#include <cstdint>

#include "cpu_bokeh/box_kernels.h"
#include "cpu_bokeh/resize/row_resizer.h"

namespace zuqel {

// A row in at most 64 segments, all but the last equally long: a multiple of
// the period of every change of size, and of the boxes' blocks.
class Segments {
 public:
  explicit Segments(int32_t width)
      : width_(width),
        length_(kShortest *
                std::max((width + kShortest * 64 - 1) / (kShortest * 64), 1)),
        count_((width + length_ - 1) / length_) {}

  [[nodiscard]] int32_t count() const { return count_; }
  [[nodiscard]] int32_t begin(int32_t segment) const {
    return segment * length_;
  }
  [[nodiscard]] int32_t end(int32_t segment) const {
    return std::min((segment + 1) * length_, width_);
  }
  // The bits of all.
  [[nodiscard]] uint64_t all() const {
    return count_ == 0 ? 0 : ~uint64_t{0} >> (64 - count_);
  }

  // Calls run(begin, end), in samples, for each run of bits.
  template <typename Run>
  void ForEachRun(uint64_t bits, Run run) const {
    while (bits != 0) {
      const int32_t first = std::countr_zero(bits);
      const uint64_t shifted = bits >> first;
      const int32_t length = std::countr_one(shifted);
      run(begin(first), end(first + length - 1));
      if (first + length >= 64) return;
      bits = bits >> (first + length) << (first + length);
    }
  }

 private:
  static constexpr int32_t kShortest = 96;
  static_assert(kShortest % RowResizer<uint8_t>::kStep == 0 &&
                kShortest % BoxKernels::kBlock == 0);

  int32_t width_;
  int32_t length_;
  int32_t count_;
};

}  // namespace zuqel

#endif  // ZUQEL_CPU_BOKEH_SEGMENTS_H_
