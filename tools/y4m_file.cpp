// Writes YUV4MPEG2, uncompressed video that common players open.
#include "y4m_file.h"

#include <cerrno>
#include <cstddef>
#include <cstring>

#include "file_bytes.h"
#include "tool_error.h"

namespace zuqel::tools {
namespace {

void Put(const Bytes& bytes, std::ofstream& file) {
  file.write(reinterpret_cast<const char*>(bytes.data()),
             static_cast<std::streamsize>(bytes.size()));
}

Bytes EverySecond(const Bytes& bytes, size_t first) {
  Bytes plane;
  plane.reserve(bytes.size() / 2);
  for (size_t i = first; i < bytes.size(); i += 2) plane.push_back(bytes[i]);
  return plane;
}

}  // namespace

Y4mFile::Y4mFile(const std::filesystem::path& path, Size size,
                 int frames_per_second)
    : path_(path), file_(path, std::ios::binary) {
  // Chroma is sited at the centre of its four pixels; values are full range.
  file_ << "YUV4MPEG2 W" << size.width << " H" << size.height << " F"
        << frames_per_second << ":1 Ip A1:1 C420jpeg XCOLORRANGE=FULL\n";
  Check();
}

void Y4mFile::Add(const Nv21Frame& frame) {
  file_ << "FRAME\n";
  Put(frame.luma, file_);
  Put(EverySecond(frame.chroma, 1), file_);
  Put(EverySecond(frame.chroma, 0), file_);
  Check();
}

void Y4mFile::Close() {
  file_.close();
  Check();
}

void Y4mFile::Check() const {
  if (file_) return;
  throw WorkError(path_.string() +
                  ": cannot be written: " + std::strerror(errno));
}

}  // namespace zuqel::tools
