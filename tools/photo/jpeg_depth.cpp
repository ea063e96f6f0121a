// The depth that phones put into JPEG files.
#include "photo/jpeg_depth.h"

#include <string_view>
#include <utility>

#include "photo/dynamic_depth.h"
#include "photo/extended_xmp.h"
#include "photo/gdepth.h"
#include "photo/xmp.h"

namespace zuqel::tools {
namespace {

// A packet that cannot lead to depth is not even parsed: its faults do not
// matter.
Xmp ReadXmp(const std::string& path, const JpegSegments& segments) {
  const std::string_view standard = segments.xmp;
  const auto has = [&](std::string_view text) {
    return standard.find(text) != std::string_view::npos;
  };
  Xmp xmp;
  if (!has(kPhotosNamespace) && !has("HasExtendedXMP")) return xmp;
  xmp.Add(path, standard);
  const std::string extended(xmp.Value(kHasExtendedXmp, ""));
  if (!extended.empty()) {
    xmp.Add(path, JoinExtendedXmp(path, segments.extended_xmp, extended));
  }
  return xmp;
}

}  // namespace

JpegDepth ReadJpegDepth(const std::string& path, std::span<const uint8_t> bytes,
                        const JpegSegments& segments) {
  const Xmp xmp = ReadXmp(path, segments);
  std::optional<EmbeddedDepth> found = ReadDynamicDepth(path, bytes, xmp);
  if (!found) found = ReadGDepth(path, xmp);
  if (!found) return {};
  return {std::move(found->map), std::move(found->original)};
}

}  // namespace zuqel::tools
