// The reader of depth inside of JPEG files.
#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

#include "input.h"
#include "photo/jpeg_depth.h"
#include "photo/md5.h"
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

void Read(int kind, Input& input) {
  std::vector<uint8_t> file = input.Rest();
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
  Require(read.depth->values.size() ==
              tools::PixelCount(read.depth->width, read.depth->height),
          "size of a depth map");
  for (const float value : read.depth->values) {
    Require(std::isfinite(value) && value > 0, "a value above 0");
  }
}

}  // namespace

void Run(Input& input) {
  try {
    Read(input.Between(0, 2), input);
  } catch (const tools::InputError&) {
    return;  // which is what bad files are for
  }
}

}  // namespace zuqel::fuzz
