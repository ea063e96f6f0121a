// One frame on the GPU: intake, upload, passes, read-back.
#ifndef ZUQEL_FRAME_BOKEH_FRAME_H_
#define ZUQEL_FRAME_BOKEH_FRAME_H_

#include "frame/frame_history.h"
#include "frame/frame_session.h"
#include "frame/frame_setup.h"

namespace zuqel {

// Renders a frame into the planes of `call`, neither of which is null, and logs
// each step. Without a session, or outside its context, the planes and the
// depth map stay as they are.
void RenderBokehFrame(const FrameSetup& setup, const FrameCall& call,
                      FrameSession* session, FrameHistory& history);

}  // namespace zuqel

#endif  // ZUQEL_FRAME_BOKEH_FRAME_H_
