// The readers of what photos hold besides the picture, and of what lies beside
// scenes and reports.
#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

#include "input.h"
#include "photo/exif.h"
#include "photo/heif_photo.h"
#include "photo/heif_turns.h"
#include "photo/jpeg_depth.h"
#include "photo/md5.h"
#include "report/json_files.h"
#include "report/text.h"
#include "require.h"
#include "tool_error.h"

namespace zuqel::fuzz {
namespace {

constexpr const char* kName = "file";

// Under the check sum that no mutation finds.
tools::JpegSegments WithExtendedXmp(const std::string& xmp) {
  const std::string name = tools::Md5(xmp);
  std::string header = name + std::string(8, '\0');
  header[34] = static_cast<char>(xmp.size() >> 8);
  header[35] = static_cast<char>(xmp.size());
  return {{},
          {},
          "<a:xmpmeta xmlns:a='adobe:ns:meta/' xmlns:b='http://ns.adobe.com/"
          "xmp/note/' b:HasExtendedXMP='" +
              name + "'/>",
          {header + xmp}};
}

void RequireSize(const tools::DepthMap& depth) {
  Require(depth.values.size() == tools::PixelCount(depth.width, depth.height),
          "size of a depth map");
}

void ReadExif(const std::vector<uint8_t>& file) {
  const int orientation = tools::ReadOrientation(file);
  Require(orientation >= 0 && orientation <= 8, "orientation");
  const tools::Bytes carried = tools::UprightExif(file, {8, 6});
  Require(carried.empty() || tools::ReadOrientation(carried) <= 1,
          "orientation of a carried block");
}

void ReadTurns(const std::vector<uint8_t>& file) {
  for (uint32_t item = 0; item < 4; ++item) {
    for (const int turn : tools::ReadHeifTurns(file, item)) {
      Require(turn >= 1 && turn <= 8, "turn");
    }
  }
}

void ReadHeif(const std::vector<uint8_t>& file) {
  const tools::Photo photo = tools::ReadHeifPhoto(kName, file);
  Require(photo.picture.rgb.size() ==
              3 * tools::PixelCount(photo.picture.width, photo.picture.height),
          "size of a picture");
  if (photo.depth) RequireSize(*photo.depth);
}

void ReadMeta(const std::vector<uint8_t>& file) {
  const tools::SceneMeta meta = tools::ParseSceneMeta(kName, file);
  Require(meta.foci.size() <= tools::kMostFoci, "number of points");
  for (const auto& [what, point] : meta.foci) {
    Require(what == tools::ToUtf8(what), "a text of characters");
    Require(point.x >= 0 && point.x < tools::kLargestSide && point.y >= 0 &&
                point.y < tools::kLargestSide,
            "a point of a picture");
  }
}

void ReadReport(const std::vector<uint8_t>& file) {
  const std::string text = tools::ToJson(tools::ParseReport(kName, file));
  const std::vector<uint8_t> written(text.begin(), text.end());
  Require(tools::ToJson(tools::ParseReport(kName, written)) == text,
          "a report that comes back");
}

void Read(int kind, Input& input) {
  std::vector<uint8_t> file = input.Rest();
  if (kind == 3) ReadExif(file);
  if (kind == 4) ReadTurns(file);
  if (kind == 5) ReadHeif(file);
  if (kind == 6) ReadMeta(file);
  if (kind == 7) ReadReport(file);
  if (kind >= 3) return;
  tools::JpegSegments segments;
  if (kind == 0) {
    segments = tools::ReadJpegSegments(kName, file);
  } else if (kind == 1) {
    // A packet, and what it is about.
    const auto end = std::find(file.begin(), file.end(), 0);
    segments.xmp.assign(file.begin(), end);
    file.erase(file.begin(), end);
  } else {
    segments = WithExtendedXmp({file.begin(), file.end()});
  }
  const tools::JpegDepth read = tools::ReadJpegDepth(kName, file, segments);
  Require(read.depth || read.original.empty(), "a picture without depth");
  if (!read.depth) return;
  RequireSize(*read.depth);
  for (const float value : read.depth->values) {
    Require(std::isfinite(value) && value > 0, "a value above 0");
  }
}

}  // namespace

void Run(Input& input) {
  try {
    Read(input.Between(0, 7), input);
  } catch (const tools::InputError&) {
    return;  // which is what bad files are for
  }
}

}  // namespace zuqel::fuzz
