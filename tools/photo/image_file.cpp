// Reads and writes picture files.
#include "photo/image_file.h"

#include <png.h>

#include <algorithm>
#include <cstdlib>
#include <span>
#include <vector>

#include "decode/decode.h"
#include "files/file_bytes.h"
#include "photo/decode_error.h"
#include "tool_error.h"

namespace zuqel::tools {
namespace {

[[noreturn]] void Refuse(const std::string& path, const std::string& what) {
  throw InputError(path + ": " + what);
}

[[noreturn]] void RefuseKind(const std::string& path) {
  Refuse(path, "is not a PNG or JPEG picture");
}

bool IsPng(std::span<const uint8_t> bytes) {
  return bytes.size() >= 8 && png_sig_cmp(bytes.data(), 0, 8) == 0;
}

bool IsJpeg(std::span<const uint8_t> bytes) {
  return bytes.size() >= 3 && bytes[0] == 0xff && bytes[1] == 0xd8 &&
         bytes[2] == 0xff;
}

PngHeader ReadHeader(const std::string& path, std::span<const uint8_t> bytes) {
  Reason reason = {};
  PngHeader header = {};
  CheckDecoded(
      path, ReadPngHeader(bytes.data(), bytes.size(), &header, reason.data()),
      reason);
  RequireReadableSize(path, {header.width, header.height});
  return header;
}

// Decodes into `pixels`, which has the size given by the file's header.
template <typename Value>
void DecodePngInto(const std::string& path, std::span<const uint8_t> bytes,
                   PngLayout layout, std::vector<Value>& pixels,
                   PngBlocks* blocks = nullptr) {
  Reason reason = {};
  CheckDecoded(path,
               DecodePng(bytes.data(), bytes.size(), layout, pixels.data(),
                         pixels.size() * sizeof(Value), blocks, reason.data()),
               reason);
}

Size ReadJpegSizeOf(const std::string& path, std::span<const uint8_t> bytes) {
  Reason reason = {};
  Size size;
  CheckDecoded(path,
               ReadJpegSize(bytes.data(), bytes.size(), &size.width,
                            &size.height, reason.data()),
               reason);
  RequireReadableSize(path, size);
  return size;
}

// Decodes into `pixels`, which has the size given by the file's header.
void DecodeJpegInto(const std::string& path, std::span<const uint8_t> bytes,
                    JpegLayout layout, std::vector<uint8_t>& pixels) {
  Reason reason = {};
  CheckDecoded(path,
               DecodeJpeg(bytes.data(), bytes.size(), layout, pixels.data(),
                          pixels.size(), reason.data()),
               reason);
}

Picture DecodeJpegPicture(const std::string& path,
                          std::span<const uint8_t> bytes) {
  const Size size = ReadJpegSizeOf(path, bytes);
  Picture picture(size.width, size.height);
  DecodeJpegInto(path, bytes, kJpegRgb8, picture.rgb);
  return picture;
}

GreyPicture Widen(const Map<uint8_t>& map) {
  GreyPicture grey = {{map.width, map.height}};
  std::copy(map.values.begin(), map.values.end(), grey.map.values.begin());
  return grey;
}

GreyPicture DecodeGreyPng(const std::string& path,
                          std::span<const uint8_t> bytes) {
  const PngHeader header = ReadHeader(path, bytes);
  if (header.bit_depth == 16) {
    GreyPicture grey = {{header.width, header.height}, 65535};
    DecodePngInto(path, bytes, kPngGrey16, grey.map.values);
    return grey;
  }
  Map<uint8_t> map(header.width, header.height);
  DecodePngInto(path, bytes, kPngGrey8, map.values);
  return Widen(map);
}

GreyPicture DecodeGreyJpeg(const std::string& path,
                           std::span<const uint8_t> bytes) {
  const Size size = ReadJpegSizeOf(path, bytes);
  Map<uint8_t> map(size.width, size.height);
  DecodeJpegInto(path, bytes, kJpegGrey8, map.values);
  return Widen(map);
}

struct OwnedPngBlocks : PngBlocks {
  OwnedPngBlocks() : PngBlocks() {}
  ~OwnedPngBlocks() {
    std::free(icc);
    std::free(exif);
  }
  OwnedPngBlocks(const OwnedPngBlocks&) = delete;
  OwnedPngBlocks& operator=(const OwnedPngBlocks&) = delete;

