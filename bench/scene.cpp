// Makes or reads scenes and brings them to size.
#include "scene.h"

#include <opencv2/imgproc.hpp>
#include <utility>

#include "demo/scene.h"
#include "masks.h"
#include "photo/auto_focus.h"
#include "photo/image_file.h"
#include "photo/nv21.h"

namespace zuqel::bench {
namespace {

tools::Picture Resized(const tools::Picture& picture, Size size) {
  tools::Picture resized(size.width, size.height);
  const cv::Mat from(picture.height, picture.width, CV_8UC3,
                     const_cast<uint8_t*>(picture.rgb.data()));
  cv::Mat to(size.height, size.width, CV_8UC3, resized.rgb.data());
  const bool shrinks = size.width < picture.width;
  cv::resize(from, to, to.size(), 0, 0,
             shrinks ? cv::INTER_AREA : cv::INTER_LINEAR);
  return resized;
}

}  // namespace

Scene DemoScene() {
  tools::Scene made = tools::MakeScene();
  return {"demo scene", std::move(made.picture), made.disparity,
          std::move(made.disparity), made.near_focus};
}

Scene ReadScene(const std::string& folder) {
  Scene scene{folder,
              tools::ReadFramePicture(folder + "/scene.png"),
              tools::ReadDisparity(folder + "/disparity_320x240.png"),
              tools::ReadDisparity(folder + "/disparity_640x480.png"),
              {}};
  const tools::Size size = tools::SizeOf(scene.picture);
  scene.focus =
      tools::FindNearestSurface(scene.large_map, size)
          .value_or(tools::FocusPoint{size.width / 2, size.height / 2});
  return scene;
}

tools::FocusPoint FocusIn(const Scene& scene, Size size) {
  return {scene.focus.x * size.width / scene.picture.width,
          scene.focus.y * size.height / scene.picture.height};
}

std::string Text(Size size) {
  return std::to_string(size.width) + "x" + std::to_string(size.height);
}

// No values between two: an unknown one has no mean with its neighbours.
Image<uint16_t> DisparityOf(const Scene& scene, Size map) {
  const tools::DisparityMap& from =
      map.width > scene.small_map.width ? scene.large_map : scene.small_map;
  Image<uint16_t> image = {map.width, map.height};
  cv::Mat to = MatOf(image);
  cv::resize(cv::Mat(from.height, from.width, CV_16UC1,
                     const_cast<uint16_t*>(from.values.data())),
             to, to.size(), 0, 0, cv::INTER_NEAREST);
  return image;
}

CameraFrame FrameOf(const Scene& scene, Size frame, Size map) {
  tools::Nv21Frame nv21 = tools::ToNv21(Resized(scene.picture, frame));
  const auto [x, y] = FocusIn(scene, frame);
  return {{frame.width, frame.height, std::move(nv21.luma)},
          {frame.width, frame.height / 2, std::move(nv21.chroma)},
          DisparityOf(scene, map),
          x,
          y};
}

Image<uint8_t> FocusMaskOf(const Scene& scene, Size map) {
  Image<uint16_t> disparity = DisparityOf(scene, map);
  Image<uint8_t> mask = {map.width, map.height};
  const auto [x, y] = FocusIn(scene, map);
  const int32_t focus = *disparity.At(x, y);
  cv::Mat to = MatOf(mask);
  cv::inRange(MatOf(disparity), focus - kFocusReach, focus + kFocusReach, to);
  SetRing(mask, 0, 0);
  return mask;
}

}  // namespace zuqel::bench
