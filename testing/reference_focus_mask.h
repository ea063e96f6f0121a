// Plain forms of the focus decision and of the growing of the region in focus.
#ifndef ZUQEL_TESTING_REFERENCE_FOCUS_MASK_H_
#define ZUQEL_TESTING_REFERENCE_FOCUS_MASK_H_

#include <array>
#include <cstdint>
#include <string>

#include "base/plane.h"
#include "depth/focus_mask.h"
#include "plane_image.h"

namespace zuqel::reference {

enum Kind { kDisparity, kDistance, kExpansion };
inline constexpr std::array kKindNames = {"disparity", "distance", "expansion"};

// Makes the mask and returns what is logged and, after "|", printed. A distance
// is a disparity read backwards, with other parts and texts.
std::string DecideFocus(Kind kind, const FocusRange& range,
                        Plane<const uint16_t> map, const ThreePlanes& picture,
                        zuqel::Image<uint8_t>& mask);

}  // namespace zuqel::reference

#endif  // ZUQEL_TESTING_REFERENCE_FOCUS_MASK_H_
