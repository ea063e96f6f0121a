// Dynamic depth: files after the picture, listed in the XMP.
#ifndef ZUQEL_TOOLS_PHOTO_DYNAMIC_DEPTH_H_
#define ZUQEL_TOOLS_PHOTO_DYNAMIC_DEPTH_H_

#include <cstdint>
#include <optional>
#include <span>
#include <string>

#include "photo/ranged_depth.h"
#include "photo/xmp.h"

namespace zuqel::tools {

// `bytes` are the whole file. None if `xmp` lists no depth. Throws InputError,
// which names `path`.
std::optional<EmbeddedDepth> ReadDynamicDepth(const std::string& path,
                                              std::span<const uint8_t> bytes,
                                              const Xmp& xmp);

}  // namespace zuqel::tools

#endif  // ZUQEL_TOOLS_PHOTO_DYNAMIC_DEPTH_H_
