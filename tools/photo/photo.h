// Photos as phones write them: a picture, and its depth where the file has it.
#ifndef ZUQEL_TOOLS_PHOTO_PHOTO_H_
#define ZUQEL_TOOLS_PHOTO_PHOTO_H_

#include <optional>
#include <string>

#include "image.h"
#include "photo/depth_map.h"
#include "photo/metadata.h"

namespace zuqel::tools {

struct Photo {
  Picture picture;                // upright
  std::optional<DepthMap> depth;  // upright, of the same view
  Metadata metadata;
  bool is_before_blur = false;  // the phone had blurred the main picture
};

// A PNG, JPEG, HEIC or AVIF file. Orientation is applied to picture and depth
// alike; depth with a fault is a fault of the file. Throws InputError, which
// names the file and its fault.
Photo ReadPhoto(const std::string& path);

}  // namespace zuqel::tools

#endif  // ZUQEL_TOOLS_PHOTO_PHOTO_H_
