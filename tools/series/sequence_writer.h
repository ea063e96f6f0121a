// Writes a series of frames as numbered pictures or as one video.
#ifndef ZUQEL_TOOLS_SERIES_SEQUENCE_WRITER_H_
#define ZUQEL_TOOLS_SERIES_SEQUENCE_WRITER_H_

#include <optional>
#include <string>

#include "photo/nv21.h"
#include "photo/output_files.h"
#include "series/file_series.h"
#include "series/y4m_file.h"

namespace zuqel::tools {

struct SequenceTarget {
  std::string path;  // a video if it ends with .y4m, else a file series
  int first = 0;     // number of the first picture
  int count = 0;     // of frames
  std::optional<int> frames_per_second;  // of a video
};

// Holds no frame in memory. The files appear in Commit, or not at all.
class SequenceWriter {
 public:
  // Throws as OutputFiles::Announce.
  explicit SequenceWriter(const SequenceTarget& target);

  // The next frame; all have the same size.
  void Add(const Nv21Frame& frame);

  // After the last frame. Prints a line for each file.
  void Commit();

 private:
  void AddToVideo(const Nv21Frame& frame);

  SequenceTarget target_;
  OutputFiles outputs_;
  std::optional<FileSeries> pictures_;  // else a video
  std::optional<Y4mFile> video_;        // from the first frame on
  int added_ = 0;
};

}  // namespace zuqel::tools

#endif  // ZUQEL_TOOLS_SERIES_SEQUENCE_WRITER_H_
