// The depth that phones put into JPEG files.
#ifndef ZUQEL_TOOLS_PHOTO_JPEG_DEPTH_H_
#define ZUQEL_TOOLS_PHOTO_JPEG_DEPTH_H_

#include <cstdint>
#include <optional>
#include <span>
#include <string>

#include "files/file_bytes.h"
#include "photo/depth_map.h"
#include "photo/jpeg_segments.h"

namespace zuqel::tools {

struct JpegDepth {
  std::optional<DepthMap> depth;
  // With depth only: a picture file of the same view, from before the phone
  // blurred it. Empty if there is none.
  Bytes original;
};

// As it lies in the file, not turned upright. Reads `segments` of the same
// `bytes`. Throws InputError, which names `path`, for depth with a fault.
JpegDepth ReadJpegDepth(const std::string& path, std::span<const uint8_t> bytes,
                        const JpegSegments& segments);

}  // namespace zuqel::tools

#endif  // ZUQEL_TOOLS_PHOTO_JPEG_DEPTH_H_
