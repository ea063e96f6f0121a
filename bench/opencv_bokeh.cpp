// Renders with OpenCV.
#include "opencv_bokeh.h"

#include <opencv2/imgproc.hpp>

#include "depth/focus_mask.h"
#include "depth/hole_filling.h"
#include "depth/statistics.h"
#include "tuned_loops.h"

namespace zuqel::bench {
namespace {

void Blur(const cv::Mat& in, cv::Mat& out) {
  cv::blur(in, out, {3, 3}, {-1, -1}, cv::BORDER_REPLICATE);
}

void ClearRing(cv::Mat& mask) {
  mask.row(0) = 0;
  mask.row(mask.rows - 1) = 0;
  mask.col(0) = 0;
  mask.col(mask.cols - 1) = 0;
}

}  // namespace

// Chroma of half the size is packed at the start of a full plane; the last
// row fills what follows it.
void OpenCvBokeh::SplitFrame(const ExpansionFrame& frame) {
  const cv::Size size(frame.luma.width, frame.luma.height);
  planes_[0] = cv::Mat(size, CV_8UC1, frame.luma.data);
  const cv::Mat vu(size.height / 2, size.width / 2, CV_8UC2,
                   frame.chroma.data());
  for (const int k : {1, 2}) {
    planes_[static_cast<size_t>(k)].create(size, CV_8UC1);
    cv::Mat packed(size.height * 2, size.width / 2, CV_8UC1,
                   planes_[static_cast<size_t>(k)].data);
    cv::Mat samples = packed.rowRange(0, vu.rows);
    cv::extractChannel(vu, samples, 2 - k);
    cv::repeat(samples.row(vu.rows - 1), packed.rows - vu.rows, 1,
               packed.rowRange(vu.rows, packed.rows));
  }
}

void OpenCvBokeh::KeepFocusOnly(cv::Point focus) {
  ClearRing(focus_mask_);
  cv::connectedComponentsWithStats(focus_mask_, labels_, statistics_,
                                   centroids_, 4);
  const auto label = labels_.at<int32_t>(focus);
  focus_area_ = statistics_.at<int32_t>(label, cv::CC_STAT_AREA);
  cv::compare(labels_, label, mask_, cv::CMP_NE);
}

void OpenCvBokeh::RemoveSpecks() {
  const int32_t count = cv::connectedComponentsWithStats(
      mask_, labels_, statistics_, centroids_, 4);
  kept_.assign(static_cast<size_t>(count), 0);
  for (int32_t label = 1; label < count; ++label) {
    const auto area = statistics_.at<int32_t>(label, cv::CC_STAT_AREA);
    kept_[static_cast<size_t>(label)] = area > focus_area_ / 200 ? 255 : 0;
  }
  LookUp(labels_.ptr<int32_t>(), labels_.total(), kept_.data(), mask_.data);
}

void OpenCvBokeh::MakeMask(const ExpansionFrame& frame) {
  const Plane<uint16_t> disparity = frame.disparity;
  cv::Mat map(disparity.height, disparity.width, CV_16UC1, disparity.data);
  cv::bitwise_and(map, 1023, map);
  FillDisparityHoles(disparity);
  const ValueRange range = GetDispRange(disparity, 1);
  const cv::Point focus(frame.focus_x * disparity.width / frame.luma.width,
                        frame.focus_y * disparity.height / frame.luma.height);
  for (size_t k = 0; k < planes_.size(); ++k) {
    cv::resize(planes_[k], reduced_[k], map.size(), 0, 0, cv::INTER_AREA);
  }
  focus_mask_.create(map.size(), CV_8UC1);
  static_cast<void>(FocusMaskExpansion(
      disparity, {reduced_[0].data, reduced_[1].data, reduced_[2].data},
      {range.max, range.min, map.at<uint16_t>(focus)}, growth_,
      {focus_mask_.data, disparity.width, disparity.height}));
  KeepFocusOnly(focus);
  RemoveSpecks();
  Blur(mask_, focus_mask_);
  cv::resize(focus_mask_, mask_, planes_[0].size(), 0, 0, cv::INTER_LINEAR);
  cv::bitwise_not(mask_, inverse_);
}

void OpenCvBokeh::BlurAndBlend(cv::Mat& plane) {
  cv::resize(plane, half_, plane.size() / 2, 0, 0, cv::INTER_AREA);
  Blur(half_, blurred_half_);
  cv::resize(blurred_half_, strong_, plane.size(), 0, 0, cv::INTER_LINEAR);
  Blur(plane, mild_);
  plane.copyTo(mild_, mask_ == 0);
  cv::multiply(strong_, mask_, first_, 1.0 / 255);
  cv::multiply(mild_, inverse_, second_, 1.0 / 255);
  cv::add(first_, second_, plane);
}

void OpenCvBokeh::Render(const ExpansionFrame& frame) {
  SplitFrame(frame);
  MakeMask(frame);
  for (cv::Mat& plane : planes_) BlurAndBlend(plane);
  cv::Mat vu(frame.luma.height / 2, frame.luma.width / 2, CV_8UC2,
             frame.chroma.data());
  for (const int k : {1, 2}) {
    const cv::Mat samples(vu.rows, vu.cols, CV_8UC1,
                          planes_[static_cast<size_t>(k)].data);
    cv::insertChannel(samples, vu, 2 - k);
  }
}

}  // namespace zuqel::bench
