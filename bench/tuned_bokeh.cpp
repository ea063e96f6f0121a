// Puts a frame together from the fastest pieces there are.
#include "tuned_bokeh.h"

#include <libyuv/planar_functions.h>
#include <libyuv/scale.h>

#include <opencv2/imgproc.hpp>

#include "tuned_loops.h"

namespace zuqel::bench {
namespace {

// A part as large as 200 pixels of 320 x 240.
int32_t SmallestPart(const cv::Mat& mask) {
  return static_cast<int32_t>(mask.total() / 384);
}

void Scale(const cv::Mat& in, libyuv::FilterMode filter, cv::Size size,
           cv::Mat& out) {
  out.create(size, CV_8UC1);
  libyuv::ScalePlane(in.data, in.cols, in.cols, in.rows, out.data, out.cols,
                     out.cols, out.rows, filter);
}

}  // namespace

// Counted run by run, which costs less than all of OpenCV's statistics.
void TunedBokeh::DropSmallParts(cv::Mat& mask) {
  const int32_t count = cv::connectedComponents(mask, labels_, 4, CV_32S);
  areas_.assign(static_cast<size_t>(count), 0);
  kept_.assign(areas_.size(), 0);
  const auto* labels = labels_.ptr<int32_t>();
  CountAreas(labels, mask.total(), areas_.data());
  for (size_t i = 1; i < areas_.size(); ++i) {
    kept_[i] = areas_[i] < SmallestPart(mask) ? 0 : 255;
  }
  LookUp(labels, mask.total(), kept_.data(), mask.data);
}

void TunedBokeh::MakeMask(CameraFrame& frame) {
  const cv::Mat disparity = MatOf(frame.disparity);
  const int32_t focus =
      disparity.at<uint16_t>(frame.focus_y * disparity.rows / frame.luma.height,
                             frame.focus_x * disparity.cols / frame.luma.width);
  cv::inRange(disparity, focus - kFocusReach, focus + kFocusReach, mask_);
  DropSmallParts(mask_);
  cv::bitwise_not(mask_, inverse_);
  DropSmallParts(inverse_);
  cv::bitwise_not(inverse_, mask_);
  cv::dilate(mask_, inverse_, {}, {-1, -1}, 2);
  cv::erode(inverse_, mask_, {}, {-1, -1}, 1);
  cv::blur(mask_, soft_, {5, 5});
}

void TunedBokeh::Box(const cv::Mat& in, cv::Mat& out) {
  out.create(in.size(), CV_8UC1);
  sums_.resize(static_cast<size_t>(in.cols) + 2);
  BoxOf3(in.data, in.cols, in.rows, sums_.data(), out.data);
}

void TunedBokeh::BlurAndBlend(const cv::Mat& plane, const cv::Mat& mask,
                              cv::Mat& out) {
  Scale(plane, libyuv::kFilterBox, plane.size() / 2, reduced_);
  Box(reduced_, reduced_blur_);
  Scale(reduced_blur_, libyuv::kFilterBilinear, plane.size(), enlarged_);
  Box(enlarged_, blurred_);
  out.create(plane.size(), CV_8UC1);
  libyuv::BlendPlane(plane.data, plane.cols, blurred_.data, plane.cols,
                     mask.data, plane.cols, out.data, plane.cols, plane.cols,
                     plane.rows);
}

void TunedBokeh::Render(CameraFrame& frame) {
  const cv::Mat luma = MatOf(frame.luma);
  const cv::Size half = luma.size() / 2;
  v_.create(half, CV_8UC1);
  u_.create(half, CV_8UC1);
  libyuv::SplitUVPlane(frame.chroma.values.data(), luma.cols, v_.data,
                       half.width, u_.data, half.width, half.width,
                       half.height);
  Scale(luma, libyuv::kFilterBox,
        {frame.disparity.width, frame.disparity.height}, guide_);
  MakeMask(frame);
  // In two steps: chroma takes the first.
  Scale(soft_, libyuv::kFilterBilinear, half, half_mask_);
  Scale(half_mask_, libyuv::kFilterBilinear, luma.size(), mask_up_);
  BlurAndBlend(luma, mask_up_, luma_);
  BlurAndBlend(v_, half_mask_, out_v_);
  BlurAndBlend(u_, half_mask_, out_u_);
  out_vu_.create(half, CV_8UC2);
  libyuv::MergeUVPlane(out_v_.data, half.width, out_u_.data, half.width,
                       out_vu_.data, luma.cols, half.width, half.height);
}

}  // namespace zuqel::bench
