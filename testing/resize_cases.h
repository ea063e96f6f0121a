// Changes of size that are tested and timed.
#ifndef ZUQEL_TESTING_RESIZE_CASES_H_
#define ZUQEL_TESTING_RESIZE_CASES_H_

#include <cstdint>

namespace zuqel {

struct ResizeCase {
  const char* name;
  int32_t from_width, from_height, to_width, to_height;
};

inline constexpr ResizeCase kHalf = {"half", 1280, 960, 640, 480};
inline constexpr ResizeCase kQuarter = {"quarter", 1280, 960, 320, 240};
inline constexpr ResizeCase kTwice = {"twice", 640, 480, 1280, 960};
inline constexpr ResizeCase kFourTimes = {"four times", 320, 240, 1280, 960};
inline constexpr ResizeCase kAreas = {"areas", 1440, 1080, 640, 480};

}  // namespace zuqel

#endif  // ZUQEL_TESTING_RESIZE_CASES_H_
