// The runs of a mask, and which component each is part of.
#ifndef ZUQEL_DEPTH_LABELLING_RUN_LABELLING_H_
#define ZUQEL_DEPTH_LABELLING_RUN_LABELLING_H_

#include <cstddef>
#include <cstdint>
#include <span>

#include "base/buffer.h"
#include "base/image_size.h"
#include "base/plane.h"

namespace zuqel {

// What becomes of the outermost pixels before runs are looked for.
enum class MaskBorder : uint8_t {
  kAsItIs,
  kClear,
  kClearInsideSet,  // the ring next to the outermost one is 255
};

// A run is a stretch of set pixels of a row that have one label; the first one
// is its start. A row is whole words of bits, from the first pixel at the
// lowest bit on.
struct ComponentRuns {
  size_t words;  // of a row
  uint64_t* set;
  const uint64_t* starts;
  // The first run has the second label. Eight more than there are can be read.
  uint32_t* run_labels;
  const uint32_t* runs_before;     // each row, and the end
  std::span<uint32_t> components;  // by a run's label
  // By component: the last row and column do not count, and 0, as other labels,
  // has none.
  std::span<const uint32_t> areas;

  // The component at a linear index inside the mask.
  [[nodiscard]] uint32_t ComponentAt(size_t index, size_t width) const;
};

// Grows `scratch` to what FindRuns needs for masks of this size; false when
// there is no memory.
[[nodiscard]] bool ReserveLabelling(ImageSize size, Buffer& scratch);

// Labels the runs as LabelComponents does their pixels; there is at least one
// label. `scratch`, which is reserved, holds the result.
ComponentRuns FindRuns(Plane<const uint8_t> mask, MaskBorder border,
                       size_t label_limit, const Buffer& scratch);

}  // namespace zuqel

#endif  // ZUQEL_DEPTH_LABELLING_RUN_LABELLING_H_
