// Where the frames of a sequence come from.
#ifndef ZUQEL_TOOLS_SERIES_SEQUENCE_SOURCE_H_
#define ZUQEL_TOOLS_SERIES_SEQUENCE_SOURCE_H_

#include <functional>
#include <optional>
#include <string>

#include "photo/nv21.h"
#include "rendering/frame_job.h"
#include "series/file_series.h"
#include "series/y4m_format.h"

namespace zuqel::tools {

struct SequenceFiles {
  std::string images;                // a pattern, or a video
  std::string disparities, weights;  // one is given: a pattern, or one map
};

// A name with a % is a pattern.
bool IsPattern(const std::string& name);

struct SourceFrame {
  Nv21Frame frame;
  FrameMap map;
  FocusPoint focus;  // unless one is given
};

struct SequenceSource {
  Y4mFormat format;  // of a video; of pictures, what they become
  // Returns nothing after the last frame of a video. Frames of pictures have
  // one size, and so do their maps. Throws InputError.
  std::function<std::optional<SourceFrame>()> next;
};

// Throws InputError.
SequenceSource OpenFiles(const SequenceFiles& files,
                         const FrameNumbers& numbers);

// The built-in scene, which an orange crosses in `count` frames.
SequenceSource OpenDemo(int count);

}  // namespace zuqel::tools

#endif  // ZUQEL_TOOLS_SERIES_SEQUENCE_SOURCE_H_
