// Writes pictures made from photos.
#include "photo/picture_writer.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <filesystem>

#include "encode/encode.h"
#include "files/standard_streams.h"
#include "photo/exif.h"
#include "tool_error.h"

namespace zuqel::tools {
namespace {

// In lower case.
std::string ExtensionOf(const std::string& path) {
  std::string extension = std::filesystem::path(path).extension();
  std::transform(extension.begin(), extension.end(), extension.begin(),
                 [](unsigned char c) { return std::tolower(c); });
  return extension;
}

FileBlock ToBlock(const Bytes& bytes) {
  return {bytes.data(), bytes.size()};
}

}  // namespace

bool IsJpegName(const std::string& path) {
  const std::string extension = ExtensionOf(path);
  return extension == ".jpg" || extension == ".jpeg";
}

std::string ResultExtension(const std::string& photo) {
  return ExtensionOf(photo) == ".png" ? ".png" : ".jpg";
}

void CheckPictureName(const std::string& option, const std::string& path) {
  if (IsJpegName(path) || ExtensionOf(path) == ".png") return;
  if (IsStandardStream(path)) return;
  throw InputError(option + ": " + path +
                   ": has to end in .png, .jpg or .jpeg");
}

void WritePicture(const Picture& picture, const Metadata& metadata, int quality,
                  PendingFile& file) {
  const RgbImage image = {picture.width, picture.height, picture.rgb.data()};
  const FileBlock icc = ToBlock(metadata.icc);
  std::array<char, kEncodeReasonSize> reason = {};
  if (IsJpegName(file.target())) {
    const Bytes exif = UprightExif(metadata.exif, SizeOf(picture));
    if (EncodeJpeg(file.stream(), &image, quality, icc, ToBlock(exif),
                   reason.data()) == 0) {
      file.Fail(reason.data());
    }
  } else if (EncodePng(file.stream(), &image, icc, reason.data()) == 0) {
    file.Fail(reason.data());
  }
}

}  // namespace zuqel::tools
