// The readers of pictures, maps and videos.
#include <png.h>
#include <sys/mman.h>
#include <unistd.h>
#include <zlib.h>

#include <array>
#include <string>

#include "decode/decode.h"
#include "input.h"
#include "photo/depth_scale.h"
#include "photo/image_file.h"
#include "require.h"
#include "series/y4m_reader.h"
#include "tool_error.h"

namespace zuqel::fuzz {
namespace {

using Bytes = std::vector<uint8_t>;

// A file of the process, without a name in any folder.
class MemoryFile {
 public:
  MemoryFile() : file_(memfd_create("picture", MFD_CLOEXEC)) {}

  void Write(const Bytes& bytes) const {
    const auto size = static_cast<ssize_t>(bytes.size());
    Require(ftruncate(file_, 0) == 0 &&
                pwrite(file_, bytes.data(), bytes.size(), 0) == size,
            "room for the file");
  }
  [[nodiscard]] std::string path() const {
    return "/proc/self/fd/" + std::to_string(file_);
  }

 private:
  int file_;
};

// Gives each chunk of a PNG the check sum that it has to have, so that what is
// damaged inside of it is read.
void RepairCheckSums(Bytes& png) {
  size_t at = 8;
  while (at + 12 <= png.size()) {
    const size_t length = png_get_uint_32(&png[at]);
    if (length > png.size() - at - 12) return;
    const auto checked = static_cast<uInt>(length + 4);
    const auto sum = crc32(0, &png[at + 4], checked);
    png_save_uint_32(&png[at + 8 + length], static_cast<png_uint_32>(sum));
    at += length + 12;
  }
}

// Large pictures would only be slow.
bool IsSmallSize(tools::Size size) {
  constexpr int64_t kPixels = 1 << 16;
  return int64_t{size.width} * size.height <= kPixels;
}

bool IsSmall(const Bytes& bytes) {
  std::array<char, kDecodeReasonSize> reason = {};
  PngHeader png = {};
  int width = 0, height = 0;
  if (ReadPngHeader(bytes.data(), bytes.size(), &png, reason.data()) ==
      kDecodeDone) {
    width = png.width;
    height = png.height;
  } else if (ReadJpegSize(bytes.data(), bytes.size(), &width, &height,
                          reason.data()) != kDecodeDone) {
    return true;
  }
  const bool is_refused =
      width > tools::kLargestSide || height > tools::kLargestSide;
  return is_refused || IsSmallSize({width, height});
}

template <typename Map>
void RequireSize(const Map& map) {
  Require(map.width > 0 && map.height > 0 &&
              map.values.size() == tools::PixelCount(map.width, map.height),
          "size of a map");
}

void ReadVideo(const std::string& path) {
  tools::Y4mReader video(path);
  const auto [width, height] = video.format().size;
  if (!IsSmallSize({width, height})) return;
  while (const auto frame = video.Next()) {
    Require(frame->luma.size() == tools::PixelCount(width, height) &&
                frame->chroma.size() == tools::PixelCount(width, height / 2),
            "size of a frame");
  }
}

void ReadAs(int kind, const std::string& path) {
  if (kind == 0) {
    const tools::Picture picture = tools::ReadFramePicture(path);
    Require(picture.rgb.size() ==
                3 * tools::PixelCount(picture.width, picture.height),
            "size of a picture");
  } else if (kind == 1) {
    const tools::DisparityMap map = tools::ReadDisparity(path);
    RequireSize(map);
    for (const uint16_t value : map.values) {
      Require(value <= tools::kUnknownDisparity, "largest disparity");
    }
  } else if (kind == 2) {
    RequireSize(tools::ReadWeights(path));
  } else if (kind == 4) {
    ReadVideo(path);
  }
}

struct MapOptions {
  tools::MapReading reading;
  tools::DisparityScale scale;
};

MapOptions AnyOptions(Input& input) {
  MapOptions options;
  if (input.Flag()) options.reading.meaning = tools::DepthMeaning::kLength;
  if (input.Flag()) options.reading.unknown = input.Between<int16_t>(-1, 1023);
  options.reading.is_turned_round = input.Flag();
  if (input.Flag()) options.reading.lengths = {0.5F, 40};
  options.scale.kind = input.OneOf(std::array{tools::DisparityScale::kByMap,
                                              tools::DisparityScale::kSpan,
                                              tools::DisparityScale::kFactor});
  return options;
}

void ReadMap(const MapOptions& options, const Bytes& bytes) {
  const tools::DepthMap depth =
      tools::ToDepth(tools::DecodeMapFile("map", bytes), options.reading);
  RequireSize(depth);
  for (const float value : depth.values) {
    Require(
        !std::isinf(value) &&
            (depth.meaning == tools::DepthMeaning::kDisparity || !(value <= 0)),
        "a value");
  }
  const tools::DisparityMap map =
      tools::ToDisparity("map", depth, options.scale).map;
  RequireSize(map);
  for (const uint16_t value : map.values) {
    Require(value <= tools::kUnknownDisparity, "largest disparity");
  }
}

}  // namespace

void Run(Input& input) {
  static const MemoryFile file;
  const int kind = input.Between(0, 4);
  const bool is_repaired = input.Flag(), is_map = kind == 3;
  const MapOptions options = is_map ? AnyOptions(input) : MapOptions();
  Bytes bytes = input.Rest();
  if (is_repaired) RepairCheckSums(bytes);
  if (!IsSmall(bytes)) return;
  try {
    if (is_map) return ReadMap(options, bytes);
    file.Write(bytes);
    ReadAs(kind, file.path());
  } catch (const tools::InputError&) {
    return;  // which is what bad files are for
  }
}

}  // namespace zuqel::fuzz
