// The mask that planes are blended by, row by row at the frame's size.
#ifndef ZUQEL_CPU_BOKEH_BLEND_MASK_H_
#define ZUQEL_CPU_BOKEH_BLEND_MASK_H_

#include <cstdint>

#include "base/buffer.h"
#include "base/plane.h"
#include "cpu_bokeh/resize/resized_rows.h"
#include "cpu_bokeh/segments.h"

namespace zuqel {

// A map of weights, enlarged. Where all samples around are 0, or 255, the
// enlarged ones are as well, so most of them need not be made.
class BlendMask {
 public:
  // Makes room for a map of this size; false when there is no memory.
  [[nodiscard]] bool Reserve(ImageSize map, ImageSize frame);

  // Takes a map, for which there is room and which stays as it is meanwhile.
  void Begin(Plane<const uint8_t> map, ImageSize frame);

  // True if there are no weights: the map or the frame is empty.
  [[nodiscard]] bool is_empty() const { return is_empty_; }

  // Begins with row 0.
  void Rewind() {
    rows_.Begin(map_.extent(), frame_);
    made_ = -1;
  }

  // The segments of a row of which all weights are 0, and 255.
  struct Uniform {
    uint64_t zero, full;
  };
  [[nodiscard]] Uniform UniformSegments(int32_t y) const;

  // The weights of row `y`, in rising order, made where `bits` are set, which
  // are the same for all planes. Valid until the next row.
  const uint8_t* Row(int32_t y, uint64_t bits);

  [[nodiscard]] const Segments& segments() const { return segments_; }

 private:
  // For each row of the map: which segments of the frame take nothing but 0
  // from it, and which nothing but 255.
  [[nodiscard]] Uniform* of_map() const {
    return reinterpret_cast<Uniform*>(of_map_.bytes());
  }

  Plane<const uint8_t> map_;
  ImageSize frame_;
  bool is_empty_ = true;
  Segments segments_ = Segments(0);
  ResizedRows<uint8_t> rows_;
  Buffer of_map_;
  Buffer row_;
  int32_t made_ = -1;  // which row is in it
};

}  // namespace zuqel

#endif  // ZUQEL_CPU_BOKEH_BLEND_MASK_H_
