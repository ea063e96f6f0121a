// Chooses kernels by the ratio of two sizes, and feeds them.
#include "cpu_bokeh/resize/row_resizer.h"

#include <algorithm>
#include <bit>
#include <cstring>

#include "base/kernel_set.h"

namespace zuqel {
namespace {

constexpr uint32_t kHalf = 128;

// The factor by which both axes of `large` are longer; 0 for none.
int32_t WholeFactor(ImageSize small, ImageSize large) {
  const int32_t factor = large.width / small.width;
  return int64_t{small.width} * factor == large.width &&
                 int64_t{small.height} * factor == large.height
             ? factor
             : 0;
}

template <typename Sample>
auto ReduceBy(int32_t factor) -> typename ReduceKernels<Sample>::Reduce {
  const auto& kernels = Kernels<ReduceKernels<Sample>>();
  switch (factor) {
    case 2:
      return kernels.halves;
    case 3:
      return kernels.thirds;
    case 4:
      return kernels.quarters;
    case 6:
      return kernels.sixths;
    default:
      return nullptr;
  }
}

// Repeats the end samples outside the row. The margin is short and constant.
template <int32_t kMargin, typename T>
void PadRow(T* row, int32_t width) {
  for (int32_t i = 1; i <= kMargin; ++i) {
    row[-i] = row[0];
    row[width - 1 + i] = row[width - 1];
  }
}

}  // namespace

template <typename Sample>
bool RowResizer<Sample>::Reserve(ImageSize from, ImageSize to) {
  const auto row_bytes = ByteCount(from.width, 1, sizeof(Lane<Sample>));
  return row_bytes &&
         row_.Reserve(kLead + *row_bytes + sizeof(Lane<Sample>) * kMargin) &&
         rows_.Reserve(from.height, to.height) &&
         columns_.Reserve(from.width, to.width);
}

template <typename Sample>
void RowResizer<Sample>::Begin(ImageSize from, ImageSize to) {
  from_ = from;
  to_ = to;
  combine_ = &Kernels<CombineKernels<Sample>>();
  enlarge_ = &Kernels<EnlargeKernels>();
  block_ = 0;
  along_ = nullptr;
  from_period_ = to_period_ = 1;
  is_twice_ = false;
  const int32_t shrinks_by = WholeFactor(to, from);
  reduce_ = ReduceBy<Sample>(shrinks_by);
  if (reduce_ != nullptr) {
    block_ = shrinks_by;
    return;
  }
  rows_.Walk(from.height, to.height);
  const auto repeats = [&](int32_t from_period, int32_t to_period) {
    return int64_t{from.width} * to_period == int64_t{to.width} * from_period;
  };
  const auto choose = [&](Along along, int32_t from_period, int32_t to_period) {
    along_ = along;
    from_period_ = from_period;
    to_period_ = to_period;
  };
  if (repeats(3, 1)) {
    return choose(Kernels<ReduceKernels<Sample>>().thirds_along, 3, 1);
  }
  if constexpr (sizeof(Sample) == 1) {
    is_twice_ = WholeFactor(from, to) == 2;
    if (is_twice_) return choose(nullptr, 1, 2);
    if (repeats(1, 3)) return choose(enlarge_->by_3, 1, 3);
    if (repeats(1, 4)) return choose(enlarge_->by_4, 1, 4);
    if (repeats(1, 6)) return choose(enlarge_->by_6, 1, 6);
  } else {
    // The one change of size by one and a half whose weights are rounded.
    if (from == ImageSize{1280, 720} && to == ImageSize{1920, 1080}) {
      return choose(enlarge_->by_3_halves, 2, 3);
    }
  }
  columns_.Walk(from.width, to.width);
}

template <typename Sample>
Stretch RowResizer<Sample>::SourceRows(int32_t y) const {
  if (block_ != 0) return {y * block_, (y + 1) * block_ - 1};
  return {rows_[y].first, rows_[y].first + rows_[y].count - 1};
}

template <typename Sample>
Stretch RowResizer<Sample>::SourceColumns(int32_t begin, int32_t end) const {
  if (block_ != 0) return {begin * block_, end * block_ - 1};
  if (to_period_ == 1 && from_period_ == 1) {
    const AxisTaps::Taps last = columns_[end - 1];
    return {columns_[begin].first, last.first + last.count - 1};
  }
  return {std::max(begin / to_period_ * from_period_ - 1, 0),
          std::min((end + to_period_ - 1) / to_period_ * from_period_,
                   from_.width - 1)};
}

template <typename Sample>
void RowResizer<Sample>::CombineSome(const Sample* const* rows,
                                     const AxisTaps::Taps& taps) {
  const auto width = static_cast<size_t>(from_.width);
  if constexpr (sizeof(Sample) == 1) {
    if (is_twice_) {
      // Weights of 1/4 and 3/4, or one row alone.
      const bool is_first_near = taps.weights[0] > kHalf;
      const uint8_t* near = rows[is_first_near ? 0 : 1];
      const uint8_t* far = taps.count == 1 ? near : rows[is_first_near ? 1 : 0];
      enlarge_->lean(near, far, width, bytes());
      return PadRow<kMargin>(bytes(), from_.width);
    }
  }
  switch (taps.count) {
    case 1:
      combine_->one(rows, taps.weights, width, lanes());
      break;
    case 2:
      combine_->two(rows, taps.weights, width, lanes());
      break;
    case 3:
      combine_->three(rows, taps.weights, width, lanes());
      break;
    default:
      combine_->four(rows, taps.weights, width, lanes());
  }
  PadRow<kMargin>(lanes(), from_.width);
}

template <typename Sample>
void RowResizer<Sample>::BeginSum() {
  std::fill_n(lanes(), from_.width, Lane<Sample>{kHalf});
}
template <typename Sample>
void RowResizer<Sample>::AddToSum(const Sample* row, uint32_t weight) {
  combine_->add(row, weight, static_cast<size_t>(from_.width), lanes());
}
template <typename Sample>
void RowResizer<Sample>::EndSum() {
  combine_->round(static_cast<size_t>(from_.width), lanes());
  PadRow<kMargin>(lanes(), from_.width);
}

template <typename Sample>
void RowResizer<Sample>::FinishRow(int32_t begin, int32_t end,
                                   Sample* out) const {
  if (block_ != 0) {
    std::copy(reduced() + begin, reduced() + end, out + begin);
    return;
  }
  const int32_t periods = (end - begin) / to_period_;
  const int32_t from = begin / to_period_ * from_period_;
  if constexpr (sizeof(Sample) == 1) {
    if (is_twice_) {
      return enlarge_->by_2(bytes() + from, static_cast<size_t>(periods),
                            out + begin);
    }
  }
  if (along_ != nullptr) {
    return along_(lanes() + from, static_cast<size_t>(periods), out + begin);
  }
  FinishByTaps(begin, end, out);
}

template <typename Sample>
void RowResizer<Sample>::FinishByTaps(int32_t begin, int32_t end,
                                      Sample* out) const {
  const Lane<Sample>* row = lanes();
  if constexpr (sizeof(Sample) == 1) {
    if (columns_.most() <= AxisTaps::kPadded) {
      // Four samples with one product; the row's margin is readable.
      static_assert(std::endian::native == std::endian::little);
      const AxisTaps::PackedTaps* packed = columns_.packed();
      const auto make = [&](int32_t x) {
        uint64_t samples = 0;
        std::memcpy(&samples, row + packed[x].first, sizeof(samples));
        const uint64_t sum =
            samples * packed[x].weights + (uint64_t{kHalf} << 48);
        out[x] = static_cast<uint8_t>(sum >> 56);
      };
      int32_t x = begin;
      // Unrolled, which halves the time.
      for (; x + 4 <= end; x += 4) {
        make(x);
        make(x + 1);
        make(x + 2);
        make(x + 3);
      }
      for (; x < end; ++x) make(x);
      return;
    }
  }
  for (int32_t x = begin; x < end; ++x) {
    const AxisTaps::Taps taps = columns_[x];
    uint32_t sum = kHalf;
    for (int32_t i = 0; i < taps.count; ++i) {
      sum += taps.weights[i] * row[taps.first + i];
    }
    out[x] = static_cast<Sample>(sum >> 8);
  }
}

template class RowResizer<uint8_t>;
template class RowResizer<uint16_t>;

}  // namespace zuqel
