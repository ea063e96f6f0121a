// A synthetic depth of field from OpenCV, libyuv and loops of its own, as fast
// as they make it: chroma stays at half the size, one blur, no growing of the
// region in focus, no history.
#ifndef ZUQEL_BENCH_TUNED_BOKEH_H_
#define ZUQEL_BENCH_TUNED_BOKEH_H_

#include <cstdint>
#include <opencv2/core.hpp>
#include <span>
#include <vector>

#include "scene.h"

namespace zuqel::bench {

class TunedBokeh {
 public:
  // Reads the frame and writes the result elsewhere.
  void Render(CameraFrame& frame);
  [[nodiscard]] std::span<const uint8_t> Luma() const {
    return {luma_.data, luma_.total()};
  }

 private:
  void MakeMask(CameraFrame& frame);
  void DropSmallParts(cv::Mat& mask);
  void BlurAndBlend(const cv::Mat& plane, const cv::Mat& mask, cv::Mat& out);
  void Box(const cv::Mat& in, cv::Mat& out);

  cv::Mat v_, u_, guide_, mask_, inverse_, labels_, soft_, half_mask_, mask_up_;
  cv::Mat reduced_, reduced_blur_, enlarged_, blurred_;
  cv::Mat luma_, out_v_, out_u_, out_vu_;
  std::vector<int32_t> areas_;
  std::vector<uint8_t> kept_;
  std::vector<uint16_t> sums_;
};

}  // namespace zuqel::bench

#endif  // ZUQEL_BENCH_TUNED_BOKEH_H_
