// Makes masks and reads one.
#include "bench_masks.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <random>
#include <string>

namespace zuqel::bench {
namespace {

constexpr int32_t kWidth = 640;
constexpr int32_t kHeight = 480;
constexpr uint8_t kSet = 255;

// Calls `value_at(x, y)` for each pixel.
template <typename ValueAt>
Image MakeImage(ValueAt value_at) {
  Image image{kWidth, kHeight, {}};
  for (int32_t y = 0; y < kHeight; ++y) {
    for (int32_t x = 0; x < kWidth; ++x) {
      image.pixels.push_back(static_cast<uint8_t>(value_at(x, y)));
    }
  }
  return image;
}

void ClearRing(Image& image) {
  for (int32_t y = 0; y < image.height; ++y) {
    for (int32_t x = 0; x < image.width; ++x) {
      const bool is_inside =
          x > 0 && y > 0 && x < image.width - 1 && y < image.height - 1;
      if (!is_inside) image.View().row(y)[x] = 0;
    }
  }
}

Image Noise(uint32_t set_percent) {
  std::seed_seq seed = {set_percent};
  std::mt19937 random(seed);
  Image image = MakeImage([&random, set_percent](int32_t, int32_t) {
    return random() % 100 < set_percent ? kSet : 0;
  });
  ClearRing(image);
  return image;
}

// A subject of head and body, leaves beside it that wave and taper, islands;
// inside, holes in rows. Edges fray by up to `fringe`.
bool IsInScene(float x, float y, float fringe) {
  const float head = std::hypot((x - 330) / 90, (y - 170) / 100);
  const float body = std::hypot((x - 320) / 170, (y - 430) / 190);
  const float leaf = std::abs(std::fmod(x + 12 * std::sin(y / 23), 55.0F) - 27);
  const bool is_leaf = y > 40 && (x < 150 || x > 500) && leaf < y / 60 - fringe;
  const float hole =
      std::hypot(std::fmod(x, 90.0F) - 45, std::fmod(y, 70.0F) - 35);
  const float island = std::hypot(std::fmod(x, 40.0F) - 20, y - 28);
  const bool is_subject = std::min(head, body) < 1 - fringe / 60;
  return (is_subject && hole > 4 + fringe) || is_leaf || island < 5 - fringe;
}

Image ReadPgm(const char* path) {
  std::ifstream file(path, std::ios::binary);
  std::string kind;
  int32_t largest = 0;
  Image image;
  file >> kind >> image.width >> image.height >> largest;
  file.get();
  const bool is_read = file && kind == "P5" && largest == kSet &&
                       image.width > 0 && image.height > 0;
  if (is_read) image.pixels.resize(image.View().size());
  if (!is_read ||
      !file.read(reinterpret_cast<char*>(image.pixels.data()),
                 static_cast<std::streamsize>(image.pixels.size()))) {
    static_cast<void>(std::fprintf(stderr, "%s: no 8-bit binary PGM\n", path));
    std::abort();
  }
  for (uint8_t& pixel : image.pixels) pixel = pixel < 128 ? 0 : kSet;
  return image;
}

}  // namespace

Image SceneMask() {
  // NOLINTNEXTLINE(concurrency-mt-unsafe): nobody sets it.
  const char* path = std::getenv("ZUQEL_BENCH_MASK");
  std::seed_seq seed = {3};
  std::mt19937 random(seed);
  Image image = path != nullptr
                    ? ReadPgm(path)
                    : MakeImage([&random](int32_t x, int32_t y) {
                        const auto fringe = static_cast<float>(random() % 64);
                        return IsInScene(static_cast<float>(x),
                                         static_cast<float>(y), fringe / 32)
                                   ? kSet
                                   : 0;
                      });
  ClearRing(image);
  return image;
}

Image HalfNoise() {
  return Noise(50);
}

Image DenseNoise() {
  return Noise(60);
}

Image Checkerboard() {
  Image image = MakeImage(
      [](int32_t x, int32_t y) { return (x + y) % 2 == 0 ? kSet : 0; });
  ClearRing(image);
  return image;
}

}  // namespace zuqel::bench
