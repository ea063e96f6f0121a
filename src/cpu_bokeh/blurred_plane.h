// The two blurs of a plane and their blend, row by row.
#ifndef ZUQEL_CPU_BOKEH_BLURRED_PLANE_H_
#define ZUQEL_CPU_BOKEH_BLURRED_PLANE_H_

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

#include "base/buffer.h"
#include "base/image_size.h"
#include "cpu_bokeh/blend_mask.h"
#include "cpu_bokeh/made_rows.h"
#include "cpu_bokeh/resize/resized_rows.h"
#include "cpu_bokeh/segments.h"

namespace zuqel {

// A plane that is blurred in two ways and blended by a mask, row by row:
//
//   strong: reduced by 2, blurred by a 3 x 3 box, enlarged by 2
//   mild:   blurred by a 3 x 3 box
//
// Each stage keeps the few rows that the next one needs, and makes only the
// segments that the mask lets through. The boxes are what the approximation of
// a Gaussian comes to at kStrength; see GaussianBoxRadii.
class BlurredPlane {
 public:
  static constexpr int32_t kStrength = 2;
  static constexpr int32_t kBoxRadius = 1;

  // Rows of the sharp plane that are in use at a time: from the one above row
  // `y` to the lowest that the strong blur of row `y` reaches. That is less
  // than 7 further down, as half a size reduces by less than 2.2 in planes
  // with more rows than these.
  static constexpr int32_t kSourceRows = 16;
  // Samples that a sharp row has before and after it: its ends again.
  static constexpr int32_t kSourceMargin = 1;

  // Makes room for a plane of this size; false when there is no memory.
  [[nodiscard]] bool Reserve(ImageSize size);

  // Begins with row 0 of a plane for which there is room. It is not empty.
  void Begin(ImageSize size);

  // Turns the sharp row `y` in `out` into the blend. `sharp(n)` gives row n of
  // the plane as it was, with a margin; the last kSourceRows that it has given
  // stay in place. Rows are blended in rising order.
  template <typename Sharp>
  void BlendRow(int32_t y, Sharp& sharp, BlendMask& mask, uint8_t* out) {
    const auto [zero, full] = mask.UniformSegments(y);
    const uint64_t mixed = segments_.all() & ~(zero | full);
    if ((full | mixed) == 0) return;
    // Later rows need this one as it was, even if this one does not.
    static_cast<void>(sharp(y));
    MakeStrong(y, sharp);
    segments_.ForEachRun(full, [&](int32_t begin, int32_t end) {
      FinishStrong(begin, end, out);
    });
    if (mixed == 0) return;
    MakeMild(y, mixed, sharp);
    BlendMixed(mixed, mask.Row(y, mixed), out);
  }

 private:
  // Rows of the box's first pass that the mild blur keeps, and the segments
  // that are made of each.
  static constexpr size_t kMildRows = 4;
  struct MildRow {
    int32_t y = -1;
    uint64_t made = 0;
  };

  // Row `y` of the first pass of the strong blur's box.
  template <typename Sharp>
  const uint16_t* HalfAlong(int32_t y, Sharp& sharp) {
    return half_along_.Row(y, [&](int32_t made, uint16_t* row) {
      half_rows_.MakeRow(made, sharp, half_row());
      BoxAlong(row);
    });
  }
  // Row `y` of the strong blur before it is enlarged.
  template <typename Sharp>
  const uint8_t* HalfBlurred(int32_t y, Sharp& sharp) {
    return half_blurred_.Row(y, [&](int32_t made, uint8_t* row) {
      const int32_t last = half_.height - 1;
      // The lowest first: those above are kept.
      const uint16_t* below = HalfAlong(std::min(made + 1, last), sharp);
      BoxDown(HalfAlong(std::max(made - 1, 0), sharp), HalfAlong(made, sharp),
              below, row);
    });
  }
  template <typename Sharp>
  void MakeStrong(int32_t y, Sharp& sharp) {
    if (half_.pixel_count() == 0) return;
    const auto rows = [&](int32_t n) { return HalfBlurred(n, sharp); };
    strong_rows_.CombineRow(y, rows);
  }
  template <typename Sharp>
  void MakeMild(int32_t y, uint64_t bits, Sharp& sharp) {
    std::array<const uint16_t*, 3> along;
    for (int32_t i = 0; i < 3; ++i) {
      const int32_t row = std::clamp(y + i - 1, 0, size_.height - 1);
      along[static_cast<size_t>(i)] = MildAlong(row, bits, sharp(row));
    }
    BoxDownSegments(along, bits);
  }

  [[nodiscard]] uint8_t* half_row() const {
    return half_row_.bytes() + kSourceMargin;
  }
  void BoxAlong(uint16_t* out) const;
  void BoxDown(const uint16_t* above, const uint16_t* row,
               const uint16_t* below, uint8_t* out) const;
  const uint16_t* MildAlong(int32_t y, uint64_t bits, const uint8_t* sharp);
  void BoxDownSegments(const std::array<const uint16_t*, 3>& along,
                       uint64_t bits);
  void FinishStrong(int32_t begin, int32_t end, uint8_t* out) const;
  void BlendMixed(uint64_t bits, const uint8_t* weights, uint8_t* out) const;

  ImageSize size_;
  ImageSize half_;
  Segments segments_ = Segments(0);

  ResizedRows<uint8_t> half_rows_;
  Buffer half_row_;
  MadeRows<uint16_t> half_along_;
  MadeRows<uint8_t> half_blurred_;
  ResizedRows<uint8_t> strong_rows_;
  Buffer strong_row_;

  Buffer mild_along_;
  std::array<MildRow, kMildRows> mild_rows_;
  Buffer mild_row_;
};

}  // namespace zuqel

#endif  // ZUQEL_CPU_BOKEH_BLURRED_PLANE_H_
