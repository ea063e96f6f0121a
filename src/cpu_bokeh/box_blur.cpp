// Box blurs by running sums. Horizontally blurred rows stay in a ring buffer
// until the rows below no longer need them: a plane is read and written once.
#include "cpu_bokeh/box_blur.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstring>
#include <numeric>
#include <optional>

#include "base/kernel_set.h"
#include "cpu_bokeh/box_kernels.h"

namespace zuqel {
namespace {

// Exact division of sums of `size` bytes by `size`, by its reciprocal: with a
// multiplier of 2^shift / size, rounded up, the quotient is right as long as
// sum * size < 2^shift.
class BoxDivision {
 public:
  explicit BoxDivision(uint32_t size)
      : shift_(
            static_cast<int32_t>(std::bit_width(uint64_t{255} * size * size))),
        multiplier_(
            static_cast<uint32_t>(((uint64_t{1} << shift_) + size - 1) / size)),
        fits_32_bits_(uint64_t{multiplier_} * 255 * size <= UINT32_MAX) {}

  void Divide(const uint32_t* sums, size_t count, uint8_t* out) const {
    if (fits_32_bits_) {
      for (size_t x = 0; x < count; ++x) {
        out[x] = static_cast<uint8_t>(sums[x] * multiplier_ >> shift_);
      }
    } else {
      for (size_t x = 0; x < count; ++x) out[x] = (*this)(sums[x]);
    }
  }
  [[nodiscard]] uint8_t operator()(uint32_t sum) const {
    return static_cast<uint8_t>(uint64_t{sum} * multiplier_ >> shift_);
  }

 private:
  int32_t shift_;
  uint32_t multiplier_;
  bool fits_32_bits_;
};

// Two rows of lanes.
std::optional<size_t> LaneBytes(int32_t width) {
  return ByteCount(BoxKernels::Lanes(width), 2, sizeof(uint16_t));
}

// Mean over each pixel's neighbours in a row. `padded` has room for the row and
// its end pixels, repeated outside.
void BlurRow(const uint8_t* in, int32_t width, int32_t radius,
             const BoxDivision& division, uint8_t* padded, uint16_t* out) {
  uint8_t* end = std::fill_n(padded, radius, in[0]);
  end = std::copy_n(in, width, end);
  std::fill_n(end, radius + 1, in[width - 1]);
  const int32_t size = 2 * radius + 1;
  uint32_t sum = std::accumulate(padded, padded + size, 0U);
  for (int32_t x = 0; x < width; ++x) {
    out[x] = division(sum);
    sum += uint32_t{padded[x + size]} - padded[x];
  }
}

// Horizontally blurred rows by number, made when asked for; each stays until as
// many have followed as the ring holds.
class BlurredRows {
 public:
  BlurredRows(Plane<const uint8_t> in, int32_t radius, uint8_t* padded_row,
              uint16_t* ring, int32_t ring_rows)
      : in_(in),
        radius_(radius),
        division_(2 * static_cast<uint32_t>(radius) + 1),
        padded_row_(padded_row),
        ring_{ring, in.width, ring_rows} {}

  // A number outside means the row at that edge. New rows are asked for in
  // rising order.
  const uint16_t* operator()(int32_t y) {
    y = std::clamp(y, 0, in_.height - 1);
    for (; made_ <= y; ++made_) {
      BlurRow(in_.row(made_), in_.width, radius_, division_, padded_row_,
              ring_.row(made_ % ring_.height));
    }
    return ring_.row(y % ring_.height);
  }
  [[nodiscard]] const BoxDivision& division() const { return division_; }

