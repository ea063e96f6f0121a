// Times the CPU render path: its kernels and the whole call.
#include <benchmark/benchmark.h>

#include <cstddef>
#include <cstdint>

#include "base/kernel_set.h"
#include "bokeh_frame.h"
#include "cpu_bokeh/blend_kernels.h"
#include "cpu_bokeh/box_blur.h"
#include "cpu_bokeh/expansion.h"
#include "cpu_bokeh/resize/resize_plane.h"
#include "plane_image.h"
#include "resize_rows.h"
#include "time_rounds.h"

namespace zuqel::bench {
namespace {

void Resize(benchmark::State& state, ResizeCase sizes) {
  const Image image =
      NoiseImage<uint8_t>(sizes.from_width, sizes.from_height, 5);
  Image resized = NoiseImage<uint8_t>(sizes.to_width, sizes.to_height, 5);
  ResizeScratch scratch;
  TimeRounds(state, image.values.size() + resized.values.size(), [&] {
    benchmark::DoNotOptimize(
        ResizePlane(image.View(), scratch, resized.View()));
  });
}

void Box(benchmark::State& state) {
  const Image image = NoiseImage<uint8_t>(1280, 960, 5);
  Image<uint8_t> blurred = image;
  Buffer scratch;
  const auto radius = static_cast<int32_t>(state.range(0));
  TimeRounds(state, 2 * image.values.size(), [&] {
    benchmark::DoNotOptimize(
        BoxBlur(image.View(), radius, scratch, blurred.View()));
  });
}

void Blend(benchmark::State& state) {
  const Image strong = NoiseImage<uint8_t>(1280, 960, 5);
  const Image<uint8_t> mild = strong, mask = strong;
  Image<uint8_t> sharp = strong;
  TimeRounds(state, 5 * strong.values.size(), [&] {
    Kernels<BlendKernels>().by_mask(strong.values.data(), mild.values.data(),
                                    mask.values.data(), sharp.values.size(),
                                    sharp.values.data());
  });
}

// Restoring the frame before each call is timed as well.
void WholeCall(benchmark::State& state) {
  const Silence silence;
  BokehFrame frame;
  ExpansionBuffers buffers;
  int32_t frame_counter = 0;
  TimeRounds(state, 2 * (frame.luma.values.size() * 3 / 2), [&] {
    frame.Restore();
    benchmark::DoNotOptimize(
        RenderExpansion(frame.View(), buffers, frame_counter));
  });
}

ZUQEL_BENCH_RESIZE_CASES(Resize);
BENCHMARK(Box)->Arg(1)->Arg(4)->Unit(benchmark::kMicrosecond);
BENCHMARK(Blend)->Unit(benchmark::kMicrosecond);
BENCHMARK(WholeCall)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace zuqel::bench
