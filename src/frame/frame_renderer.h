// Renders one uploaded frame on the GPU.
#ifndef ZUQEL_FRAME_RENDERER_H_
#define ZUQEL_FRAME_RENDERER_H_

#include <cstdint>

#include "frame/passes.h"
#include "gl/frame_dump.h"
#include "render/debug_pictures.h"

namespace zuqel {

// What the weights are computed from: the statistics of a disparity map.
struct DepthStatistics {
  uint16_t min = 0;
  uint16_t max = 0;
  uint16_t focus = 0;
};

struct FrameJob {
  ImageSize image;
  ImageSize output;
  ImageSize work;
  int32_t source_format = 0;
  bool off_screen = false;
  bool portrait = false;
  bool bypass = false;
  uint32_t focus_x = 0;  // in image pixels
  uint32_t focus_y = 0;
  float f_number = 1;
  float focal_length = 0;
  // Null: the refocus texture holds weights. Else it holds packed disparity,
  // and the weights come from it and these.
  const DepthStatistics* depth = nullptr;
  const DebugPictures* debug_pictures = nullptr;
  DumpName dump_name;
};

// Makes the textures and targets for one preview size, the output target in a
// graphic buffer where one is given. Needs PlainGlState.
void CreateImages(RenderState& state, ImageSize preview,
                  GraphicBuffer* graphic_buffer);

// Deletes images and programs; their context is current.
void DeleteRenderState(RenderState& state);

// Lets go of them: their context is gone or not current.
void ForgetRenderState(RenderState& state);

// Converts, blurs, weighs and composites. Leaves the framebuffer with the
// result bound: target 13 off screen, else the default one. With a null `state`
// there is nothing to draw with; only the log lines of the steps remain.
void RenderFrame(const RenderState* state, const FrameJob& job);

}  // namespace zuqel

#endif  // ZUQEL_FRAME_RENDERER_H_
