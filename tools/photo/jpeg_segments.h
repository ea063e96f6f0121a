// What the segments of a JPEG file hold besides the picture.
#ifndef ZUQEL_TOOLS_PHOTO_JPEG_SEGMENTS_H_
#define ZUQEL_TOOLS_PHOTO_JPEG_SEGMENTS_H_

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "files/file_bytes.h"

namespace zuqel::tools {

// Empty where the file holds none.
struct JpegSegments {
  Bytes exif;       // from "Exif\0\0" on
  Bytes icc;        // put together; empty also if a part is missing
  std::string xmp;  // the standard packet
  // Of extended XMP: from the name on, in the order of the file, unchecked.
  std::vector<std::string> extended_xmp;
};

// Throws InputError, which names `path`, if what comes before the first scan is
// damaged.
JpegSegments ReadJpegSegments(const std::string& path,
                              std::span<const uint8_t> bytes);

// Bytes up to the end of the picture that `bytes` begin with: other files may
// follow. None if it has no end.
std::optional<size_t> JpegSize(std::span<const uint8_t> bytes);

}  // namespace zuqel::tools

#endif  // ZUQEL_TOOLS_PHOTO_JPEG_SEGMENTS_H_
