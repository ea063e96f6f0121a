// Feeds rows and segments to the kernels.
#include "cpu_bokeh/blurred_plane.h"

#include "base/kernel_set.h"
#include "cpu_bokeh/blend_kernels.h"
#include "cpu_bokeh/box_kernels.h"

namespace zuqel {
namespace {

ImageSize HalfOf(ImageSize size) {
  return {size.width / 2, size.height / 2};
}

// A row of the box's first pass: three rows are needed at a time, and two rows
// of its second.
constexpr int32_t kAlongRows = 4;
constexpr int32_t kBlurredRows = 3;

}  // namespace

bool BlurredPlane::Reserve(ImageSize size) {
  const ImageSize half = HalfOf(size);
  const bool has_half = half.pixel_count() > 0;
  return (!has_half || (half_rows_.Reserve(size, half) &&
                        strong_rows_.Reserve(half, size))) &&
         half_row_.Reserve(ByteCount(half.width + 2 * kSourceMargin, 1, 1)) &&
         half_along_.Reserve(BoxKernels::Lanes(half.width), kAlongRows) &&
         half_blurred_.Reserve(half.width, kBlurredRows) &&
         strong_row_.Reserve(ByteCount(size.width, 1, 1)) &&
         mild_along_.Reserve(ByteCount(BoxKernels::Lanes(size.width), kMildRows,
                                       sizeof(uint16_t))) &&
         mild_row_.Reserve(ByteCount(size.width, 1, 1));
}

void BlurredPlane::Begin(ImageSize size) {
  size_ = size;
  half_ = HalfOf(size);
  segments_ = Segments(size.width);
  half_along_.Begin();
  half_blurred_.Begin();
  mild_rows_.fill({});
  if (half_.pixel_count() == 0) return;
  half_rows_.Begin(size, half_);
  strong_rows_.Begin(half_, size);
}

void BlurredPlane::BoxAlong(uint16_t* out) const {
  uint8_t* row = half_row();
  row[-1] = row[0];
  row[half_.width] = row[half_.width - 1];
  Kernels<BoxKernels>().along(row - 1, static_cast<size_t>(half_.width), out);
}

void BlurredPlane::BoxDown(const uint16_t* above, const uint16_t* row,
                           const uint16_t* below, uint8_t* out) const {
  Kernels<BoxKernels>().down(above, row, below,
                             static_cast<size_t>(half_.width), out);
}

// Row `y` of the mild blur's first pass, made where `bits` are set.
const uint16_t* BlurredPlane::MildAlong(int32_t y, uint64_t bits,
                                        const uint8_t* sharp) {
  const size_t slot = static_cast<size_t>(y) % kMildRows;
  auto* row = reinterpret_cast<uint16_t*>(mild_along_.bytes()) +
              slot * static_cast<size_t>(BoxKernels::Lanes(size_.width));
  MildRow& state = mild_rows_[slot];
  if (state.y != y) state = {y, 0};
  const auto along = Kernels<BoxKernels>().along;
  segments_.ForEachRun(bits & ~state.made, [&](int32_t begin, int32_t end) {
    along(sharp + begin - 1, static_cast<size_t>(end - begin), row + begin);
  });
  state.made |= bits;
  return row;
}

void BlurredPlane::BoxDownSegments(const std::array<const uint16_t*, 3>& along,
                                   uint64_t bits) {
  const auto down = Kernels<BoxKernels>().down;
  segments_.ForEachRun(bits, [&](int32_t begin, int32_t end) {
    down(along[0] + begin, along[1] + begin, along[2] + begin,
         static_cast<size_t>(end - begin), mild_row_.bytes() + begin);
  });
}

// A plane without a half has nothing to enlarge.
void BlurredPlane::FinishStrong(int32_t begin, int32_t end,
                                uint8_t* out) const {
  if (half_.pixel_count() == 0) {
    std::fill(out + begin, out + end, uint8_t{0});
  } else {
    strong_rows_.FinishRow(begin, end, out);
  }
}

void BlurredPlane::BlendMixed(uint64_t bits, const uint8_t* weights,
                              uint8_t* out) const {
  const auto by_mask = Kernels<BlendKernels>().by_mask;
  segments_.ForEachRun(bits, [&](int32_t begin, int32_t end) {
    FinishStrong(begin, end, strong_row_.bytes());
    by_mask(strong_row_.bytes() + begin, mild_row_.bytes() + begin,
            weights + begin, static_cast<size_t>(end - begin), out + begin);
  });
}

}  // namespace zuqel
