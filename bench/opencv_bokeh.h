// The CPU render path put together from OpenCV's operations.
#ifndef ZUQEL_BENCH_OPENCV_BOKEH_H_
#define ZUQEL_BENCH_OPENCV_BOKEH_H_

#include <array>
#include <cstdint>
#include <opencv2/core.hpp>
#include <vector>

#include "base/buffer.h"
#include "cpu_bokeh/expansion.h"

namespace zuqel::bench {

// The same steps on three full planes, without copies in between.
// What OpenCV has no operation for (the disparity's holes and range, the
// growing of the region in focus) is the library's own. Without the temporal
// smoothing, which does not change a still scene.
class OpenCvBokeh {
 public:
  void Render(const ExpansionFrame& frame);

 private:
  void SplitFrame(const ExpansionFrame& frame);
  void MakeMask(const ExpansionFrame& frame);
  void KeepFocusOnly(cv::Point focus);
  void RemoveSpecks();
  void BlurAndBlend(cv::Mat& plane);

  std::array<cv::Mat, 3> planes_, reduced_;
  cv::Mat focus_mask_, mask_, labels_, statistics_, centroids_;
  cv::Mat half_, blurred_half_, strong_, mild_, inverse_, first_, second_;
  std::vector<uint8_t> kept_;  // 255 for a label that stays
  int32_t focus_area_ = 0;
  Buffer growth_;
};

}  // namespace zuqel::bench

#endif  // ZUQEL_BENCH_OPENCV_BOKEH_H_
