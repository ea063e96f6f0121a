// The library's one session, from initialisation to close.
#ifndef ZUQEL_TOOLS_RENDERING_BOKEH_SESSION_H_
#define ZUQEL_TOOLS_RENDERING_BOKEH_SESSION_H_

#include <cstdint>

#include "image.h"
#include "photo/nv21.h"

namespace zuqel::tools {

// Renders a frame from a disparity map. The CPU's strength of blur is fixed.
enum class Renderer { kGpu, kCpu };

// What a session is made for.
struct SessionSetup {
  bool operator==(const SessionSetup&) const = default;

  Size picture, depth;
  Size work = {320, 240};
  Renderer renderer = Renderer::kGpu;
  bool focus_dot = false;
};

struct Focus {
  FocusPoint point;
  float f_number = 1.0F;
};

// Throws WorkError, naming the library's `call`, unless `status` is success.
void CheckStatus(uint32_t status, const char* call);

// Renders off screen, on the calling thread. Members throw WorkError if a call
// to the library fails or OpenGL ES is not available; Renderer::kCpu works
// without it.
class BokehSession {
 public:
  explicit BokehSession(const SessionSetup& setup);
  ~BokehSession();
  BokehSession(const BokehSession&) = delete;
  BokehSession& operator=(const BokehSession&) = delete;

  // Renders into `frame` and fills holes of `map` in place. Sizes must match
  // the setup, and the work size must be 320 x 240. Returns true if the focus
  // is sharp: Renderer::kCpu blurs the background even when it is in focus.
  bool Render(Nv21Frame& frame, DisparityMap& map, const Focus& focus) const;

  // The same, on the GPU, from weights of the work size.
  void Render(Nv21Frame& frame, const WeightMap& map, const Focus& focus) const;

 private:
  SessionSetup setup_;
};

}  // namespace zuqel::tools

#endif  // ZUQEL_TOOLS_RENDERING_BOKEH_SESSION_H_
