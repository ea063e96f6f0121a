// Reads video from YUV4MPEG2.
#include "series/y4m_reader.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>
#include <sstream>
#include <string_view>
#include <system_error>

#include "photo/image_file.h"
#include "tool_error.h"

namespace zuqel::tools {
namespace {

constexpr std::string_view kVideoMagic = "YUV4MPEG2", kFrameMagic = "FRAME";

// Where chroma is sited; the bytes lie alike.
constexpr std::array<std::string_view, 4> kChromas = {"420", "420jpeg",
                                                      "420mpeg2", "420paldv"};

// Nothing unless the text is a number of at least 0, and nothing else.
std::optional<int> ParseCount(std::string_view text) {
  int count = 0;
  const char* const end = text.data() + text.size();
  const auto parsed = std::from_chars(text.data(), end, count);
  if (parsed.ec != std::errc() || parsed.ptr != end || count < 0) return {};
  return count;
}

// A header may hold anything, a terminal may act on it.
bool IsPlain(char c) {
  return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') ||
         (c >= 'a' && c <= 'z');
}

}  // namespace

Y4mReader::Y4mReader(const std::string& path) : file_(path) {
  std::istringstream words(ReadLine(kVideoMagic).value_or(""));
  std::string word;
  words >> word;
  if (word != kVideoMagic) Refuse("is not a y4m video");
  // Without a word about it, the range is limited.
  format_.range.clear();
  while (words >> word) TakeParameter(word);
  if (format_.size == Size{}) Refuse("is damaged: its header has no size");
  RequireFrameSize(path, format_.size);
  chroma_plane_.resize(PixelCount(format_.size.width, format_.size.height) / 2);
}

std::optional<Nv21Frame> Y4mReader::Next() {
  const std::optional<std::string> line = ReadLine(kFrameMagic);
  if (!line) return std::nullopt;
  if (line->substr(0, line->find(' ')) != kFrameMagic) {
    Refuse("is damaged after " + std::to_string(frames_) + " frames");
  }
  const auto [width, height] = format_.size;
  Nv21Frame frame = {width, height, {}, {}};
  frame.luma.resize(PixelCount(width, height));
  frame.chroma.resize(chroma_plane_.size());
  ReadPlane(frame.luma);
  ReadPlane(chroma_plane_);
  const size_t pairs = chroma_plane_.size() / 2;
  for (size_t i = 0; i < pairs; ++i) {
    frame.chroma[2 * i] = chroma_plane_[pairs + i];
    frame.chroma[2 * i + 1] = chroma_plane_[i];
  }
  ++frames_;
  return frame;
}

void Y4mReader::Refuse(const std::string& fault) const {
  throw InputError(file_.path() + ": " + fault);
}

// Without its end; nothing at the end of the file. One byte at a time: what
// follows is not to be read yet. Ends early where it does not begin as it has
// to.
std::optional<std::string> Y4mReader::ReadLine(std::string_view begin) {
  constexpr size_t kLongest = 1024;
  std::string line;
  for (uint8_t byte = 0; file_.Read({&byte, 1}) == 1 && byte != '\n';) {
    line += static_cast<char>(byte);
    if (!line.starts_with(begin.substr(0, line.size()))) return line;
    if (line.size() > kLongest) Refuse("is damaged: a line of it is too long");
  }
  if (line.empty()) return std::nullopt;
  return line;
}

void Y4mReader::TakeParameter(const std::string& parameter) {
  constexpr std::string_view kRange = "XCOLORRANGE=";
  const std::string value = parameter.substr(1);
  if (parameter[0] == 'W') format_.size.width = ParseSide(value);
  if (parameter[0] == 'H') format_.size.height = ParseSide(value);
  if (parameter[0] == 'C') TakeChroma(value);
  if (parameter[0] == 'A') format_.aspect = ParseRatio(value);
  if (parameter[0] == 'F') {
    const Ratio rate = ParseRatio(value);
    if (rate.number > 0) format_.rate = rate;  // 0:0 is unknown
  }
  if (parameter[0] == 'I' && value != "p" && value != "?") {
    Refuse("is interlaced; progressive frames are needed");
  }
  if (parameter == std::string(kRange) + "FULL" ||
      parameter == std::string(kRange) + "LIMITED") {
    format_.range = parameter.substr(kRange.size());
  }
}

void Y4mReader::TakeChroma(const std::string& name) {
  if (std::find(kChromas.begin(), kChromas.end(), name) == kChromas.end()) {
    const bool is_plain =
        name.size() < 16 && std::all_of(name.begin(), name.end(), IsPlain);
    Refuse("is " + (is_plain ? "C" + name : "of another kind") +
           "; 8-bit 4:2:0 (C420) is needed");
  }
  format_.chroma = name;
}

int Y4mReader::ParseSide(std::string_view text) const {
  const std::optional<int> side = ParseCount(text);
  if (!side) Refuse("is damaged: its size is not a number");
  return *side;
}

Ratio Y4mReader::ParseRatio(std::string_view text) const {
  const size_t colon = std::min(text.find(':'), text.size());
  const auto number = ParseCount(text.substr(0, colon)),
             of = ParseCount(text.substr(std::min(colon + 1, text.size())));
  if (!number || !of || (*number > 0) != (*of > 0)) {
    Refuse("is damaged: a ratio in its header is none");
  }
  return {*number, *of};
}

void Y4mReader::ReadPlane(std::span<uint8_t> plane) const {
  if (file_.Read(plane) == plane.size()) return;
  Refuse("is truncated: frame " + std::to_string(frames_ + 1) +
         " is not whole");
}

}  // namespace zuqel::tools
