// Renders one photo: what zuqel render does for each.
#ifndef ZUQEL_TOOLS_RENDERING_RENDER_JOB_H_
#define ZUQEL_TOOLS_RENDERING_RENDER_JOB_H_

#include <string>

#include "photo/output_files.h"
#include "photo/picture_writer.h"
#include "rendering/bokeh_session.h"
#include "rendering/depth_input.h"
#include "rendering/photo_input.h"

namespace zuqel::tools {

constexpr float kWidestLens = 1.0F;

struct RenderOptions {
  DepthOptions depth;
  std::string weights, map_from, focus, panel, compare;
  Renderer renderer = Renderer::kGpu;
  float f_number = kWidestLens;
  int repeat = 0;  // 0: once, without printing the time
  int quality = kDefaultQuality;
  bool focus_dot = false;
};

// Checks that need no file. Throws InputError.
void CheckRenderOptions(const RenderOptions& options);

// The same from a photo that has been read, for an `output` that has been
// announced; throws and prints as it does.
void RenderInput(const RenderOptions& options, PhotoInput input,
                 const std::string& output, OutputFiles& outputs);

// Writes `output` and what else the options name. Opens a session of its own,
// so none may be open. Throws InputError and WorkError.
void RenderPhoto(const RenderOptions& options, const std::string& photo,
                 const std::string& output, OutputFiles& outputs);

}  // namespace zuqel::tools

#endif  // ZUQEL_TOOLS_RENDERING_RENDER_JOB_H_
