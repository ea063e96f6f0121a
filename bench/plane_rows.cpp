// Rows of kernels on planes: boxes, changes of size, blends, conversions.
#include <libyuv/planar_functions.h>
#include <libyuv/scale.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <memory>
#include <opencv2/imgproc.hpp>
#include <utility>

#include "agreement.h"
#include "base/kernel_set.h"
#include "cpu_bokeh/blend_kernels.h"
#include "cpu_bokeh/box_blur.h"
#include "cpu_bokeh/chroma_regions.h"
#include "cpu_bokeh/resize/resize_plane.h"
#include "render/plane_conversion.h"
#include "row.h"

namespace zuqel::bench {
namespace {

constexpr Size kFrame = {1280, 960};

Image<uint8_t> LumaOf(const Scene& scene, Size size) {
  return FrameOf(scene, size, {4, 4}).luma;
}

// Ours truncates after each pass, theirs rounds once.
Row Box(int32_t radius, double operations, const char* which) {
  const int32_t side = 2 * radius + 1;
  const auto prepare = [=](const Scene& scene) -> Trial {
    struct Data {
      Image<uint8_t> in, ours;
      cv::Mat theirs;
      Buffer scratch;
    };
    const auto data = std::make_shared<Data>();
    data->in = data->ours = LumaOf(scene, kFrame);
    const size_t pixels = data->in.values.size();
    return {.pixels = pixels,
            .bytes = 2 * pixels,
            .ours =
                [=] {
                  static_cast<void>(BoxBlur(data->in.View(), radius,
                                            data->scratch, data->ours.View()));
                },
            .peers = {{"cv::blur",
                       [=] {
                         cv::blur(MatOf(data->in), data->theirs, {side, side},
                                  {-1, -1}, cv::BORDER_REPLICATE);
                       }}},
            .agrees = [=] { return AllWithin(2, data->ours, data->theirs); }};
  };
  const auto text = std::to_string(side);
  return {kPlanes, text + "x" + text + " box, 1280x960", operations, which,
          prepare};
}

enum class Scaler { kCvArea, kCvLinear, kYuvBox };

struct ResizeCase {
  const char* name;
  Size from, to;
  Scaler peer;
  double operations;
  const char* which;
};

// Coverages of 8 bits move a few pixels by one more level.
Row Resize(const ResizeCase& sizes) {
  const auto prepare = [=](const Scene& scene) -> Trial {
    struct Data {
      Image<uint8_t> in, ours, theirs;
      ResizeScratch scratch;
    };
    const auto data = std::make_shared<Data>();
    data->in = LumaOf(scene, sizes.from);
    data->ours = data->theirs = {sizes.to.width, sizes.to.height};
    const auto theirs = [=] {
      const Image<uint8_t>& in = data->in;
      Image<uint8_t>& out = data->theirs;
      if (sizes.peer == Scaler::kYuvBox) {
        libyuv::ScalePlane(in.values.data(), in.width, in.width, in.height,
                           out.values.data(), out.width, out.width, out.height,
                           libyuv::kFilterBox);
        return;
      }
      cv::Mat to = MatOf(out);
      cv::resize(
          MatOf(data->in), to, to.size(), 0, 0,
          sizes.peer == Scaler::kCvArea ? cv::INTER_AREA : cv::INTER_LINEAR);
    };
    return {
        .pixels = std::max(data->in.values.size(), data->ours.values.size()),
        .bytes = data->in.values.size() + data->ours.values.size(),
        .ours =
            [=] {
              static_cast<void>(ResizePlane(std::as_const(data->in).View(),
                                            data->scratch, data->ours.View()));
            },
        .peers = {{sizes.peer == Scaler::kYuvBox   ? "libyuv box"
                   : sizes.peer == Scaler::kCvArea ? "cv::resize area"
                                                   : "cv::resize linear",
                   theirs}},
        .agrees =
            [=] {
              return ShareWithin(2, data->ours.values, data->theirs.values) >=
                     0.9999;
            }};
  };
  return {kPlanes, sizes.name, sizes.operations, sizes.which, prepare};
}

// Where the mild blur is the sharp picture, ours blends two planes, too.
Trial Blend(const Scene& scene) {
  struct Data {
    Image<uint8_t> strong, mild, mask, ours, theirs;
  };
  const auto data = std::make_shared<Data>();
  data->mild = data->ours = data->theirs = data->strong = LumaOf(scene, kFrame);
  data->mask = {kFrame.width, kFrame.height};
  Image<uint8_t> focus = FocusMaskOf(scene, {320, 240});
  cv::Mat soft, mask = MatOf(data->mask), strong = MatOf(data->strong);
  cv::blur(MatOf(focus), soft, {5, 5});
  cv::resize(soft, mask, mask.size(), 0, 0, cv::INTER_LINEAR);
  cv::blur(strong, strong, {9, 9});
  const size_t pixels = data->mask.values.size();
  return {.pixels = pixels,
          .bytes = 5 * pixels,
          .ours =
              [=] {
                Kernels<BlendKernels>().by_mask(
                    data->strong.values.data(), data->mild.values.data(),
                    data->mask.values.data(), pixels, data->ours.values.data());
              },
          .peers = {{"libyuv BlendPlane",
                     [=] {
                       const int32_t width = kFrame.width;
                       libyuv::BlendPlane(data->strong.values.data(), width,
                                          data->mild.values.data(), width,
                                          data->mask.values.data(), width,
                                          data->theirs.values.data(), width,
                                          width, kFrame.height);
                     }}},
          .agrees =
              [=] {
                return ShareWithin(1, data->ours.values, data->theirs.values) ==
                       1;
              }};
}

// A frame's chroma; a row of ours has two of theirs.
struct ChromaData {
  Image<uint8_t> vu, ours_u, ours_v, theirs_u, theirs_v, joined;

