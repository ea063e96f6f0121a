// What the segments of a JPEG file hold besides the picture.
#include "photo/jpeg_segments.h"

#include <memory>
#include <string_view>

#include "decode/decode.h"
#include "photo/decode_error.h"

namespace zuqel::tools {
namespace {

// What a segment begins with; zeros belong to it.
constexpr std::string_view kExif("Exif\0\0", 6);
constexpr std::string_view kXmp("http://ns.adobe.com/xap/1.0/\0", 29);
constexpr std::string_view kExtendedXmp("http://ns.adobe.com/xmp/extension/\0",
                                        35);

struct CloseMarkers {
  void operator()(JpegMarkers* markers) const { CloseJpegMarkers(markers); }
};

std::string_view AsText(const uint8_t* bytes, size_t size) {
  return {reinterpret_cast<const char*>(bytes), size};
}

// Of several EXIF segments or packets the first counts.
void AddSegment(std::string_view content, JpegSegments& segments) {
  if (content.starts_with(kExif) && segments.exif.empty()) {
    segments.exif.assign(content.begin(), content.end());
  } else if (content.starts_with(kXmp) && segments.xmp.empty()) {
    segments.xmp = content.substr(kXmp.size());
  } else if (content.starts_with(kExtendedXmp)) {
    segments.extended_xmp.emplace_back(content.substr(kExtendedXmp.size()));
  }
}

}  // namespace

JpegSegments ReadJpegSegments(const std::string& path,
                              std::span<const uint8_t> bytes) {
  Reason reason = {};
  JpegMarkers* opened = nullptr;
  const DecodeStatus status =
      OpenJpegMarkers(bytes.data(), bytes.size(), &opened, reason.data());
  const std::unique_ptr<JpegMarkers, CloseMarkers> markers(opened);
  CheckDecoded(path, status, reason);

  JpegSegments segments;
  size_t size = 0;
  while (const uint8_t* content = NextJpegSegment(opened, &size)) {
    AddSegment(AsText(content, size), segments);
  }
  const uint8_t* profile = JpegProfile(opened, &size);
  if (profile != nullptr) segments.icc.assign(profile, profile + size);
  return segments;
}

std::optional<size_t> JpegSize(std::span<const uint8_t> bytes) {
  constexpr uint8_t kStuffed = 0, kTemporary = 1, kFirstRestart = 0xd0,
                    kStart = 0xd8, kEnd = 0xd9, kMarker = 0xff;
  size_t at = 0;
  while (bytes.size() - at >= 2) {
    const uint8_t code = bytes[at + 1];
    // Pixels, or one of the bytes that may fill up before a marker.
    if (bytes[at] != kMarker || code == kMarker) {
      ++at;
      continue;
    }
    at += 2;
    if (code == kEnd) return at;
    const bool is_alone = code == kStuffed || code == kTemporary ||
                          (code >= kFirstRestart && code <= kStart);
    if (is_alone) continue;
    if (bytes.size() - at < 2) break;
    const size_t length = size_t{bytes[at]} << 8 | bytes[at + 1];
    if (length < 2 || length > bytes.size() - at) break;
    at += length;
  }
  return std::nullopt;
}

}  // namespace zuqel::tools
