// Renders a series of frames in one session: what zuqel sequence does.
#ifndef ZUQEL_TOOLS_SERIES_SEQUENCE_JOB_H_
#define ZUQEL_TOOLS_SERIES_SEQUENCE_JOB_H_

#include <optional>
#include <string>

#include "rendering/bokeh_session.h"
#include "rendering/render_job.h"
#include "series/file_series.h"
#include "series/sequence_source.h"

namespace zuqel::tools {

constexpr int kDemoFrames = 50;

struct SequenceOptions {
  SequenceFiles files;
  bool is_demo = false;  // instead of files
  FrameNumbers numbers;  // of files read and written
  std::string focus, focus_to, map_from, output;
  Renderer renderer = Renderer::kGpu;
  float f_number = kWidestLens;
  std::optional<int> frames_per_second;
};

// Opens a session of its own, so none may be open. Throws InputError and
// WorkError.
void RenderSequence(SequenceOptions options);

}  // namespace zuqel::tools

#endif  // ZUQEL_TOOLS_SERIES_SEQUENCE_JOB_H_
