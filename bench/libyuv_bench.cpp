// Times libyuv on the same planes, once its results are seen to be the same but
// for the rounding.
#include <benchmark/benchmark.h>
#include <libyuv/planar_functions.h>
#include <libyuv/scale.h>

#include <cstdint>

#include "bench_images.h"
#include "compare_images.h"
#include "cpu_bokeh/resize/resize_plane.h"
#include "cpu_bokeh/two_level_blur.h"
#include "resize_cases.h"

namespace zuqel::bench {
namespace {

void Scale(const Image& image, Image& scaled) {
  libyuv::ScalePlane(image.pixels.data(), image.width, image.width,
                     image.height, scaled.pixels.data(), scaled.width,
                     scaled.width, scaled.height, libyuv::kFilterBox);
}

void BlendPlanes(const Image& over, const Image& under, const Image& mask,
                 Image& blended) {
  libyuv::BlendPlane(over.pixels.data(), over.width, under.pixels.data(),
                     under.width, mask.pixels.data(), mask.width,
                     blended.pixels.data(), blended.width, blended.width,
                     blended.height);
}

bool CompareAll() noexcept {
  ResizeScratch scratch;
  for (const ResizeCase& sizes : {kHalf, kQuarter}) {
    const Image image = GreyNoise(sizes.from_width, sizes.from_height);
    Image ours = GreyNoise(sizes.to_width, sizes.to_height), theirs = ours;
    Scale(image, theirs);
    ExpectTrue(ResizePlane(image.View(), scratch, ours.View()) &&
                   ShareWithin(1, ours.pixels, theirs.pixels) == 1,
               "ScalePlane");
  }
  // Without sharp pixels of their own, both blend two planes.
  const Image strong = GreyNoise(1280, 960);
  Image ours = strong;
  for (uint8_t& pixel : ours.pixels) pixel = static_cast<uint8_t>(~pixel);
  const Image mild = ours;
  Image theirs = ours;
  BlendPlanes(strong, mild, strong, theirs);
  BlendByMask(strong.View(), mild.View(), strong.View(), ours.View());
  ExpectTrue(ShareWithin(1, ours.pixels, theirs.pixels) == 1, "BlendPlane");
  return true;
}
[[maybe_unused]] const bool kIsCompared = CompareAll();

void YuvScale(benchmark::State& state, ResizeCase sizes) {
  const Image image = GreyNoise(sizes.from_width, sizes.from_height);
  Image scaled = GreyNoise(sizes.to_width, sizes.to_height);
  TimeRounds(state, image.pixels.size() + scaled.pixels.size(),
             [&] { Scale(image, scaled); });
}

void YuvBlend(benchmark::State& state) {
  const Image over = GreyNoise(1280, 960);
  const Image under = over, mask = over;
  Image blended = over;
  TimeRounds(state, 4 * over.pixels.size(),
             [&] { BlendPlanes(over, under, mask, blended); });
}

BENCHMARK_CAPTURE(YuvScale, half, kHalf)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(YuvScale, quarter, kQuarter)->Unit(benchmark::kMicrosecond);
BENCHMARK(YuvBlend)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace zuqel::bench
