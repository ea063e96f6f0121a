// Draws what the window shows.
#ifndef ZUQEL_TOOLS_VIEW_PAINTER_H_
#define ZUQEL_TOOLS_VIEW_PAINTER_H_

#include <SDL.h>

#include <memory>
#include <string>

#include "view/frame_maker.h"
#include "view/sdl_handles.h"
#include "view/view_state.h"

namespace zuqel::tools {

// Images on their way to the screen, each uploaded once.
class Texture {
 public:
  // Null images leave nothing to draw. Throw WorkError.
  void Take(SDL_Renderer* renderer,
            const std::shared_ptr<const Nv21Frame>& frame, SDL_ScaleMode mode);
  void Take(SDL_Renderer* renderer,
            const std::shared_ptr<const Picture>& picture, SDL_ScaleMode mode);

  [[nodiscard]] SDL_Texture* get() const { return texture_.get(); }

 private:
  // What a texture is made for.
  struct Kind {
    bool operator==(const Kind&) const = default;
    Uint32 format = 0;
    Size size;
    SDL_ScaleMode mode = SDL_ScaleModeLinear;
  };

  // False if the image is there already.
  bool Provide(SDL_Renderer* renderer, std::shared_ptr<const void> image,
               const Kind& kind);

  SdlOwner<SDL_Texture> texture_;
  std::shared_ptr<const void> image_;
  Kind kind_;
};

// In pixels of the screen.
struct Areas {
  Size picture;  // from the top left
  int line = 0;  // height of the line below it
  int dot = 0;   // of the font
};

class Painter {
 public:
  // Throws WorkError.
  explicit Painter(SDL_Window* window);

  [[nodiscard]] Areas Divide() const;

  // `shown` may be null. Throws WorkError.
  void Draw(const ViewState& state, const ShownFrame* shown,
            const std::string& report);

 private:
  void DrawPicture(const ViewState& state, const ShownFrame& shown);
  void DrawFocus(const ViewState& state, int dot) const;
  void DrawLine(const std::string& line, const Areas& areas) const;
  void DrawNotice(const std::string& notice, const Areas& areas) const;
  void DrawHelp(const ViewState& state, const Areas& areas) const;
  void DrawText(const std::string& text, FocusPoint at, int dot) const;
  void Fill(const ScreenRect& rect, int tone, int opacity = 255) const;

  SDL_Window* window_;
  SdlOwner<SDL_Renderer> renderer_;
  Texture source_, result_, overlay_;
};

}  // namespace zuqel::tools

#endif  // ZUQEL_TOOLS_VIEW_PAINTER_H_
