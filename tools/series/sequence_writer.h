// Writes a series of frames as numbered pictures or as one video.
#ifndef ZUQEL_TOOLS_SERIES_SEQUENCE_WRITER_H_
#define ZUQEL_TOOLS_SERIES_SEQUENCE_WRITER_H_

#include <optional>
#include <string>

#include "photo/nv21.h"
#include "photo/output_files.h"
#include "series/file_series.h"
#include "series/y4m_writer.h"

namespace zuqel::tools {

struct SequenceTarget {
  std::string path;  // a video if it ends with .y4m or is "-", else a series
  FrameNumbers numbers;                  // of the pictures
  std::optional<int> frames_per_second;  // of a video; else those of its format
};

// Holds no frame in memory. The files appear in Commit, or not at all.
class SequenceWriter {
 public:
  // Throws as OutputFiles::Announce.
  explicit SequenceWriter(const SequenceTarget& target);

  // The next frame; all have the same format.
  void Add(const Nv21Frame& frame, const Y4mFormat& format);

  // After the last frame. Prints a line for each file.
  void Commit();

 private:
  void AddPicture(Nv21Frame frame, const Y4mFormat& format);
  void BeginVideo(Y4mFormat format, Size size);

  SequenceTarget target_;
  OutputFiles outputs_;
  std::optional<FileSeries> pictures_;  // else a video
  // From the first frame on.
  OutputFiles::Written* video_file_ = nullptr;
  std::optional<Y4mWriter> video_;
  int added_ = 0;
};

}  // namespace zuqel::tools

#endif  // ZUQEL_TOOLS_SERIES_SEQUENCE_WRITER_H_
