// Depth as a grey picture that spans a range of lengths, which XMP gives.
#ifndef ZUQEL_TOOLS_PHOTO_RANGED_DEPTH_H_
#define ZUQEL_TOOLS_PHOTO_RANGED_DEPTH_H_

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "files/file_bytes.h"
#include "photo/depth_map.h"
#include "photo/xmp.h"

namespace zuqel::tools {

// What a photo with depth holds besides the picture that all programs show.
struct EmbeddedDepth {
  DepthMap map;
  Bytes original;  // a picture file from before the blur; may be empty
};

// The property that has Format, Near, Far and Units as its own.
struct RangeRecord {
  std::string_view name_space;
  size_t at;
};

// `picture` is a PNG or JPEG file: black is at Near, white at Far. RangeLinear
// is linear in the length and comes as lengths. RangeInverse is linear in the
// inverse and comes as disparity: the steps of the file stay even, and their
// inverse would only be taken again. `kind` is for people. Throws InputError,
// which names `path`.
DepthMap DecodeRangedDepth(const std::string& path, const std::string& kind,
                           const Xmp& xmp, const RangeRecord& record,
                           std::span<const uint8_t> picture);

}  // namespace zuqel::tools

#endif  // ZUQEL_TOOLS_PHOTO_RANGED_DEPTH_H_
