// The pictures that are measured on.
#ifndef ZUQEL_BENCH_SCENE_H_
#define ZUQEL_BENCH_SCENE_H_

#include <cstdint>
#include <opencv2/core.hpp>
#include <string>

#include "image.h"
#include "plane_image.h"

namespace zuqel::bench {

// A picture, its disparity in two sizes, and a point in focus.
struct Scene {
  std::string name;
  tools::Picture picture;
  tools::DisparityMap small_map, large_map;
  tools::FocusPoint focus;  // in the picture
};

// What `zuqel demo` renders.
Scene DemoScene();
// From a folder with scene.png, disparity_320x240.png and
// disparity_640x480.png, in focus on the nearest large surface. Throws.
Scene ReadScene(const std::string& folder);

// The point in focus in a picture or map of another size.
tools::FocusPoint FocusIn(const Scene& scene, Size size);

std::string Text(Size size);

// A scene as a camera hands it over: NV21 and disparity.
struct CameraFrame {
  Image<uint8_t> luma, chroma;  // chroma: rows of V and U pairs
  Image<uint16_t> disparity;
  int32_t focus_x = 0, focus_y = 0;  // in the frame
};

// The scene at other sizes, picture and map each stretched to theirs.
CameraFrame FrameOf(const Scene& scene, Size frame, Size map);
Image<uint16_t> DisparityOf(const Scene& scene, Size map);
// 255 where the disparity is near the one in focus; the outer ring is clear.
Image<uint8_t> FocusMaskOf(const Scene& scene, Size map);

// How far from the focus disparity is still in focus in simple masks.
inline constexpr int32_t kFocusReach = 60;

// A header on pixels; it owns nothing.
template <typename T>
cv::Mat MatOf(Image<T>& image) {
  return {image.height, image.width, cv::traits::Type<T>::value,
          image.values.data()};
}

}  // namespace zuqel::bench

#endif  // ZUQEL_BENCH_SCENE_H_
