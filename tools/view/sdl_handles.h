// Owners of what SDL gives.
#ifndef ZUQEL_TOOLS_VIEW_SDL_HANDLES_H_
#define ZUQEL_TOOLS_VIEW_SDL_HANDLES_H_

#include <SDL.h>

#include <memory>
#include <string>

#include "tool_error.h"

namespace zuqel::tools {

struct SdlDeleter {
  void operator()(SDL_Window* window) const { SDL_DestroyWindow(window); }
  void operator()(SDL_Renderer* it) const { SDL_DestroyRenderer(it); }
  void operator()(SDL_Texture* texture) const { SDL_DestroyTexture(texture); }
};

template <typename Handle>
using SdlOwner = std::unique_ptr<Handle, SdlDeleter>;

// WorkError, with SDL's reason, if the handle is null.
template <typename Handle>
SdlOwner<Handle> RequireSdl(Handle* handle, const char* what) {
  if (handle != nullptr) return SdlOwner<Handle>(handle);
  throw WorkError(std::string("no ") + what + ": " + SDL_GetError());
}

}  // namespace zuqel::tools

#endif  // ZUQEL_TOOLS_VIEW_SDL_HANDLES_H_
