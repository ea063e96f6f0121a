// HEIC and AVIF photos.
#ifndef ZUQEL_TOOLS_PHOTO_HEIF_PHOTO_H_
#define ZUQEL_TOOLS_PHOTO_HEIF_PHOTO_H_

#include <cstdint>
#include <span>
#include <string>

#include "photo/photo.h"

namespace zuqel::tools {

// Rotation, mirroring and cropping by the file are applied; the EXIF
// orientation of such files repeats them and is not. Depth without rotation and
// mirroring of its own has the picture's. Throws InputError, which names
// `path`.
Photo ReadHeifPhoto(const std::string& path, std::span<const uint8_t> file);

}  // namespace zuqel::tools

#endif  // ZUQEL_TOOLS_PHOTO_HEIF_PHOTO_H_
