// Inputs of the mask kernels' benchmarks.
#ifndef ZUQEL_BENCH_BENCH_MASKS_H_
#define ZUQEL_BENCH_BENCH_MASKS_H_

#include <benchmark/benchmark.h>

#include "plane_image.h"

namespace zuqel::bench {

// Masks of 0 and 255 whose outer ring is clear, 640 x 480, always the same.
using MaskMaker = Image<uint8_t> (*)();

// What a refocus map's mask looks like. The environment variable
// ZUQEL_BENCH_MASK may name a binary PGM of any size to take instead; from 128
// on its pixels are set.
Image<uint8_t> SceneMask();
// Half of the pixels set by chance, and enough for them to join up.
Image<uint8_t> HalfNoise();
Image<uint8_t> DenseNoise();
// Single pixels: more components than the clean-ups have labels for.
Image<uint8_t> Checkerboard();

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
