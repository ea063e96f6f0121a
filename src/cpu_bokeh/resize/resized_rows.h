// A change of size in up to three steps, row by row.
#ifndef ZUQEL_CPU_BOKEH_RESIZE_RESIZED_ROWS_H_
#define ZUQEL_CPU_BOKEH_RESIZE_RESIZED_ROWS_H_

#include <array>
#include <cstddef>
#include <cstdint>

#include "base/image_size.h"
#include "cpu_bokeh/made_rows.h"
#include "cpu_bokeh/resize/row_resizer.h"

namespace zuqel {

// Rows at another size: linear interpolation at centre-aligned positions where
// an axis grows, the mean weighted by coverage where it shrinks. Weights are in
// 1/256; rows are combined before columns, and each pass is rounded to nearest.
// Exact factors of 8, 9 and 12 that both axes share are made in steps, each
// rounded. Sizes are not empty. `Sample` is uint8_t or uint16_t.
template <typename Sample>
class ResizedRows {
 public:
  // Makes room for a change of size; false when there is no memory.
  [[nodiscard]] bool Reserve(ImageSize from, ImageSize to);

  // Begins a change of size for which there is room.
  void Begin(ImageSize from, ImageSize to);

  // As RowResizer has them, of the first step's source.
  [[nodiscard]] Stretch SourceRows(int32_t y) const;
  [[nodiscard]] Stretch SourceColumns(int32_t begin, int32_t end) const;

  // As RowResizer has them. Rows are made in rising order.
  template <typename Rows>
  void MakeRow(int32_t y, Rows& rows, Sample* out) {
    auto before = RowsBefore(count_ - 1, rows);
    steps_[count_ - 1].MakeRow(y, before, out);
  }
  template <typename Rows>
  void CombineRow(int32_t y, Rows& rows) {
    auto before = RowsBefore(count_ - 1, rows);
    steps_[count_ - 1].CombineRow(y, before);
  }
  void FinishRow(int32_t begin, int32_t end, Sample* out) const {
    steps_[count_ - 1].FinishRow(begin, end, out);
  }

 private:
  static constexpr size_t kMostSteps = 3;

  template <typename Rows>
  auto RowsBefore(size_t step, Rows& rows) {
    return [this, step, &rows](int32_t y) -> const Sample* {
      return step == 0 ? rows(y) : Between(step - 1, y, rows);
    };
  }
  // Row `y` of what a step makes for the next one.
  template <typename Rows>
  const Sample* Between(size_t step, int32_t y, Rows& rows) {
    return between_[step].Row(y, [&](int32_t made, Sample* row) {
      auto before = RowsBefore(step, rows);
      steps_[step].MakeRow(made, before, row);
    });
  }

  size_t count_ = 0;
  std::array<RowResizer<Sample>, kMostSteps> steps_;
  std::array<MadeRows<Sample>, kMostSteps - 1> between_;
};

}  // namespace zuqel

#endif  // ZUQEL_CPU_BOKEH_RESIZE_RESIZED_ROWS_H_
