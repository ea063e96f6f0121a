// Times the CPU render path: its kernels and the whole call.
#include <benchmark/benchmark.h>

#include <cstddef>
#include <cstdint>

#include "bench_images.h"
#include "bokeh_frame.h"
#include "cpu_bokeh/box_blur.h"
#include "cpu_bokeh/expansion.h"
#include "cpu_bokeh/resize/resize_plane.h"
#include "cpu_bokeh/two_level_blur.h"
#include "resize_cases.h"

namespace zuqel::bench {
namespace {

void Resize(benchmark::State& state, ResizeCase sizes) {
  const Image image = GreyNoise(sizes.from_width, sizes.from_height);
  Image resized = GreyNoise(sizes.to_width, sizes.to_height);
  ResizeScratch scratch;
  TimeRounds(state, image.pixels.size() + resized.pixels.size(), [&] {
    benchmark::DoNotOptimize(
        ResizePlane(image.View(), scratch, resized.View()));
  });
}

void Box(benchmark::State& state) {
  const Image image = GreyNoise(1280, 960);
  Image blurred = image;
  Buffer scratch;
  const auto radius = static_cast<int32_t>(state.range(0));
  TimeRounds(state, 2 * image.pixels.size(), [&] {
    benchmark::DoNotOptimize(
        BoxBlur(image.View(), radius, scratch, blurred.View()));
  });
}

void Blend(benchmark::State& state) {
  const Image strong = GreyNoise(1280, 960);
  const Image mild = strong, mask = strong;
  Image sharp = strong;
  TimeRounds(state, 5 * strong.pixels.size(), [&] {
    BlendByMask(strong.View(), mild.View(), mask.View(), sharp.View());
  });
}

// The frame is put back before every call, which is timed as well.
void WholeCall(benchmark::State& state) {
  const Silence silence;
  BokehFrame frame;
  ExpansionBuffers buffers;
  int32_t frame_counter = 0;
  TimeRounds(state, 2 * (frame.luma.pixels.size() * 3 / 2), [&] {
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
