// Small picture files of every kind for the tests of the command-line program.
#ifndef ZUQEL_TESTS_IMAGE_SAMPLES_H_
#define ZUQEL_TESTS_IMAGE_SAMPLES_H_

#include <png.h>

#include <cstdint>
#include <initializer_list>
#include <string>
#include <vector>

#include "image.h"

namespace zuqel::tools {

// A temporary folder, removed with its contents by the destructor.
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

// Random pixels, the same each time.
Picture NoisePicture(int width, int height);

// `format` as in libpng's simplified interface; with a colour map of RGB, the
// pixels are indices.
void WriteSamplePng(const std::string& path, int width, int height,
                    png_uint_32 format, const void* pixels,
                    const std::vector<uint8_t>& colour_map = {});

// `channels` is 1 (grey) or 3 (RGB).
void WriteSampleJpeg(const std::string& path, int width, int height,
                     int channels, std::vector<uint8_t> pixels);

// The parts of a PNG file, for files that no encoder writes. A chunk comes with
// its length and checksum.
std::vector<uint8_t> PngFile(
    std::initializer_list<std::vector<uint8_t>> chunks);
std::vector<uint8_t> PngChunk(const std::string& type,
                              const std::vector<uint8_t>& data);
std::vector<uint8_t> PngHeaderChunk(png_uint_32 width, png_uint_32 height,
                                    uint8_t bit_depth, uint8_t colour_type,
                                    uint8_t interlace = PNG_INTERLACE_NONE);
std::vector<uint8_t> PngDataChunk(const std::vector<uint8_t>& filtered_rows);

std::vector<uint8_t> ReadBytes(const std::string& path);
void WriteBytes(const std::string& path, const std::vector<uint8_t>& bytes);

}  // namespace zuqel::tools

#endif  // ZUQEL_TESTS_IMAGE_SAMPLES_H_
