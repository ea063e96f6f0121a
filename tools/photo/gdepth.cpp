// GDepth: the depth as text in the XMP.
#include "photo/gdepth.h"

#include <algorithm>
#include <string_view>

#include "photo/base64.h"
#include "tool_error.h"

namespace zuqel::tools {
namespace {

constexpr std::string_view kDepth = "http://ns.google.com/photos/1.0/depthmap/";
constexpr std::string_view kImage = "http://ns.google.com/photos/1.0/image/";

Bytes Decode(const std::string& path, const char* name, std::string_view text) {
  std::optional<Bytes> bytes = DecodeBase64(text);
  if (!bytes) throw InputError(path + ": its " + name + " is not base64");
  return *std::move(bytes);
}

}  // namespace

// Mime is not asked: the first bytes say what a picture is. Without depth,
// GImage can be another view.
std::optional<EmbeddedDepth> ReadGDepth(const std::string& path,
                                        const Xmp& xmp) {
  const bool has_depth = std::any_of(
      xmp.properties().begin(), xmp.properties().end(),
      [](const Xmp::Property& one) { return one.name.starts_with(kDepth); });
  if (!has_depth) return std::nullopt;
  const std::string_view data = xmp.Value(kDepth, "Data");
  if (data.empty()) throw InputError(path + ": its GDepth:Data is missing");
  return EmbeddedDepth{
      DecodeRangedDepth(path, "GDepth", xmp, {kDepth, Xmp::kTop},
                        Decode(path, "GDepth:Data", data)),
      Decode(path, "GImage:Data", xmp.Value(kImage, "Data"))};
}

}  // namespace zuqel::tools
