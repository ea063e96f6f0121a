// Times libyuv on the same planes, after checking that its results differ in
// rounding only.
#include <benchmark/benchmark.h>
#include <libyuv/planar_functions.h>
#include <libyuv/scale.h>

#include <cstdint>

#include "base/kernel_set.h"
#include "cpu_bokeh/blend_kernels.h"
#include "cpu_bokeh/resize/resize_plane.h"
#include "expect.h"
#include "plane_image.h"
#include "resize_rows.h"
#include "time_rounds.h"

namespace zuqel::bench {
namespace {

void Scale(const Image<uint8_t>& image, Image<uint8_t>& scaled) {
  libyuv::ScalePlane(image.values.data(), image.width, image.width,
                     image.height, scaled.values.data(), scaled.width,
                     scaled.width, scaled.height, libyuv::kFilterBox);
}

void BlendPlanes(const Image<uint8_t>& over, const Image<uint8_t>& under,
                 const Image<uint8_t>& mask, Image<uint8_t>& blended) {
  libyuv::BlendPlane(over.values.data(), over.width, under.values.data(),
                     under.width, mask.values.data(), mask.width,
                     blended.values.data(), blended.width, blended.width,
                     blended.height);
}

bool CompareAll() noexcept {
  ResizeScratch scratch;
  for (const ResizeCase& sizes : {kHalf, kQuarter}) {
    const Image image =
        NoiseImage<uint8_t>(sizes.from_width, sizes.from_height, 5);
    Image ours = NoiseImage<uint8_t>(sizes.to_width, sizes.to_height, 5),
          theirs = ours;
    Scale(image, theirs);
    ExpectTrue(ResizePlane(image.View(), scratch, ours.View()) &&
                   ShareWithin(1, ours.values, theirs.values) == 1,
               "ScalePlane");
  }
  // Without sharp pixels of their own, both blend two planes.
  const Image strong = NoiseImage<uint8_t>(1280, 960, 5);
  Image<uint8_t> ours = strong;
  for (uint8_t& pixel : ours.values) pixel = static_cast<uint8_t>(~pixel);
  const Image<uint8_t> mild = ours;
  Image<uint8_t> theirs = ours;
  BlendPlanes(strong, mild, strong, theirs);
  Kernels<BlendKernels>().by_mask(strong.values.data(), mild.values.data(),
                                  strong.values.data(), ours.values.size(),
                                  ours.values.data());
  ExpectTrue(ShareWithin(1, ours.values, theirs.values) == 1, "BlendPlane");
  return true;
}
[[maybe_unused]] const bool kIsCompared = CompareAll();

void YuvScale(benchmark::State& state, ResizeCase sizes) {
  const Image image =
      NoiseImage<uint8_t>(sizes.from_width, sizes.from_height, 5);
  Image scaled = NoiseImage<uint8_t>(sizes.to_width, sizes.to_height, 5);
  TimeRounds(state, image.values.size() + scaled.values.size(),
             [&] { Scale(image, scaled); });
}

void YuvBlend(benchmark::State& state) {
  const Image over = NoiseImage<uint8_t>(1280, 960, 5);
  const Image<uint8_t> under = over, mask = over;
  Image<uint8_t> blended = over;
  TimeRounds(state, 4 * over.values.size(),
             [&] { BlendPlanes(over, under, mask, blended); });
}

BENCHMARK_CAPTURE(YuvScale, half, kHalf)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(YuvScale, quarter, kQuarter)->Unit(benchmark::kMicrosecond);
BENCHMARK(YuvBlend)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace zuqel::bench
