// What a picture file holds besides its pixels.
#ifndef ZUQEL_TOOLS_PHOTO_METADATA_H_
#define ZUQEL_TOOLS_PHOTO_METADATA_H_

#include "files/file_bytes.h"

namespace zuqel::tools {

// What goes from a photo to what is made of it, as the file holds it; empty
// where it holds none.
struct Metadata {
  Bytes icc;   // the profile
  Bytes exif;  // from "Exif\0\0" on
};

}  // namespace zuqel::tools

#endif  // ZUQEL_TOOLS_PHOTO_METADATA_H_
