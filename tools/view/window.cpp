// The window of zuqel view: SDL's events, and what follows from them.
#include "view/window.h"

#include <SDL.h>
#include <egl_display.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "tool_error.h"
#include "view/painter.h"
#include "view/render_thread.h"
#include "view/sdl_handles.h"

namespace zuqel::tools {
namespace {

constexpr const char* kNoDisplay =
    "no display to open a window on; zuqel render needs none";

std::string Setting(const char* variable) {
  const char* const value = std::getenv(variable);
  return value == nullptr ? "" : value;
}

// Those of SDL that the environment names a display for, or that it names.
std::string DriversWithDisplay() {
  std::string drivers = Setting("SDL_VIDEODRIVER");
  if (!drivers.empty()) return drivers;
  const bool has_wayland =
      !Setting("WAYLAND_DISPLAY").empty() || !Setting("WAYLAND_SOCKET").empty();
  if (Setting("DISPLAY").empty()) return has_wayland ? "wayland" : "";
  return has_wayland ? "x11,wayland" : "x11";
}

// As large as the photo, but with room around it on the display.
Size FirstSize(Size photo) {
  SDL_Rect usable = {0, 0, 1280, 960};
  SDL_GetDisplayUsableBounds(0, &usable);
  const double scale = std::min(
      {1.0, 0.85 * usable.w / photo.width, 0.85 * usable.h / photo.height});
  constexpr int kLine = 24;
  return {std::max(static_cast<int>(photo.width * scale), 480),
          std::max(static_cast<int>(photo.height * scale), 200) + kLine};
}

SdlOwner<SDL_Window> OpenWindow(const std::string& title, Size photo) {
  const Size size = FirstSize(photo);
  return RequireSdl(
      SDL_CreateWindow(title.c_str(), SDL_WINDOWPOS_CENTERED,
                       SDL_WINDOWPOS_CENTERED, size.width, size.height,
                       SDL_WINDOW_RESIZABLE | SDL_WINDOW_ALLOW_HIGHDPI),
      "window");
}

// As KeyDown takes it. Digits are where they are on the keyboard, also where
// they need the shift key.
int KeyOf(const SDL_Keysym& key) {
  if (key.scancode >= SDL_SCANCODE_1 && key.scancode <= SDL_SCANCODE_9) {
    return '1' + (key.scancode - SDL_SCANCODE_1);
  }
  if (key.scancode >= SDL_SCANCODE_KP_1 && key.scancode <= SDL_SCANCODE_KP_9) {
    return '1' + (key.scancode - SDL_SCANCODE_KP_1);
  }
  return key.sym;
}

class Viewer {
 public:
  Viewer(ViewSource source, const DepthOptions& options, ViewState state,
         std::string photo)
      : photo_(std::move(photo)),
        state_(std::move(state)),
        window_(OpenWindow(
            std::filesystem::path(photo_).filename().string() + " - zuqel view",
            state_.photo)),
        painter_(window_.get()),
        thread_(std::move(source), options, [news = news_] {
          SDL_Event event = {};
          event.type = news;
          SDL_PushEvent(&event);
        }) {}

  void Run() {
    while (!state_.is_ended) {
      state_ = Resize(std::move(state_), painter_.Divide().picture);
      HandDown();
      painter_.Draw(state_, shown_.get(), report_);
      SDL_Event event = {};
      if (SDL_WaitEvent(&event) == 0) break;
      // All that waits, so that only the last place of a drag counts.
      do {
        Take(event);
      } while (SDL_PollEvent(&event) != 0);
    }
    // What is being made or saved may take a while.
    SDL_HideWindow(window_.get());
  }

 private:
  // Whatever changed that is not the window's to do.
  void HandDown() {
    const FrameRequest request = RequestFor(state_);
    if (!asked_ || *asked_ != request) {
      asked_ = request;
      thread_.Ask(request);
    }
    if (is_full_screen_ != state_.is_full_screen) {
      is_full_screen_ = state_.is_full_screen;
      SDL_SetWindowFullscreen(
          window_.get(), is_full_screen_ ? SDL_WINDOW_FULLSCREEN_DESKTOP : 0);
    }
  }

