// Makes images and times copies.
#include "bench_images.h"

#include <algorithm>
#include <cstring>
#include <random>

namespace zuqel::bench {

Image GreyNoise(int32_t width, int32_t height) {
  std::seed_seq seed = {5};
  std::mt19937 random(seed);
  Image image{width, height, {}};
  image.pixels.resize(image.View().size());
  std::generate(image.pixels.begin(), image.pixels.end(),
                [&random] { return static_cast<uint8_t>(random() >> 24); });
  return image;
}

double CopySeconds(size_t bytes) {
  constexpr int kRounds = 1000;
  const std::vector<uint8_t> source(bytes / 2, 1);
  std::vector<uint8_t> copy(bytes / 2, 2);
  const std::clock_t start = std::clock();
  for (int i = 0; i < kRounds; ++i) {
    std::memcpy(copy.data(), source.data(), copy.size());
    benchmark::ClobberMemory();
  }
  const auto ticks = static_cast<double>(std::clock() - start);
  return ticks / CLOCKS_PER_SEC / kRounds;
}

}  // namespace zuqel::bench
