// Views of images for OpenCV.
#ifndef ZUQEL_BENCH_OPENCV_IMAGES_H_
#define ZUQEL_BENCH_OPENCV_IMAGES_H_

#include <cstdint>
#include <opencv2/core.hpp>
#include <opencv2/core/utility.hpp>
#include <span>

#include "plane_image.h"

namespace zuqel::bench {

// A header on pixels that it neither owns nor writes.
inline cv::Mat MatOf(const Image<uint8_t>& image) {
  return {image.height, image.width, CV_8UC1,
          const_cast<uint8_t*>(image.values.data())};
}

// All bytes of an image that has no gaps.
inline std::span<const uint8_t> BytesOf(const cv::Mat& image) {
  return {image.data, image.total()};
}

}  // namespace zuqel::bench

#endif  // ZUQEL_BENCH_OPENCV_IMAGES_H_
