// Files for the tests of the command-line program.
#include "image_samples.h"

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>

// Needs FILE and size_t before it.
#include <jpeglib.h>

#include "files/pending_file.h"
#include "photo/image_file.h"
#include "photo/picture_writer.h"
#include "random.h"

namespace zuqel::tools {
namespace {

template <typename Image>
void WriteImage(void (*write)(const Image&, PendingFile&), const Image& image,
                const std::string& path) {
  PendingFile file(path);
  write(image, file);
  file.Close();
  file.Commit();
}

}  // namespace

TemporaryFolder::TemporaryFolder()
    : path_(std::filesystem::temp_directory_path() / "zuqel_test_XXXXXX") {
  if (mkdtemp(path_.data()) == nullptr) throw std::runtime_error("mkdtemp");
}

TemporaryFolder::~TemporaryFolder() {
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}

std::string TemporaryFolder::operator/(const std::string& name) const {
  return path_ + "/" + name;
}

Picture NoisePicture(int width, int height) {
  Random random(1);
  Picture picture(width, height);
  for (uint8_t& byte : picture.rgb) byte = static_cast<uint8_t>(random.Bits());
  return picture;
}

void WritePicture(const Picture& picture, const std::string& path) {
  WriteImage<Picture>(
      [](const Picture& image, PendingFile& file) {
        WritePicture(image, {}, kDefaultQuality, file);
      },
      picture, path);
}

void WriteGrey(const Map<uint8_t>& map, const std::string& path) {
  WriteImage(WriteGrey, map, path);
}

void WriteDisparity(const DisparityMap& map, const std::string& path) {
  WriteImage(WriteDisparity, map, path);
}

std::vector<uint8_t> Jpeg(Picture picture, bool is_progressive, bool is_cmyk) {
  jpeg_compress_struct compress = {};
  jpeg_error_mgr errors = {};
  compress.err = jpeg_std_error(&errors);
  jpeg_create_compress(&compress);
  unsigned char* bytes = nullptr;
  unsigned long size = 0;  // NOLINT(google-runtime-int): libjpeg's type
  jpeg_mem_dest(&compress, &bytes, &size);
  const int samples_in_row = 3 * picture.width;
  compress.input_components = is_cmyk ? 4 : 3;
  compress.in_color_space = is_cmyk ? JCS_CMYK : JCS_RGB;
  compress.image_width =
      static_cast<JDIMENSION>(samples_in_row / compress.input_components);
  compress.image_height = static_cast<JDIMENSION>(picture.height);
  jpeg_set_defaults(&compress);
  jpeg_set_quality(&compress, 98, TRUE);
  if (is_progressive) jpeg_simple_progression(&compress);
  jpeg_start_compress(&compress, TRUE);
  for (auto row = picture.rgb.begin(); row < picture.rgb.end();
       row += samples_in_row) {
    JSAMPROW samples = &*row;
    jpeg_write_scanlines(&compress, &samples, 1);
  }
  jpeg_finish_compress(&compress);
  jpeg_destroy_compress(&compress);
  std::vector<uint8_t> file(bytes, bytes + size);
  std::free(bytes);
  return file;
}

std::vector<uint8_t> ReadBytes(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

void WriteBytes(const std::string& path, const std::vector<uint8_t>& bytes) {
  // Some file systems flush a file that was cut and written anew.
  std::filesystem::remove(path);
  std::ofstream file(path, std::ios::binary);
  std::copy(bytes.begin(), bytes.end(), std::ostreambuf_iterator<char>(file));
}

}  // namespace zuqel::tools
