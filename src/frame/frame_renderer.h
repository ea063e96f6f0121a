// The order of passes of one uploaded frame on the GPU.
#ifndef ZUQEL_FRAME_FRAME_RENDERER_H_
#define ZUQEL_FRAME_FRAME_RENDERER_H_

#include "frame/frame_history.h"
#include "frame/frame_setup.h"
#include "frame/passes.h"
#include "gl/frame_dump.h"

namespace zuqel {

FrameSizes SizesOf(const FrameSetup& setup);

// What names the dumps of a frame.
DumpName DumpNameOf(const FrameCall& call, const FrameHistory& history);

// Converts, blurs, weighs and composites. Leaves the framebuffer with the
// result bound: target 13 off screen, else the default one. With a null `frame`
// there is nothing to draw with; only the log lines of the steps remain.
void RenderPasses(FrameDrawing* frame, const FrameSetup& setup,
                  const FrameCall& call, const FrameHistory& history);

}  // namespace zuqel

#endif  // ZUQEL_FRAME_FRAME_RENDERER_H_
