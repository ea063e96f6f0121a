// Draws masks and reads one.
#include "bench_masks.h"

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>

#include "masks.h"

namespace zuqel::bench {
namespace {

constexpr uint8_t kSet = 255;

Image<uint8_t> ClearBorder(Image<uint8_t> mask) {
  SetRing(mask, 0, 0);
  return mask;
}

Image<uint8_t> Draw(bool (*is_set)(const Pixel&, Random&)) {
  return ClearBorder(DrawMask({"", is_set, 3}, 640, 480));
}

Image<uint8_t> ReadPgm(const char* path) {
  std::ifstream file(path, std::ios::binary);
  std::string kind;
  int32_t largest = 0;
  Image<uint8_t> image;
  file >> kind >> image.width >> image.height >> largest;
  file.get();
  const bool is_read = file && kind == "P5" && largest == kSet &&
                       image.width > 0 && image.height > 0;
  if (is_read) image.values.resize(image.View().size());
  if (!is_read ||
      !file.read(reinterpret_cast<char*>(image.values.data()),
                 static_cast<std::streamsize>(image.values.size()))) {
    static_cast<void>(std::fprintf(stderr, "%s: no 8-bit binary PGM\n", path));
    std::abort();
  }
  for (uint8_t& pixel : image.values) pixel = pixel < 128 ? 0 : kSet;
  return image;
}

}  // namespace

Image<uint8_t> SceneMask() {
  // NOLINTNEXTLINE(concurrency-mt-unsafe): nobody sets it.
  const char* path = std::getenv("ZUQEL_BENCH_MASK");
  return path == nullptr ? Draw(IsSubject) : ClearBorder(ReadPgm(path));
}

Image<uint8_t> HalfNoise() {
  return Draw(IsNoise<50>);
}

Image<uint8_t> DenseNoise() {
  return Draw(IsNoise<60>);
}

Image<uint8_t> Checkerboard() {
  return Draw(IsCheckerboard);
}

}  // namespace zuqel::bench
