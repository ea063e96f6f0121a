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

std::string BigEndian(size_t value) {
  std::string text;
  for (const int shift : {24, 16, 8, 0}) {
    text += static_cast<char>(value >> shift);
  }
  return text;
}

// Two pieces with the sum that no mutation finds.
tools::JpegSegments ExtendedXmp(Input& input) {
  const auto first = input.Between<size_t>(0, 255);
  const auto second = input.Flag() ? first : input.Between<size_t>(0, 255);
  const std::vector<uint8_t> bytes = input.Rest();
  const std::string whole(bytes.begin(), bytes.end()), name = tools::Md5(whole);
  const size_t split = std::min(first, whole.size());
  const std::string header = name + BigEndian(whole.size());
  return {{},
          {},
          "<a:xmpmeta xmlns:a='adobe:ns:meta/' xmlns:b='http://ns.adobe.com/"
          "xmp/note/' b:HasExtendedXMP='" +
              name + "'/>",
          {header + BigEndian(second) + whole.substr(split),
           header + BigEndian(0) + whole.substr(0, split)}};
}

void Read(int kind, Input& input) {
  std::vector<uint8_t> file;
  tools::JpegSegments segments;
  if (kind == 0) {
    file = input.Rest();
    segments = tools::ReadJpegSegments(kName, file);
    Require(tools::JpegSize(file).value_or(0) <= file.size(), "size of a JPEG");
  } else if (kind == 1) {
    // A packet, and what it is about.
    file = input.Rest();
    const auto end = std::find(file.begin(), file.end(), 0);
    segments.xmp.assign(file.begin(), end);
    file.erase(file.begin(), end == file.end() ? end : end + 1);
  } else {
    segments = ExtendedXmp(input);
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
