// Writes video as YUV4MPEG2.
#include "series/y4m_writer.h"

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

std::string ToText(Ratio ratio) {
  return std::to_string(ratio.number) + ":" + std::to_string(ratio.of);
}

}  // namespace

Y4mWriter::Y4mWriter(PendingFile& file, const Y4mFormat& format) : file_(file) {
  std::string header = "YUV4MPEG2 W" + std::to_string(format.size.width) +
                       " H" + std::to_string(format.size.height) + " F" +
                       ToText(format.rate) + " Ip A" + ToText(format.aspect) +
                       " C" + format.chroma;
  if (!format.range.empty()) header += " XCOLORRANGE=" + format.range;
  file_.Write(header + "\n");
}

void Y4mWriter::Add(const Nv21Frame& frame) {
  file_.Write("FRAME\n");
  file_.Write(frame.luma);
  file_.Write(EverySecond(frame.chroma, 1));
  file_.Write(EverySecond(frame.chroma, 0));
  file_.Flush();
}

}  // namespace zuqel::tools
