// Photos as phones write them.
#include "photo/photo.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <utility>

#include "files/file_bytes.h"
#include "photo/exif.h"
#include "photo/heif_photo.h"
#include "photo/image_file.h"
#include "photo/jpeg_depth.h"
#include "photo/jpeg_segments.h"
#include "photo/orientation.h"
#include "tool_error.h"

namespace zuqel::tools {
namespace {

using namespace std::string_view_literals;

enum class Format { kPng, kJpeg, kHeif, kOther };

// How files begin; the second piece, where there is one, is at `offset`.
struct Signature {
  std::string_view start;
  size_t offset = 0;
  std::string_view piece;
  Format format = Format::kOther;
  const char* name = "";
};

// A file that is more than one comes under the first. The start of HEIF files
// is the size of their first box.
constexpr std::array kSignatures = {
    Signature{"\x89PNG\r\n\x1a\n"sv, 0, "", Format::kPng},
    Signature{"\xff\xd8\xff"sv, 0, "", Format::kJpeg},
    Signature{"", 4, "ftypavis", Format::kOther, "an animated AVIF"},
    Signature{"", 4, "ftyphevc", Format::kOther, "a sequence of HEIC pictures"},
    Signature{"", 4, "ftyphevx", Format::kOther, "a sequence of HEIC pictures"},
    Signature{"", 4, "ftypmsf1", Format::kOther, "a sequence of HEIF pictures"},
    Signature{"", 4, "ftypcrx ", Format::kOther, "a raw photo"},
    Signature{"", 4, "ftypqt  ", Format::kOther, "a video"},
    Signature{"", 4, "ftypmp4", Format::kOther, "a video"},
    Signature{"", 4, "ftypiso", Format::kOther, "a video"},
    Signature{"", 4, "ftyp", Format::kHeif},
    Signature{"GIF8", 0, "", Format::kOther, "a GIF picture"},
    Signature{"RIFF", 8, "WEBP", Format::kOther, "a WebP picture"},
    Signature{"II*\0"sv, 0, "", Format::kOther, "a TIFF picture or raw photo"},
    Signature{"MM\0*"sv, 0, "", Format::kOther, "a TIFF picture or raw photo"},
    Signature{"IIRO", 0, "", Format::kOther, "a raw photo"},
    Signature{"IIU\0"sv, 0, "", Format::kOther, "a raw photo"},
    Signature{"FUJIFILM", 0, "", Format::kOther, "a raw photo"},
    Signature{"BM", 0, "", Format::kOther, "a BMP picture"},
    Signature{"8BPS", 0, "", Format::kOther, "a Photoshop picture"},
    Signature{"\xff\x0a"sv, 0, "", Format::kOther, "a JPEG XL picture"},
    Signature{"\0\0\0\x0cJXL "sv, 0, "", Format::kOther, "a JPEG XL picture"},
    Signature{"\0\0\0\x0cjP  "sv, 0, "", Format::kOther, "a JPEG 2000 picture"},
};

bool HasAt(std::string_view file, size_t offset, std::string_view piece) {
  return file.size() >= offset && file.substr(offset).starts_with(piece);
}

// InputError if it is no format that is read.
Format FormatOf(const std::string& path, std::span<const uint8_t> bytes) {
  constexpr size_t kLongest = 16;
  const auto start = bytes.first(std::min(bytes.size(), kLongest));
  const std::string file(start.begin(), start.end());
  for (const Signature& signature : kSignatures) {
    if (!HasAt(file, 0, signature.start) ||
        !HasAt(file, signature.offset, signature.piece)) {
      continue;
    }
    if (signature.format != Format::kOther) return signature.format;
    throw InputError(path + ": is " + signature.name +
                     "; PNG, JPEG, HEIC and AVIF are read");
  }
  throw InputError(path + ": is not a PNG, JPEG, HEIC or AVIF picture");
}

Photo ReadPngPhoto(const std::string& path, std::span<const uint8_t> bytes) {
  Photo photo;
  photo.picture = DecodePngPicture(path, bytes, &photo.metadata);
  TurnUpright(photo.picture, ReadOrientation(photo.metadata.exif));
  return photo;
}

// The picture from before the blur and the depth lie in the file as the main
// picture does, and seldom have an orientation of their own; where that picture
// has one, it is how it lies.
Photo ReadJpegPhoto(const std::string& path, std::span<const uint8_t> bytes) {
  JpegSegments segments = ReadJpegSegments(path, bytes);
  JpegDepth inside = ReadJpegDepth(path, bytes, segments);
  Photo photo;
  photo.depth = std::move(inside.depth);
  photo.is_before_blur = !inside.original.empty();
  const std::string name = path + (photo.is_before_blur ? " (unblurred)" : "");
  if (photo.is_before_blur) bytes = inside.original;
  photo.picture = DecodePicture(name, bytes);
  int orientation = ReadOrientation(segments.exif);
  if (photo.depth) TurnUpright(*photo.depth, orientation);
  if (photo.is_before_blur && FormatOf(name, bytes) == Format::kJpeg) {
    JpegSegments own = ReadJpegSegments(name, bytes);
    if (const int other = ReadOrientation(own.exif); other != 0) {
      orientation = other;
    }
    if (!own.icc.empty()) segments.icc = std::move(own.icc);
  }
  TurnUpright(photo.picture, orientation);
  photo.metadata = {std::move(segments.icc), std::move(segments.exif)};
  return photo;
}

Photo ReadAnyPhoto(const std::string& path) {
  const Bytes bytes = ReadFile(path);
  switch (FormatOf(path, bytes)) {
    case Format::kPng:
      return ReadPngPhoto(path, bytes);
    case Format::kJpeg:
      return ReadJpegPhoto(path, bytes);
    default:
      return ReadHeifPhoto(path, bytes);
  }
}

// Profiles of grey pictures and of printers are for other colours than ours.
bool IsRgbProfile(const Bytes& icc) {
  constexpr size_t kHeaderBytes = 128, kColourSpace = 16, kSignature = 36;
  constexpr size_t kLargest = size_t{4} << 20;  // libpng takes 8 MB
  if (icc.size() < kHeaderBytes || icc.size() > kLargest) return false;
  const std::string header(icc.begin(), icc.begin() + kHeaderBytes);
  return HasAt(header, kColourSpace, "RGB ") &&
         HasAt(header, kSignature, "acsp");
}

}  // namespace

Photo ReadPhoto(const std::string& path) {
  Photo photo = ReadAnyPhoto(path);
  if (!IsRgbProfile(photo.metadata.icc)) photo.metadata.icc.clear();
  return photo;
}

}  // namespace zuqel::tools
