// The difference between two frames or pictures.
#ifndef ZUQEL_TOOLS_LOOK_FRAME_DIFFERENCE_H_
#define ZUQEL_TOOLS_LOOK_FRAME_DIFFERENCE_H_

#include <array>

#include "image.h"
#include "photo/nv21.h"

namespace zuqel::tools {

struct PlaneDifference {
  const char* plane;  // "RGB" for all colours of a picture
  double psnr_db;     // infinite if the planes are equal
  int largest;
};

// For planes Y, U and V. Both frames have the same size.
std::array<PlaneDifference, 3> Compare(const Nv21Frame& a, const Nv21Frame& b);

// Over all three colours. Both pictures have the same size, as below.
PlaneDifference Compare(const Picture& a, const Picture& b);

// Amplification of the difference picture.
constexpr int kDifferenceGain = 4;

// The absolute difference of each colour, amplified.
Picture ShowDifference(const Nv21Frame& a, const Nv21Frame& b);
Picture ShowDifference(Picture a, const Picture& b);

}  // namespace zuqel::tools

#endif  // ZUQEL_TOOLS_LOOK_FRAME_DIFFERENCE_H_
