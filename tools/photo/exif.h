// The EXIF block of a photo.
#ifndef ZUQEL_TOOLS_PHOTO_EXIF_H_
#define ZUQEL_TOOLS_PHOTO_EXIF_H_

#include <cstdint>
#include <span>

#include "files/file_bytes.h"
#include "image.h"

namespace zuqel::tools {

// Blocks start with "Exif\0\0". One that cannot be read counts as none.

// 1 to 8; 0 if the block has no orientation.
int ReadOrientation(std::span<const uint8_t> exif);

// The block for an upright JPEG picture of this size that was made from the
// photo, without its thumbnail; empty if there is none.
Bytes UprightExif(std::span<const uint8_t> exif, Size size);

}  // namespace zuqel::tools

#endif  // ZUQEL_TOOLS_PHOTO_EXIF_H_
