// Images as OpenCV sees them.
#ifndef ZUQEL_BENCH_OPENCV_IMAGES_H_
#define ZUQEL_BENCH_OPENCV_IMAGES_H_

#include <cstdint>
#include <opencv2/core.hpp>
#include <opencv2/core/utility.hpp>
#include <span>

#include "bench_images.h"

namespace zuqel::bench {

// A header on pixels that it neither owns nor writes.
inline cv::Mat MatOf(const Image& image) {
  return {image.height, image.width, CV_8UC1,
          const_cast<uint8_t*>(image.pixels.data())};
}

// All bytes of an image that has no gaps.
inline std::span<const uint8_t> BytesOf(const cv::Mat& image) {
  return {image.data, image.total()};
}

}  // namespace zuqel::bench

#endif  // ZUQEL_BENCH_OPENCV_IMAGES_H_