  void Split() {
    for (int32_t y = 0; y < ours_u.height; ++y) {
      SplitChromaRow(vu.values, {kFrame.width, kFrame.height}, y,
                     ours_u.View().row(y), ours_v.View().row(y));
    }
  }
  void Join() {
    for (int32_t y = 0; y < ours_u.height; ++y) {
      JoinChromaRow(ours_u.View().row(y), ours_v.View().row(y),
                    {kFrame.width, kFrame.height}, y, joined.values);
    }
  }
  [[nodiscard]] static size_t Samples() {
    return Plane<uint8_t>{nullptr, kFrame.width, kFrame.height}.size() / 4;
  }
};

std::shared_ptr<ChromaData> MakeChroma(const Scene& scene) {
  auto data = std::make_shared<ChromaData>();
  data->vu = data->joined = FrameOf(scene, kFrame, {4, 4}).chroma;
  data->ours_u = data->ours_v = {kFrame.width, kFrame.height / 4};
  data->theirs_u = data->theirs_v = {kFrame.width / 2, kFrame.height / 2};
  data->Split();
  return data;
}

Trial Split(const Scene& scene) {
  const auto data = MakeChroma(scene);
  return {.pixels = ChromaData::Samples() * 4,
          .bytes = ChromaData::Samples() * 4,
          .ours = [=] { data->Split(); },
          .peers = {{"libyuv SplitUVPlane",
                     [=] {
                       const int32_t half = kFrame.width / 2;
                       libyuv::SplitUVPlane(data->vu.values.data(),
                                            kFrame.width,
                                            data->theirs_v.values.data(), half,
                                            data->theirs_u.values.data(), half,
                                            half, kFrame.height / 2);
                     }}},
          .agrees =
              [=] {
                return std::equal(data->theirs_u.values.begin(),
                                  data->theirs_u.values.end(),
                                  data->ours_u.values.begin()) &&
                       std::equal(data->theirs_v.values.begin(),
                                  data->theirs_v.values.end(),
                                  data->ours_v.values.begin());
              }};
}

Trial Join(const Scene& scene) {
  const auto data = MakeChroma(scene);
  std::fill(data->joined.values.begin(), data->joined.values.end(), 0);
  const auto theirs = std::make_shared<Image<uint8_t>>(data->joined);
  return {.pixels = ChromaData::Samples() * 4,
          .bytes = ChromaData::Samples() * 4,
          .ours = [=] { data->Join(); },
          .peers = {{"libyuv MergeUVPlane",
                     [=] {
                       const int32_t half = kFrame.width / 2;
                       libyuv::MergeUVPlane(data->ours_v.values.data(), half,
                                            data->ours_u.values.data(), half,
                                            theirs->values.data(), kFrame.width,
                                            half, kFrame.height / 2);
                     }}},
          .agrees = [=] { return data->joined == *theirs; }};
}

// Pixels of 4 bytes and planes of 1.5.
template <typename Convert>
Row Conversion(const char* name, double operations, const char* which,
               Convert convert) {
  const auto prepare = [=](const Scene& scene) -> Trial {
    struct Data {
      CameraFrame frame;
      std::vector<uint32_t> rgba;
    };
    const auto data = std::make_shared<Data>();
    data->frame = FrameOf(scene, kFrame, {4, 4});
    const size_t pixels = data->frame.luma.values.size();
    data->rgba.assign(pixels, 0x80402010);
    return {
        .pixels = pixels, .bytes = pixels * 4 + pixels * 3 / 2, .ours = [=] {
          convert(
              zuqel::Frame{data->frame.luma.View(), data->frame.chroma.values},
              data->rgba);
        }};
  };
  return {kPlanes, name, operations, which, prepare};
}

template <int32_t kFormat>
void Unpack(const zuqel::Frame& frame, const std::vector<uint32_t>& rgba) {
  UnpackFrame(rgba, kFormat, frame);
}

constexpr const char* kBlocks =
    "sums, a rounding and a shift for each column of a block, and for its row";
constexpr const char* kTwoTaps =
    "2 products, a sum, a rounding and a shift for each column, and for each "
    "pixel of the result";

constexpr auto kResizes = std::to_array<ResizeCase>({
    {"half, 1280x960", kFrame, {640, 480}, Scaler::kYuvBox, 2.3, kBlocks},
    {"quarter, 1280x960", kFrame, {320, 240}, Scaler::kYuvBox, 1.6, kBlocks},
    {"twice, to 1280x960",
     {640, 480},
     kFrame,
     Scaler::kCvLinear,
     7.5,
     kTwoTaps},
    {"four times, to 1280x960",
     {320, 240},
     kFrame,
     Scaler::kCvLinear,
     6.3,
     kTwoTaps},
    {"area, 1440x1080 to 640x480",
     {1440, 1080},
     {640, 480},
     Scaler::kCvArea,
     5.5,
     "3.25 products and sums, a rounding and a shift, in both passes"},
});

}  // namespace

std::vector<Row> PlaneRows() {
  constexpr const char* kBoxOperations =
      "2 passes of a pixel in, one out, a product and a shift for the mean";
  std::vector<Row> rows = {Box(1, 8, kBoxOperations),
                           Box(4, 8, kBoxOperations)};
  for (const ResizeCase& sizes : kResizes) rows.push_back(Resize(sizes));
  rows.push_back({kPlanes, "blend by mask, 1280x960", 9,
                  "2 products, 2 sums, a division by product and shift, 2 "
                  "comparisons, 2 choices",
                  Blend});
  rows.push_back({kPlanes, "split chroma, 1280x960", 1,
                  "half a sample taken apart, half written", Split});
  rows.push_back({kPlanes, "join chroma, 1280x960", 1,
                  "half a sample put together, half written", Join});
  constexpr const char* kUnpacking = "a shift a sample and its chroma's place";
  rows.push_back(Conversion("pixels to NV21, 1280x960", 3, kUnpacking,
                            [](const zuqel::Frame& frame, auto& rgba) {
                              Unpack<kFormatNv21>(frame, rgba);
                            }));
  rows.push_back(Conversion("pixels to planar YUV, 1280x960", 3, kUnpacking,
                            [](const zuqel::Frame& frame, auto& rgba) {
                              Unpack<kFormatPlanar>(frame, rgba);
                            }));
  rows.push_back(Conversion(
      "packed frame to pixels, 1280x960", 5, "3 shifts, 2 unions",
      [](const zuqel::Frame& frame, auto& rgba) { PackFrame(frame, rgba); }));
  return rows;
}

}  // namespace zuqel::bench
