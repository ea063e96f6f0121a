// The trimmed range of valid disparities.
#include "depth/disparity_range.h"

namespace zuqel {

DisparityRange GetDispRange(Plane<const uint16_t> disparity, int32_t percent) {
  const ValueHistogram histogram(disparity);
  const DisparityRange range = histogram.RangeUpTo(kInvalidDisparity - 1);
  if (range.max < range.min) return range;
  return histogram.Trim(range, disparity.size(), percent);
}

}  // namespace zuqel
