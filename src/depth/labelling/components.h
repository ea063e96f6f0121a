// Connected components of a mask.
#ifndef ZUQEL_DEPTH_LABELLING_COMPONENTS_H_
#define ZUQEL_DEPTH_LABELLING_COMPONENTS_H_

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

#include "base/buffer.h"
#include "base/plane.h"

namespace zuqel {

// Labels the 4-connected components of the pixels that are 255. Row 0 and
// column 0 are never labelled. A component's label is the smallest of those
// that its pixels were given in raster order: a pixel with nothing above and to
// its left gets the next number, from 1 on. A pixel with a neighbour above or
// to its left that is neither 0 nor 255 stays unlabelled, 0. Where components
// meet, 0 counts as a label: a component that touches an unlabelled 255 becomes
// 0.
//
// `labels` has the mask's size. `areas` has one entry per label, and its size
// is the limit of labels; it receives the number of pixels of each label but 0,
// not counting the last row and column. Labels saturate: one at or above the
// limit becomes what the last one below it has become.
//
// Returns the label from 1 to limit - 2 with the largest area, the smallest of
// equal ones; 0 when there is none. `scratch` is grown as needed;
// returns nothing, and writes nothing, when there is no memory.
std::optional<uint32_t> LabelComponents(Plane<const uint8_t> mask,
                                        std::span<uint32_t> labels,
                                        std::span<uint32_t> areas,
                                        Buffer& scratch);

}  // namespace zuqel

#endif  // ZUQEL_DEPTH_LABELLING_COMPONENTS_H_
