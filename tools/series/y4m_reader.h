// Reads video from YUV4MPEG2.
#ifndef ZUQEL_TOOLS_SERIES_Y4M_READER_H_
#define ZUQEL_TOOLS_SERIES_Y4M_READER_H_

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "files/input_file.h"
#include "photo/nv21.h"
#include "series/y4m_format.h"

namespace zuqel::tools {

// Holds no frame in memory, and reads no further than is asked for. Members
// throw InputError, which names the file and its fault.
class Y4mReader {
 public:
  // Reads the header. Sides are even, and at most kLargestSide.
  explicit Y4mReader(const std::string& path);

  [[nodiscard]] const Y4mFormat& format() const { return format_; }

  // Nothing after the last frame.
  [[nodiscard]] std::optional<Nv21Frame> Next();

 private:
  [[noreturn]] void Refuse(const std::string& fault) const;
  [[nodiscard]] std::optional<std::string> ReadLine(std::string_view begin);
  void TakeParameter(const std::string& parameter);
  void TakeChroma(const std::string& name);
  [[nodiscard]] int ParseSide(std::string_view text) const;
  [[nodiscard]] Ratio ParseRatio(std::string_view text) const;
  void ReadPlane(std::span<uint8_t> plane) const;

  InputFile file_;
  Y4mFormat format_;
  int frames_ = 0;                     // that were read
  std::vector<uint8_t> chroma_plane_;  // U, then V
};

}  // namespace zuqel::tools

#endif  // ZUQEL_TOOLS_SERIES_Y4M_READER_H_
