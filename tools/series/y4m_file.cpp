// Writes YUV4MPEG2, uncompressed video that common players open.
#include "series/y4m_file.h"

#include <cstddef>
#include <string>

#include "files/file_bytes.h"

namespace zuqel::tools {
namespace {

Bytes EverySecond(const Bytes& bytes, size_t first) {
  Bytes plane;
  plane.reserve(bytes.size() / 2);
  for (size_t i = first; i < bytes.size(); i += 2) plane.push_back(bytes[i]);
  return plane;
}

}  // namespace

Y4mFile::Y4mFile(PendingFile& file, Size size, int frames_per_second)
    : file_(file) {
  // Chroma is sited at the centre of its four pixels; values are full range.
  file_.Write("YUV4MPEG2 W" + std::to_string(size.width) + " H" +
              std::to_string(size.height) + " F" +
              std::to_string(frames_per_second) +
              ":1 Ip A1:1 C420jpeg XCOLORRANGE=FULL\n");
}

void Y4mFile::Add(const Nv21Frame& frame) {
  file_.Write("FRAME\n");
  file_.Write(frame.luma);
  file_.Write(EverySecond(frame.chroma, 1));
  file_.Write(EverySecond(frame.chroma, 0));
}

}  // namespace zuqel::tools
