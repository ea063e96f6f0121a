// Inputs of the mask kernels' benchmarks.
#ifndef ZUQEL_BENCH_BENCH_MASKS_H_
#define ZUQEL_BENCH_BENCH_MASKS_H_

#include <benchmark/benchmark.h>

#include "bench_images.h"

namespace zuqel::bench {

// Masks of 0 and 255 whose outer ring is clear, 640 x 480, always the same.
using MaskMaker = Image (*)();

// What a refocus map's mask looks like: a subject with ragged edges and holes,
// thin leaves, islands. The environment variable ZUQEL_BENCH_MASK may name a
// binary PGM of any size to take instead; from 128 on its pixels are set.
Image SceneMask();
// Each pixel set by chance; half of them, or enough for them to join up.
Image HalfNoise();
Image DenseNoise();
// Single pixels: more components than the clean-ups have labels for.
Image Checkerboard();

inline void Radii(benchmark::internal::Benchmark* benchmark) {
  benchmark->ArgName("radius")->Arg(2)->Arg(4)->Arg(32);
  benchmark->Unit(benchmark::kMicrosecond);
}

}  // namespace zuqel::bench

// One row for each of these masks.
#define ZUQEL_BENCH_ON_MASKS(function)                    \
  BENCHMARK_CAPTURE(function, scene, SceneMask)           \
      ->Unit(benchmark::kMicrosecond);                    \
  BENCHMARK_CAPTURE(function, noise_50, HalfNoise)        \
      ->Unit(benchmark::kMicrosecond);                    \
  BENCHMARK_CAPTURE(function, noise_60, DenseNoise)       \
      ->Unit(benchmark::kMicrosecond);                    \
  BENCHMARK_CAPTURE(function, checkerboard, Checkerboard) \
      ->Unit(benchmark::kMicrosecond)

#endif  // ZUQEL_BENCH_BENCH_MASKS_H_