 private:
  Plane<const uint8_t> in_;
  int32_t radius_;
  BoxDivision division_;
  uint8_t* padded_row_;
  Plane<uint16_t> ring_;
  int32_t made_ = 0;
};

void BlurColumns(BlurredRows& rows, int32_t radius, uint32_t* sums,
                 Plane<uint8_t> out) {
  const auto width = static_cast<size_t>(out.width);
  const auto add = [&](const uint16_t* row, uint32_t times) {
    for (size_t x = 0; x < width; ++x) sums[x] += times * row[x];
  };
  std::fill_n(sums, width, 0U);
  add(rows(0), static_cast<uint32_t>(radius) + 1);
  for (int32_t y = 1; y <= radius; ++y) {
    const int32_t left = y < out.height ? 1 : radius - y + 1;
    add(rows(y), static_cast<uint32_t>(left));
    if (left != 1) break;  // the last row stands for all below
  }
  for (int32_t y = 0; y < out.height; ++y) {
    rows.division().Divide(sums, width, out.row(y));
    const uint16_t* entering = rows(y + radius + 1);
    const uint16_t* leaving = rows(y - radius);
    for (size_t x = 0; x < width; ++x) {
      sums[x] += uint32_t{entering[x]} - leaving[x];
    }
  }
}

// Blurred ends of three rows, which have no neighbour on one side.
class RowEnds {
 public:
  explicit RowEnds(size_t width)
      : last_(width - 1), inner_(std::min<size_t>(1, last_)) {}

  void Add(const uint8_t* row) {
    const auto third = [&](size_t x, size_t inner) {
      return (2U * row[x] + row[inner]) / 3;
    };
    rows_ = {
        rows_[1], rows_[2], {third(0, inner_), third(last_, last_ - inner_)}};
  }
  void Blur(uint8_t* out) const {
    const auto third = [&](size_t end) {
      return static_cast<uint8_t>(
          (rows_[0][end] + rows_[1][end] + rows_[2][end]) / 3);
    };
    out[0] = third(0);
    out[last_] = third(1);
  }

 private:
  size_t last_, inner_;
  std::array<std::array<uint32_t, 2>, 3> rows_ = {};
};

// The box of radius 1. There is room for two rows of lanes, then for a row and
// a sample on either side.
void BlurBy1(Plane<const uint8_t> in, const Buffer& scratch,
             Plane<uint8_t> out) {
  auto* lanes = reinterpret_cast<uint16_t*>(scratch.bytes());
  uint8_t* padded = scratch.bytes() + *LaneBytes(in.width);
  const auto& box = Kernels<BoxKernels>();
  const auto width = static_cast<size_t>(in.width);
  const int32_t last = in.height - 1;
  const bool is_in_place = in.data == out.data;
  // A row with a sample on either side. Which ones does not matter: ends are
  // made apart.
  const auto with_neighbours = [&](int32_t y) -> const uint8_t* {
    const uint8_t* row = in.row(y);
    if (y > 0 && y < last && !is_in_place) return row;
    return static_cast<uint8_t*>(std::memcpy(padded + 1, row, width));
  };
  RowEnds ends(width);
  std::array<uint16_t*, 2> rows = {lanes, lanes + BoxKernels::Lanes(in.width)};
  const auto begin = [&](uint16_t* row) {
    box.along(with_neighbours(0) - 1, width, row);
    ends.Add(in.row(0));
  };
  begin(rows[0]);
  begin(rows[1]);
  for (int32_t y = 0; y <= last; ++y) {
    const int32_t below = std::min(y + 1, last);
    ends.Add(in.row(below));
    box.both(with_neighbours(below) - 1, width, rows[0], rows[1], out.row(y),
             {in.row(std::min(y + 2, last)), out.row(below)});
    ends.Blur(out.row(y));
    std::swap(rows[0], rows[1]);
  }
}

// Layout of the scratch memory: column sums, the ring of blurred rows, a padded
// row.
struct ScratchLayout {
  int32_t ring_rows;
  std::optional<size_t> sum_bytes, ring_bytes;
  size_t padded_bytes;

