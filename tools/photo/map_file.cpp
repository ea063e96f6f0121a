// Reads maps, one value a pixel, from the files that people keep them in.
#include "photo/map_file.h"

#include <algorithm>
#include <bit>
#include <charconv>
#include <cstddef>
#include <system_error>

#include "files/file_bytes.h"
#include "photo/image_file.h"
#include "photo/number_text.h"
#include "tool_error.h"

namespace zuqel::tools {
namespace {

using FileView = std::span<const uint8_t>;

[[noreturn]] void Refuse(const std::string& name, const std::string& what) {
  throw InputError(name + ": " + what);
}

[[noreturn]] void RefuseKind(const std::string& name) {
  Refuse(name, "is not a map in PNG, JPEG or PFM; convert it to one of them");
}

bool IsSpace(uint8_t byte) {
  return byte == ' ' || byte == '\n' || byte == '\r' || byte == '\t';
}

// Of every kind: "P", a letter or digit, white space.
bool IsPortableMap(FileView bytes) {
  return bytes.size() >= 3 && bytes[0] == 'P' && IsSpace(bytes[2]);
}

// The header of a PFM file: words, each with white space after it. One byte of
// it ends the header; what follows are values, which may look like white space.
class PfmHeader {
 public:
  PfmHeader(const std::string& name, FileView bytes)
      : name_(name), bytes_(bytes) {
    if (Word() != "Pf") Fail("its kind");
    size_ = {Side(), Side()};
    RequireReadableSize(name, size_);
    byte_order_ = ByteOrder();
  }

  [[nodiscard]] Size size() const { return size_; }
  [[nodiscard]] std::endian byte_order() const { return byte_order_; }
  [[nodiscard]] size_t length() const { return at_; }

 private:
  [[noreturn]] void Fail(const std::string& part) const {
    Refuse(name_, "is damaged: " + part + " in its header is wrong");
  }

  std::string Word() {
    constexpr size_t kLongest = 32;
    while (at_ < bytes_.size() && IsSpace(bytes_[at_])) ++at_;
    const size_t begin = at_;
    while (at_ < bytes_.size() && !IsSpace(bytes_[at_])) {
      if (++at_ - begin > kLongest) Fail("a word");
    }
    if (at_ == bytes_.size()) Refuse(name_, "is truncated");
    std::string word(bytes_.begin() + static_cast<std::ptrdiff_t>(begin),
                     bytes_.begin() + static_cast<std::ptrdiff_t>(at_));
    ++at_;
    return word;
  }

  int Side() {
    const std::string word = Word();
    int side = 0;
    const char* const end = word.data() + word.size();
    const auto parsed = std::from_chars(word.data(), end, side);
    if (parsed.ec != std::errc() || parsed.ptr != end) Fail("its size");
    return side;
  }

  // Only the sign means something: programs write 1, or what suits them.
  std::endian ByteOrder() {
    const double scale = ParseNumber(Word()).value_or(0);
    if (scale == 0) Fail("its scale");
    return scale < 0 ? std::endian::little : std::endian::big;
  }

  const std::string& name_;
  FileView bytes_;
  size_t at_ = 0;
  Size size_;
  std::endian byte_order_ = std::endian::little;
};

float FloatAt(const uint8_t* bytes, std::endian order) {
  uint32_t bits = 0;
  for (size_t i = 0; i < sizeof(bits); ++i) {
    const size_t place = order == std::endian::little ? i : 3 - i;
    bits |= uint32_t{bytes[i]} << (8 * place);
  }
  return std::bit_cast<float>(bits);
}

MapFile DecodePfm(const std::string& name, FileView bytes) {
  const PfmHeader header(name, bytes);
  const auto [width, height] = header.size();
  const FileView values = bytes.subspan(header.length());
  const size_t row_bytes = PixelCount(width, 1) * sizeof(float);
  const size_t needed = row_bytes * static_cast<size_t>(height);
  if (values.size() < needed) Refuse(name, "is truncated");
  if (values.size() > needed) {
    Refuse(name, "is damaged: it is longer than its header says");
  }
  MapFile map(width, height);
  map.depth = MapDepth::kFloat;
  for (int y = 0; y < height; ++y) {
    const uint8_t* from =
        &values[row_bytes * static_cast<size_t>(height - 1 - y)];
    for (int x = 0; x < width; ++x, from += sizeof(float)) {
      map.At(x, y) = FloatAt(from, header.byte_order());
    }
  }
  return map;
}

MapFile DecodePortableMap(const std::string& name, FileView bytes) {
  if (bytes[1] == 'F') {
    Refuse(name, "is PFM of three channels; one (Pf) is needed");
  }
  if (bytes[1] != 'f') RefuseKind(name);
  return DecodePfm(name, bytes);
}

// A map in false colours looks like any other picture: its depth cannot be
// told. Of a grey one, the channels are a few levels apart at most.
void RequireGrey(const std::string& name, const Picture& picture) {
  constexpr int64_t kMostApart = 4;  // on average
  int64_t apart = 0;
  for (size_t i = 0; i < picture.rgb.size(); i += 3) {
    const auto [low, high] =
        std::minmax({picture.rgb[i], picture.rgb[i + 1], picture.rgb[i + 2]});
    apart += high - low;
  }
  if (apart * 3 > kMostApart * static_cast<int64_t>(picture.rgb.size())) {
    Refuse(name, "is in colour; a map has to be grey");
  }
}

MapFile DecodeGreyMap(const std::string& name, FileView bytes) {
  RequireGrey(name, DecodePicture(name, bytes));
  const GreyPicture grey = DecodeGreyPicture(name, bytes);
  MapFile map(grey.map.width, grey.map.height);
  map.depth = grey.white == 255 ? MapDepth::k8Bits : MapDepth::k16Bits;
  std::copy(grey.map.values.begin(), grey.map.values.end(), map.values.begin());
  return map;
}

}  // namespace

MapFile ReadMapFile(const std::string& path) {
  return DecodeMapFile(path, ReadFile(path));
}

MapFile DecodeMapFile(const std::string& name, FileView bytes) {
  if (IsPortableMap(bytes)) return DecodePortableMap(name, bytes);
  if (!IsPngOrJpeg(bytes)) RefuseKind(name);
  return DecodeGreyMap(name, bytes);
}

}  // namespace zuqel::tools
