// Plain forms of the mask kernels: step by step, a pixel at a time.
#ifndef ZUQEL_TESTING_REFERENCE_MASKS_H_
#define ZUQEL_TESTING_REFERENCE_MASKS_H_

#include <cstddef>
#include <cstdint>
#include <vector>

#include "plane_image.h"

namespace zuqel::reference {

using Mask = zuqel::Image<uint8_t>;

struct Components {
  zuqel::Image<uint32_t> labels;
  std::vector<uint32_t> areas;
  uint32_t largest = 0;
};
// Where two labels meet, all that became one of them become the smaller one.
Components LabelComponents(const Mask& mask, size_t label_limit);

// `focus` is the linear index of the focus point; outside the mask it has no
// component. Pruning returns the area at the focus in `focus_area`.
Mask PruneComponents(Mask mask, int64_t focus, bool keep_only_focus,
                     uint32_t& focus_area);
Mask KeepFocusAndBorderComponents(Mask mask, int64_t focus);
Mask RemoveSpecks(Mask mask, uint32_t focus_area);

// Combines each pixel with all of them that are within `radius`.
using Combine = uint8_t (*)(uint8_t, uint8_t);
Mask FilterSquare(Mask mask, int32_t radius, Combine combine);

void BoundaryBlur(Mask& map, Mask& marks);
Mask RefineRefocusMap(Mask map, int64_t focus);

}  // namespace zuqel::reference

#endif  // ZUQEL_TESTING_REFERENCE_MASKS_H_