  ScratchLayout(ImageSize size, int32_t radius)
      : ring_rows(std::min(2 * radius + 2, size.height)),
        sum_bytes(ByteCount(size.width, 1, sizeof(uint32_t))),
        ring_bytes(ByteCount(size.width, ring_rows, sizeof(uint16_t))),
        padded_bytes(static_cast<size_t>(size.width) +
                     2 * static_cast<size_t>(radius) + 1) {}
};

}  // namespace

bool ReserveBoxBlur(ImageSize size, int32_t radius, Buffer& scratch) {
  if (size.width == 0 || size.height == 0 || radius <= 0) return true;
  if (radius == 1) {
    const auto lanes = LaneBytes(size.width);
    return lanes &&
           scratch.Reserve(*lanes + static_cast<size_t>(size.width) + 2);
  }
  const ScratchLayout layout(size, std::min(radius, kLargestBoxRadius));
  return layout.sum_bytes && layout.ring_bytes &&
         scratch.Reserve(*layout.sum_bytes + *layout.ring_bytes +
                         layout.padded_bytes);
}

bool BoxBlur(Plane<const uint8_t> in, int32_t radius, Buffer& scratch,
             Plane<uint8_t> out) {
  if (!ReserveBoxBlur(in.extent(), radius, scratch)) return false;
  if (in.size() == 0) return true;
  if (radius <= 0) {
    if (out.data != in.data) std::memcpy(out.data, in.data, in.size());
    return true;
  }
  if (radius == 1) {
    BlurBy1(in, scratch, out);
    return true;
  }
  radius = std::min(radius, kLargestBoxRadius);
  const ScratchLayout layout(in.extent(), radius);
  uint8_t* const ring_bytes = scratch.bytes() + *layout.sum_bytes;
  auto* sums = reinterpret_cast<uint32_t*>(scratch.bytes());
  auto* ring = reinterpret_cast<uint16_t*>(ring_bytes);
  BlurredRows rows(in, radius, ring_bytes + *layout.ring_bytes, ring,
                   layout.ring_rows);
  BlurColumns(rows, radius, sums, out);
  return true;
}

std::array<int32_t, 3> GaussianBoxRadii(int32_t strength) {
  const double sigma = strength * (1.0 / 3);
  const double a = 12 * (sigma * sigma);
  const double ideal = std::sqrt(a * (1.0 / 3) + 1);
  auto lower = static_cast<int32_t>(std::floor(ideal));
  if (lower % 2 == 0) lower -= 1;
  const int32_t upper = lower + 2;
  // How many of the three have the lower size. Integer terms have 32 bits.
  const auto wl = static_cast<uint32_t>(lower);
  const auto whole = [](uint32_t value) {
    return static_cast<double>(static_cast<int32_t>(value));
  };
  const double ratio =
      (a - whole(3 * wl * wl) - whole(12 * wl) - 9) / whole(0 - 4 * wl - 4);

  std::array<int32_t, 3> radii;
  for (int32_t i = 0; i < 3; ++i) {
    // Not as an integer, which would not hold every ratio.
    const int32_t size = ratio + 0.5 >= i + 1 ? lower : upper;
    radii[static_cast<size_t>(i)] = (size - 1) / 2;
  }
  return radii;
}

bool ReserveBoxGaussianBlur(ImageSize size, int32_t strength, Buffer& scratch) {
  const auto radii = GaussianBoxRadii(strength);
  return std::all_of(radii.begin(), radii.end(), [&](int32_t radius) {
    return ReserveBoxBlur(size, radius, scratch);
  });
}

bool BoxGaussianBlur(Plane<const uint8_t> in, int32_t strength, Buffer& scratch,
                     Plane<uint8_t> out) {
  // All of it before the first box is written.
  if (!ReserveBoxGaussianBlur(in.extent(), strength, scratch)) return false;
  // Copies between the boxes have no effect on the result.
  bool is_first = true;
  for (const int32_t radius : GaussianBoxRadii(strength)) {
    if (radius == 0) continue;
    if (!BoxBlur(is_first ? in : out, radius, scratch, out)) return false;
    is_first = false;
  }
  return !is_first || BoxBlur(in, 0, scratch, out);
}

}  // namespace zuqel
