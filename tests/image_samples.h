// Files for the tests of the command-line program.
#ifndef ZUQEL_TESTS_IMAGE_SAMPLES_H_
#define ZUQEL_TESTS_IMAGE_SAMPLES_H_

#include <cstdint>
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

// PNG files.
void WritePicture(const Picture& picture, const std::string& path);
void WriteGrey(const Map<uint8_t>& map, const std::string& path);
void WriteDisparity(const DisparityMap& map, const std::string& path);

// The bytes of a JPEG file of high quality. Four neighbours of `rgb` become a
// pixel of CMYK.
std::vector<uint8_t> Jpeg(Picture picture, bool is_progressive = false,
                          bool is_cmyk = false);

std::vector<uint8_t> ReadBytes(const std::string& path);
void WriteBytes(const std::string& path, const std::vector<uint8_t>& bytes);

}  // namespace zuqel::tools

#endif  // ZUQEL_TESTS_IMAGE_SAMPLES_H_
