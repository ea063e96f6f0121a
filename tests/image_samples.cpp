// Small picture files of every kind for the tests of the command-line program.
#include "image_samples.h"

#include <zlib.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <stdexcept>

// Needs FILE and size_t before it.
#include <jpeglib.h>

#include "random.h"

namespace zuqel::tools {
namespace {

void Append(const std::vector<uint8_t>& more, std::vector<uint8_t>& bytes) {
  bytes.insert(bytes.end(), more.begin(), more.end());
}

std::vector<uint8_t> BigEndian(png_uint_32 value) {
  std::vector<uint8_t> bytes(4);
  png_save_uint_32(bytes.data(), value);
  return bytes;
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

void WriteSamplePng(const std::string& path, int width, int height,
                    png_uint_32 format, const void* pixels,
                    const std::vector<uint8_t>& colour_map) {
  png_image image = {};
  image.version = PNG_IMAGE_VERSION;
  image.width = static_cast<png_uint_32>(width);
  image.height = static_cast<png_uint_32>(height);
  image.format = format;
  image.colormap_entries = static_cast<png_uint_32>(colour_map.size() / 3);
  if (png_image_write_to_file(&image, path.c_str(), 0, pixels, 0,
                              colour_map.data()) == 0) {
    throw std::runtime_error(image.message);
  }
}

void WriteSampleJpeg(const std::string& path, int width, int height,
                     int channels, std::vector<uint8_t> pixels) {
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(
      std::fopen(path.c_str(), "wb"), std::fclose);
  if (file == nullptr) throw std::runtime_error(path);
  jpeg_compress_struct compress = {};
  jpeg_error_mgr errors = {};
  compress.err = jpeg_std_error(&errors);
  jpeg_create_compress(&compress);
  jpeg_stdio_dest(&compress, file.get());
  compress.image_width = static_cast<JDIMENSION>(width);
  compress.image_height = static_cast<JDIMENSION>(height);
  compress.input_components = channels;
  compress.in_color_space = channels == 1 ? JCS_GRAYSCALE : JCS_RGB;
  jpeg_set_defaults(&compress);
  jpeg_set_quality(&compress, 98, TRUE);
  jpeg_start_compress(&compress, TRUE);
  for (int y = 0; y < height; ++y) {
    JSAMPROW row = pixels.data() + std::ptrdiff_t{y} * width * channels;
    jpeg_write_scanlines(&compress, &row, 1);
  }
  jpeg_finish_compress(&compress);
  jpeg_destroy_compress(&compress);
}

std::vector<uint8_t> PngFile(
    std::initializer_list<std::vector<uint8_t>> chunks) {
  std::vector<uint8_t> file = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1a, '\n'};
  for (const std::vector<uint8_t>& chunk : chunks) Append(chunk, file);
  return file;
}

std::vector<uint8_t> PngChunk(const std::string& type,
                              const std::vector<uint8_t>& data) {
  std::vector<uint8_t> checked(type.begin(), type.end());
  Append(data, checked);
  const auto size = static_cast<uInt>(checked.size());
  const uLong checksum = crc32(0, checked.data(), size);
  std::vector<uint8_t> chunk = BigEndian(static_cast<png_uint_32>(data.size()));
  Append(checked, chunk);
  Append(BigEndian(static_cast<png_uint_32>(checksum)), chunk);
  return chunk;
}

std::vector<uint8_t> PngHeaderChunk(png_uint_32 width, png_uint_32 height,
                                    uint8_t bit_depth, uint8_t colour_type,
                                    uint8_t interlace) {
  std::vector<uint8_t> data = BigEndian(width);
  Append(BigEndian(height), data);
  Append({bit_depth, colour_type, 0, 0, interlace}, data);
  return PngChunk("IHDR", data);
}

std::vector<uint8_t> PngDataChunk(const std::vector<uint8_t>& filtered_rows) {
  uLongf size = compressBound(filtered_rows.size());
  std::vector<uint8_t> data(size);
  compress(data.data(), &size, filtered_rows.data(), filtered_rows.size());
  data.resize(size);
  return PngChunk("IDAT", data);
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
