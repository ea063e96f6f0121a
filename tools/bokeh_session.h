// The library's one session, from initialisation to close.
#ifndef ZUQEL_TOOLS_BOKEH_SESSION_H_
#define ZUQEL_TOOLS_BOKEH_SESSION_H_

#include <cstdint>

#include "image.h"
#include "nv21.h"

namespace zuqel::tools {

// What renders a frame from a disparity map. The CPU has one strength of blur.
enum class Renderer { kGpu, kCpu };

// What a session is made for.
struct SessionSetup {
  Size picture, depth;
  Size work = {320, 240};
  Renderer renderer = Renderer::kGpu;
  bool focus_dot = false;
};

struct Focus {
  FocusPoint point;
  float f_number = 1.0F;
};

// WorkError, which names the library's `call`, when it did not succeed.
void CheckStatus(uint32_t status, const char* call);

// Off screen, on the calling thread. The members throw WorkError when the
// library refuses or there is no OpenGL ES to render with; Renderer::kCpu needs
// none.
class BokehSession {
 public:
  explicit BokehSession(const SessionSetup& setup);
  ~BokehSession();
  BokehSession(const BokehSession&) = delete;
  BokehSession& operator=(const BokehSession&) = delete;

  // Renders into `frame`; the sizes have to be those of the setup. Holes of
  // `map` are filled in place. The work size is 320 x 240. Returns whether the
  // focus is sharp: Renderer::kCpu blurs the background even when that is
  // in focus.
  bool Render(Nv21Frame& frame, DisparityMap& map, const Focus& focus) const;

  // The same on the GPU from weights of the work size.
  void Render(Nv21Frame& frame, const WeightMap& map, const Focus& focus) const;

 private:
  SessionSetup setup_;
};

}  // namespace zuqel::tools

#endif  // ZUQEL_TOOLS_BOKEH_SESSION_H_