  [[nodiscard]] Metadata ToMetadata() const {
    Metadata metadata = {.icc = {icc, icc + icc_size}, .exif = {}};
    if (exif == nullptr) return metadata;
    metadata.exif = {'E', 'x', 'i', 'f', 0, 0};
    metadata.exif.insert(metadata.exif.end(), exif, exif + exif_size);
    return metadata;
  }
};

template <typename Value>
Map<Value> ReadGreyPng(const std::string& path) {
  const Bytes bytes = ReadFile(path);
  if (!IsPng(bytes)) Refuse(path, "is not a PNG picture");
  const PngHeader header = ReadHeader(path, bytes);
  constexpr int kBits = 8 * sizeof(Value);
  const bool is_grey = header.is_grey != 0;
  if (!is_grey || header.bit_depth != kBits) {
    Refuse(path, "is " + std::to_string(header.bit_depth) + "-bit " +
                     (is_grey ? "grey" : "colour") + "; " +
                     std::to_string(kBits) + "-bit grey is needed");
  }
  Map<Value> map(header.width, header.height);
  DecodePngInto(path, bytes, kBits == 8 ? kPngGrey8 : kPngGrey16, map.values);
  return map;
}

void WritePng(int width, int height, png_uint_32 format, const void* pixels,
              const PendingFile& file) {
  png_image image = {};
  image.version = PNG_IMAGE_VERSION;
  image.width = static_cast<png_uint_32>(width);
  image.height = static_cast<png_uint_32>(height);
  image.format = format;
  if (png_image_write_to_stdio(&image, file.stream(), 0, pixels, 0, nullptr) ==
      0) {
    file.Fail(image.message);
  }
}

}  // namespace

bool IsPngOrJpeg(std::span<const uint8_t> bytes) {
  return IsPng(bytes) || IsJpeg(bytes);
}

Picture ReadPicture(const std::string& path) {
  return DecodePicture(path, ReadFile(path));
}

Picture ReadFramePicture(const std::string& path) {
  Picture picture = ReadPicture(path);
  RequireFrameSize(path, SizeOf(picture));
  return picture;
}

void RequireReadableSize(const std::string& name, Size size) {
  if (size.width >= 1 && size.height >= 1 && size.width <= kLargestSide &&
      size.height <= kLargestSide) {
    return;
  }
  const std::string most = std::to_string(kLargestSide);
  Refuse(name, "is " + std::to_string(size.width) + " x " +
                   std::to_string(size.height) + " pixels; at most " + most +
                   " x " + most + " is supported");
}

void RequireFrameSize(const std::string& name, Size size) {
  RequireReadableSize(name, size);
  if (size.width % 2 == 0 && size.height % 2 == 0) return;
  Refuse(name, "is " + std::to_string(size.width) + " x " +
                   std::to_string(size.height) +
                   " pixels; an even width and height are needed");
}

Picture DecodePngPicture(const std::string& name,
                         std::span<const uint8_t> bytes, Metadata* metadata) {
  const PngHeader header = ReadHeader(name, bytes);
  Picture picture(header.width, header.height);
  OwnedPngBlocks blocks;
  DecodePngInto(name, bytes, kPngRgb8, picture.rgb,
                metadata != nullptr ? &blocks : nullptr);
  if (metadata != nullptr) *metadata = blocks.ToMetadata();
  return picture;
}

Picture DecodePicture(const std::string& name, std::span<const uint8_t> bytes) {
  if (IsPng(bytes)) return DecodePngPicture(name, bytes, nullptr);
  if (IsJpeg(bytes)) return DecodeJpegPicture(name, bytes);
  RefuseKind(name);
}

GreyPicture DecodeGreyPicture(const std::string& name,
                              std::span<const uint8_t> bytes) {
  if (IsPng(bytes)) return DecodeGreyPng(name, bytes);
  if (IsJpeg(bytes)) return DecodeGreyJpeg(name, bytes);
  RefuseKind(name);
}

DisparityMap ReadDisparity(const std::string& path) {
  DisparityMap map = ReadGreyPng<uint16_t>(path);
  const auto largest = std::max_element(map.values.begin(), map.values.end());
  if (*largest > kUnknownDisparity) {
    Refuse(path, "has a value of " + std::to_string(*largest) +
                     "; a disparity is at most 1023");
  }
  return map;
}

WeightMap ReadWeights(const std::string& path) {
  return ReadGreyPng<uint8_t>(path);
}

void WriteGrey(const Map<uint8_t>& map, PendingFile& file) {
  WritePng(map.width, map.height, PNG_FORMAT_GRAY, map.values.data(), file);
}

void WriteDisparity(const DisparityMap& map, PendingFile& file) {
  WritePng(map.width, map.height, PNG_FORMAT_LINEAR_Y, map.values.data(), file);
}

}  // namespace zuqel::tools
