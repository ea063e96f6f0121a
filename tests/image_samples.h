// Small picture files of every kind for the tests of the tools.
#ifndef ZUQEL_TESTS_IMAGE_SAMPLES_H_
#define ZUQEL_TESTS_IMAGE_SAMPLES_H_

#include <png.h>

#include <cstdint>
#include <string>
#include <vector>

#include "image.h"

namespace zuqel::tools {

// A folder that goes with its content at the end.
class TemporaryFolder {
 public:
  TemporaryFolder();
  ~TemporaryFolder();
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  std::string operator/(const std::string& name) const;

 private:
  std::string path_;
};

// Every pixel at random.
Picture NoisePicture(int width, int height);

// `format` as in libpng's simplified interface; with a colour map of RGB, the
// pixels are indices.
void WriteSamplePng(const std::string& path, int width, int height,
                    png_uint_32 format, const void* pixels,
                    const std::vector<uint8_t>& colour_map = {});

// `channels` is 1 (grey) or 3 (RGB).
void WriteSampleJpeg(const std::string& path, int width, int height,
                     int channels, std::vector<uint8_t> pixels);

std::vector<uint8_t> ReadBytes(const std::string& path);
void WriteBytes(const std::string& path, const std::vector<uint8_t>& bytes);

}  // namespace zuqel::tools

#endif  // ZUQEL_TESTS_IMAGE_SAMPLES_H_
