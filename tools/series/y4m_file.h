// Writes YUV4MPEG2, uncompressed video that common players open.
#ifndef ZUQEL_TOOLS_SERIES_Y4M_FILE_H_
#define ZUQEL_TOOLS_SERIES_Y4M_FILE_H_

#include "files/pending_file.h"
#include "photo/nv21.h"

namespace zuqel::tools {

// A header line, then the planes Y, U and V of each frame. Members throw
// WorkError unless all of it could be written.
class Y4mFile {
 public:
  // Leaves it to the caller to close the file.
  Y4mFile(PendingFile& file, Size size, int frames_per_second);

  // `frame` has the video's size.
  void Add(const Nv21Frame& frame);

 private:
  PendingFile& file_;
};

}  // namespace zuqel::tools

#endif  // ZUQEL_TOOLS_SERIES_Y4M_FILE_H_
