// Weighted sums of rows, then of the samples in a row.
#include "cpu_bokeh/resize/resize_by_taps.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstring>

namespace zuqel {
namespace {

constexpr uint32_t kHalf = 128;

template <int32_t kCount, typename Sample>
void SumOf(Plane<const Sample> in, const AxisTaps::Taps& taps,
           Lane<Sample>* row) {
  const Sample* first = in.row(taps.first);
  std::array<uint16_t, kCount> weights;
  std::copy_n(taps.weights, kCount, weights.begin());
  for (int32_t x = 0; x < in.width; ++x) {
    uint32_t sum = kHalf;
    for (int32_t i = 0; i < kCount; ++i) {
      sum += uint32_t{weights[static_cast<size_t>(i)]} *
             first[x + ptrdiff_t{i} * in.width];
    }
    row[x] = static_cast<Lane<Sample>>(static_cast<Lane<Sample>>(sum) >> 8);
  }
}

// Any number of rows.
template <typename Sample>
void SumOfMany(Plane<const Sample> in, const AxisTaps::Taps& taps,
               Lane<Sample>* row) {
  std::fill_n(row, in.width, Lane<Sample>{kHalf});
  for (int32_t i = 0; i < taps.count; ++i) {
    const Sample* source = in.row(taps.first + i);
    const uint32_t weight = taps.weights[i];
    for (int32_t x = 0; x < in.width; ++x) {
      row[x] = static_cast<Lane<Sample>>(row[x] + weight * source[x]);
    }
  }
  for (int32_t x = 0; x < in.width; ++x) {
    row[x] = static_cast<Lane<Sample>>(row[x] >> 8);
  }
}

// `row` becomes the rows of `in` that `taps` names, combined.
template <typename Sample>
void CombineRows(Plane<const Sample> in, const AxisTaps::Taps& taps,
                 Lane<Sample>* row) {
  switch (taps.count) {
    case 1:
      std::copy_n(in.row(taps.first), in.width, row);
      break;
    case 2:
      SumOf<2>(in, taps, row);
      break;
    case 3:
      SumOf<3>(in, taps, row);
      break;
    case 4:
      SumOf<4>(in, taps, row);
      break;
    default:
      SumOfMany(in, taps, row);
  }
}

template <typename Sample>
void CombineColumns(const Lane<Sample>* row, const AxisTaps& columns,
                    int32_t width, Sample* out) {
  for (int32_t x = 0; x < width; ++x) {
    const AxisTaps::Taps taps = columns[x];
    uint32_t sum = kHalf;
    for (int32_t i = 0; i < taps.count; ++i) {
      sum += taps.weights[i] * row[taps.first + i];
    }
    out[x] = static_cast<Sample>(sum >> 8);
  }
}

// Four bytes with one product; `row` is readable for four lanes past its end.
void CombinePackedColumns(const uint16_t* row, const AxisTaps& columns,
                          int32_t width, uint8_t* out) {
  static_assert(std::endian::native == std::endian::little);
  const AxisTaps::PackedTaps* packed = columns.packed();
  for (int32_t x = 0; x < width; ++x) {
    uint64_t samples = 0;
    std::memcpy(&samples, row + packed[x].first, sizeof(samples));
    const uint64_t sum = samples * packed[x].weights + (uint64_t{kHalf} << 48);
    out[x] = static_cast<uint8_t>(sum >> 56);
  }
}

// The weights of a walk repeat where the factor is whole.
RowFunction<uint8_t> RowOfWalk(int32_t source, int32_t target) {
  if (target == 2 * source) return EnlargeRowBy2;
  return target == 4 * source ? EnlargeRowBy4 : nullptr;
}

template <typename Sample>
void ResizeRow(const Lane<Sample>* row, const AxisTaps& columns, int32_t width,
               Sample* out) {
  if constexpr (sizeof(Sample) == 1) {
    if (columns.most() <= AxisTaps::kPadded) {
      return CombinePackedColumns(row, columns, width, out);
    }
  }
  CombineColumns(row, columns, width, out);
}

}  // namespace

template <typename Sample>
bool ReserveTaps(ImageSize from, ImageSize to, TapScratch& scratch) {
  const auto row_bytes = ByteCount(from.width, 1, sizeof(Lane<Sample>));
  constexpr size_t kPastEnd = AxisTaps::kPadded * sizeof(Lane<Sample>);
  return row_bytes && scratch.row.Reserve(*row_bytes + kPastEnd) &&
         scratch.rows.Reserve(from.height, to.height) &&
         scratch.columns.Reserve(from.width, to.width);
}

template <typename Sample>
void ResizeByTaps(Plane<const Sample> in, RowFunction<Sample> resize_row,
                  TapScratch& scratch, Plane<Sample> out) {
  if constexpr (sizeof(Sample) == 1) {
    if (resize_row == nullptr) resize_row = RowOfWalk(in.width, out.width);
  }
  scratch.rows.Walk(in.height, out.height);
  // Fixed weights replace the taps of the columns.
  if (resize_row == nullptr) scratch.columns.Walk(in.width, out.width);
  auto* row = reinterpret_cast<Lane<Sample>*>(scratch.row.bytes());
  for (int32_t y = 0; y < out.height; ++y) {
    CombineRows(in, scratch.rows[y], row);
    if (resize_row != nullptr) {
      resize_row(row, in.width, out.row(y));
    } else {
      ResizeRow(row, scratch.columns, out.width, out.row(y));
    }
  }
}

template bool ReserveTaps<uint8_t>(ImageSize, ImageSize, TapScratch&);
template bool ReserveTaps<uint16_t>(ImageSize, ImageSize, TapScratch&);
template void ResizeByTaps(Plane<const uint8_t>, RowFunction<uint8_t>,
                           TapScratch&, Plane<uint8_t>);
template void ResizeByTaps(Plane<const uint16_t>, RowFunction<uint16_t>,
                           TapScratch&, Plane<uint16_t>);

}  // namespace zuqel
