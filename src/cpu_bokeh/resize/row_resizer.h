// One step of a change of size, row by row.
#ifndef ZUQEL_CPU_BOKEH_RESIZE_ROW_RESIZER_H_
#define ZUQEL_CPU_BOKEH_RESIZE_ROW_RESIZER_H_

#include <array>
#include <cstddef>
#include <cstdint>

#include "base/buffer.h"
#include "base/image_size.h"
#include "cpu_bokeh/resize/axis_taps.h"
#include "cpu_bokeh/resize/combine_kernels.h"
#include "cpu_bokeh/resize/enlarge_kernels.h"
#include "cpu_bokeh/resize/reduce_kernels.h"

namespace zuqel {

// From `first` to `last`, both included.
struct Stretch {
  int32_t first, last;
};

// Makes rows of one size out of rows of another, neither empty: combines rows,
// then samples along the row, each by its axis's taps and rounded to nearest.
// Whole factors have kernels of their own. `Sample` is uint8_t or uint16_t.
template <typename Sample>
class RowResizer {
 public:
  // Makes room for a change of size; false when there is no memory.
  [[nodiscard]] bool Reserve(ImageSize from, ImageSize to);

  // Begins a change of size for which there is room.
  void Begin(ImageSize from, ImageSize to);

  // The rows that row `y` is made of, and the samples that those of a row from
  // `begin` to before `end` are made of.
  [[nodiscard]] Stretch SourceRows(int32_t y) const;
  [[nodiscard]] Stretch SourceColumns(int32_t begin, int32_t end) const;

  // Makes row `y`. `rows(n)` gives row n of the source; all that the row is
  // made of stay in place meanwhile.
  template <typename Rows>
  void MakeRow(int32_t y, Rows& rows, Sample* out) {
    if (block_ != 0) return ReduceRow(y, rows, out);
    CombineRow(y, rows);
    FinishRow(0, to_.width, out);
  }

  // The same in two parts: the first pass, then as often as wanted the second
  // for samples from `begin` to before `end`. These are multiples of kStep, or
  // the row's end. `out` is the row's first sample.
  static constexpr int32_t kStep = 12;
  template <typename Rows>
  void CombineRow(int32_t y, Rows& rows) {
    if (block_ != 0) return ReduceRow(y, rows, reduced());
    const AxisTaps::Taps taps = rows_[y];
    if (taps.count <= kAtOnce) {
      std::array<const Sample*, kAtOnce> some;
      for (int32_t i = 0; i < taps.count; ++i) {
        some[static_cast<size_t>(i)] = rows(taps.first + i);
      }
      return CombineSome(some.data(), taps);
    }
    BeginSum();
    for (int32_t i = 0; i < taps.count; ++i) {
      AddToSum(rows(taps.first + i), taps.weights[i]);
    }
    EndSum();
  }
  void FinishRow(int32_t begin, int32_t end, Sample* out) const;

 private:
  static constexpr int32_t kAtOnce = 4;
  static constexpr size_t kLargestBlock = 6;
  // Samples kept before and after a combined row.
  static constexpr int32_t kMargin = AxisTaps::kPadded;
  // Bytes before it: whole vectors, so that none lies across two cache lines.
  static constexpr size_t kLead = 64;
  static_assert(kMargin * sizeof(Lane<Sample>) <= kLead);

  using Reduce = typename ReduceKernels<Sample>::Reduce;
  using Along = void (*)(const Lane<Sample>* row, size_t count, Sample* out);

  template <typename Rows>
  void ReduceRow(int32_t y, Rows& rows, Sample* out) const {
    std::array<const Sample*, kLargestBlock> block;
    for (int32_t i = 0; i < block_; ++i) {
      block[static_cast<size_t>(i)] = rows(y * block_ + i);
    }
    reduce_(block.data(), static_cast<size_t>(to_.width), out);
  }
  void CombineSome(const Sample* const* rows, const AxisTaps::Taps& taps);
  void BeginSum();
  void AddToSum(const Sample* row, uint32_t weight);
  void EndSum();
  void FinishByTaps(int32_t begin, int32_t end, Sample* out) const;

  [[nodiscard]] Lane<Sample>* lanes() const {
    return reinterpret_cast<Lane<Sample>*>(row_.bytes() + kLead);
  }
  // A row of blocks, which has no second pass.
  [[nodiscard]] Sample* reduced() const {
    return reinterpret_cast<Sample*>(row_.bytes());
  }
  // A combined row where both axes double, which needs no wider samples.
  [[nodiscard]] uint8_t* bytes() const { return row_.bytes() + kLead; }

  ImageSize from_;
  ImageSize to_;
  AxisTaps columns_;
  AxisTaps rows_;
  Buffer row_;
  const CombineKernels<Sample>* combine_ = nullptr;
  const EnlargeKernels* enlarge_ = nullptr;
  // The side of the blocks where both axes shrink by a factor with a kernel.
  int32_t block_ = 0;
  Reduce reduce_ = nullptr;
  // The second pass where weights repeat: from_period_ samples become
  // to_period_.
  Along along_ = nullptr;
  int32_t from_period_ = 1, to_period_ = 1;
  bool is_twice_ = false;
};

}  // namespace zuqel

#endif  // ZUQEL_CPU_BOKEH_RESIZE_ROW_RESIZER_H_
