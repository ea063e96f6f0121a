// Disparity as a stereo chip measures it: larger is nearer, and what only one
// camera sees is a hole.
#ifndef ZUQEL_BENCH_DISPARITY_SCENES_H_
#define ZUQEL_BENCH_DISPARITY_SCENES_H_

#include <cstdint>

#include "plane_image.h"

namespace zuqel::bench {

// Five near boxes before a slanted ground, with a band of holes to the left of
// each box and single holes everywhere: about 5 % holes.
Image<uint16_t> BoxesScene(int32_t width, int32_t height);

// A near subject before a ground that comes nearer from top to bottom, with
// holes to the left of the subject.
Image<uint16_t> SubjectScene(int32_t width, int32_t height);

}  // namespace zuqel::bench

#endif  // ZUQEL_BENCH_DISPARITY_SCENES_H_
