// Writes video as YUV4MPEG2.
#ifndef ZUQEL_TOOLS_SERIES_Y4M_WRITER_H_
#define ZUQEL_TOOLS_SERIES_Y4M_WRITER_H_

#include "files/pending_file.h"
#include "photo/nv21.h"
#include "series/y4m_format.h"

namespace zuqel::tools {

// A header line, then the planes Y, U and V of each frame, which is passed on
// at once. Members throw as PendingFile unless all of it could be written.
class Y4mWriter {
 public:
  // Leaves it to the caller to close the file.
  Y4mWriter(PendingFile& file, const Y4mFormat& format);

  // `frame` has the video's size.
  void Add(const Nv21Frame& frame);

 private:
  PendingFile& file_;
};

}  // namespace zuqel::tools

#endif  // ZUQEL_TOOLS_SERIES_Y4M_WRITER_H_
