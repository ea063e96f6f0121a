// GDepth: the depth as text in the XMP.
#ifndef ZUQEL_TOOLS_PHOTO_GDEPTH_H_
#define ZUQEL_TOOLS_PHOTO_GDEPTH_H_

#include <optional>
#include <string>

#include "photo/ranged_depth.h"
#include "photo/xmp.h"

namespace zuqel::tools {

// None if `xmp` names no depth. Throws InputError, which names `path`.
std::optional<EmbeddedDepth> ReadGDepth(const std::string& path,
                                        const Xmp& xmp);

}  // namespace zuqel::tools

#endif  // ZUQEL_TOOLS_PHOTO_GDEPTH_H_