  void Take(const SDL_Event& event) {
    if (event.type == news_) {
      TakeNews();
      return;
    }
    switch (event.type) {
      case SDL_QUIT:
        state_.is_ended = true;
        break;
      case SDL_MOUSEBUTTONDOWN:
        if (event.button.button == SDL_BUTTON_LEFT) {
          TakePress(PixelAt(event.button.x, event.button.y));
        }
        break;
      case SDL_MOUSEMOTION:
        state_ =
            Move(std::move(state_), PixelAt(event.motion.x, event.motion.y));
        break;
      case SDL_MOUSEBUTTONUP:
        if (event.button.button == SDL_BUTTON_LEFT) {
          state_ = Release(std::move(state_),
                           PixelAt(event.button.x, event.button.y));
        }
        break;
      case SDL_MOUSEWHEEL:
        TakeWheel(event.wheel);
        break;
      case SDL_KEYDOWN:
        TakeKey(event.key);
        break;
      case SDL_KEYUP:
        state_ = KeyUp(std::move(state_), KeyOf(event.key.keysym));
        break;
      default:
        break;  // after which the window is drawn anew all the same
    }
  }

  // The line below the picture is not part of it.
  void TakePress(FocusPoint at) {
    if (at.y >= state_.screen.height) return;
    report_.clear();
    state_ = Press(std::move(state_), at);
  }

  void TakeWheel(const SDL_MouseWheelEvent& wheel) {
    report_.clear();
    const bool is_flipped = wheel.direction == SDL_MOUSEWHEEL_FLIPPED;
    state_ = TurnWheel(std::move(state_), is_flipped ? -wheel.y : wheel.y);
  }

  void TakeKey(const SDL_KeyboardEvent& key) {
    constexpr int kCommands = KMOD_CTRL | KMOD_ALT | KMOD_GUI;
    if (key.repeat != 0 || (key.keysym.mod & kCommands) != 0) return;
    report_.clear();
    const int saves = state_.saves;
    state_ = KeyDown(std::move(state_), KeyOf(key.keysym));
    if (state_.saves == saves) return;
    // At once: the next event may change what is meant.
    report_ = "saving";
    thread_.Save(RequestFor(state_), photo_);
  }

  void TakeNews() {
    if (std::string report = thread_.TakeReport(); !report.empty()) {
      report_ = std::move(report);
    }
    std::shared_ptr<const ShownFrame> frame = thread_.TakeFrame();
    if (frame == nullptr) return;
    shown_ = std::move(frame);
    if (shown_->request.moment == state_.moment) {
      state_ = NextMoment(std::move(state_));
    }
  }

  // Events count in units of the window.
  [[nodiscard]] FocusPoint PixelAt(int x, int y) const {
    int units_wide = 0, units_high = 0;
    SDL_GetWindowSize(window_.get(), &units_wide, &units_high);
    const Areas areas = painter_.Divide();
    return {x * areas.picture.width / std::max(units_wide, 1),
            y * (areas.picture.height + areas.line) / std::max(units_high, 1)};
  }

  const Uint32 news_ = SDL_RegisterEvents(1);
  const std::string photo_;
  ViewState state_;
  std::string report_;
  std::shared_ptr<const ShownFrame> shown_;
  std::optional<FrameRequest> asked_;
  bool is_full_screen_ = false;
  SdlOwner<SDL_Window> window_;
  Painter painter_;
  RenderThread thread_;
};

}  // namespace

Display::Display() {
  driver::PrepareDriver();  // SDL may be its first user
  // Left alone, SDL would go on to draw where nobody looks.
  const std::string drivers = DriversWithDisplay();
  if (drivers.empty()) throw InputError(kNoDisplay);
  SDL_SetHint(SDL_HINT_VIDEODRIVER, drivers.c_str());
  // Signals end the program as they end any other command.
  SDL_SetHint(SDL_HINT_NO_SIGNAL_HANDLERS, "1");
  SDL_SetHint(SDL_HINT_VIDEO_X11_NET_WM_BYPASS_COMPOSITOR, "0");
  if (SDL_Init(SDL_INIT_VIDEO) != 0) {
    SDL_Quit();
    throw InputError(kNoDisplay);
  }
  SDL_EnableScreenSaver();
  SDL_StopTextInput();
  // As photo/nv21.h has it.
  SDL_SetYUVConversionMode(SDL_YUV_CONVERSION_JPEG);
}

Display::~Display() {
  SDL_Quit();
}

void RunWindow(const Display& /*display*/, ViewSource source,
               const DepthOptions& options, ViewState state,
               const std::string& photo) {
  Viewer(std::move(source), options, std::move(state), photo).Run();
}

}  // namespace zuqel::tools
