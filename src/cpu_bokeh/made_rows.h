// Planes of which only the rows in use are kept.
#ifndef ZUQEL_CPU_BOKEH_MADE_ROWS_H_
#define ZUQEL_CPU_BOKEH_MADE_ROWS_H_

#include <cassert>
#include <cstddef>
#include <cstdint>
#include <optional>

#include "base/buffer.h"

namespace zuqel {

// The rows of a stage in a chain that runs row by row, made when they are asked
// for, in rising order. A row stays until as many have followed as there is
// room for.
template <typename Sample>
class MadeRows {
 public:
  // Makes room for `count` rows of `width` samples, and `margin` more before
  // and after each; false when there is no memory.
  [[nodiscard]] bool Reserve(int32_t width, int32_t count, int32_t margin = 0) {
    count_ = count;
    margin_ = margin;
    width_ = width;
    return bytes_.Reserve(ByteCount(width + 2 * margin, count, sizeof(Sample)));
  }

  // Forgets all rows.
  void Begin() { made_ = 0; }

  // Row `y`, made by make(y, row) if it is not there, as those before it.
  template <typename Make>
  const Sample* Row(int32_t y, Make make) {
    assert(y + count_ >= made_);
    for (; made_ <= y; ++made_) make(made_, At(made_));
    return At(y);
  }

 private:
  [[nodiscard]] Sample* At(int32_t y) const {
    const size_t stride =
        static_cast<size_t>(width_) + 2 * static_cast<size_t>(margin_);
    return reinterpret_cast<Sample*>(bytes_.bytes()) +
           static_cast<size_t>(y % count_) * stride +
           static_cast<size_t>(margin_);
  }

  Buffer bytes_;
  int32_t count_ = 1;
  int32_t margin_ = 0;
  int32_t width_ = 0;
  int32_t made_ = 0;
};

}  // namespace zuqel

#endif  // ZUQEL_CPU_BOKEH_MADE_ROWS_H_
