// What the window shows, and how events change it. Knows neither the window nor
// the library.
#ifndef ZUQEL_TOOLS_VIEW_VIEW_STATE_H_
#define ZUQEL_TOOLS_VIEW_VIEW_STATE_H_

#include <array>
#include <string>

#include "image.h"

namespace zuqel::tools {

enum class Layer { kResult, kDisparity, kWeights };

// What makes the picture: the library's frame from disparity or from the given
// weights, then the refocus maps in the order of Generators(), then the CPU
// renderer.
constexpr int kFrameMaker = 1, kFirstMapMaker = 2, kCpuMaker = 6;

constexpr int kEscapeKey = 27;

// Points on the screen are in its pixels, from the top left of the part that
// is for the picture.
struct ViewState {
  bool operator==(const ViewState&) const = default;

  Size photo;
  bool has_depth = true;  // else weights
  int moments = 0;        // in the series of a moving scene

  Size screen;
  FocusPoint focus;    // in pixels of the photo
  float f_number = 1;  // as in kFNumbers, or any to begin with
  int maker = kFrameMaker;
  Layer layer = Layer::kResult;
  int moment = 0;  // 0 is the photo itself
  bool is_playing = false, shows_original = false, shows_help = false;
  bool is_one_to_one = false, is_full_screen = false, is_ended = false;
  FocusPoint centre;    // of what is shown one-to-one, in pixels of the photo
  int saves = 0;        // that were asked for
  std::string refusal;  // why the last key did nothing

  // Between press and release; a press that goes nowhere sets the focus.
  bool is_pressed = false, is_dragged = false;
  FocusPoint pressed_at;  // or dragged to
};

// In thirds of a stop.
inline constexpr std::array kFNumbers = {
    1.0F, 1.1F, 1.2F, 1.4F, 1.6F, 1.8F, 2.0F, 2.2F, 2.5F, 2.8F, 3.2F,
    3.5F, 4.0F, 4.5F, 5.0F, 5.6F, 6.3F, 7.1F, 8.0F, 9.0F, 10.0F};

// Each returns what `state` becomes.
[[nodiscard]] ViewState Press(ViewState state, FocusPoint at);
[[nodiscard]] ViewState Move(ViewState state, FocusPoint to);
[[nodiscard]] ViewState Release(ViewState state, FocusPoint at);
// A step is a third of a stop; upwards closes the lens.
[[nodiscard]] ViewState TurnWheel(ViewState state, int steps);
// Letters in lower case.
[[nodiscard]] ViewState KeyDown(ViewState state, int key);
[[nodiscard]] ViewState KeyUp(ViewState state, int key);
[[nodiscard]] ViewState Resize(ViewState state, Size screen);
// A frame of the series has been shown.
[[nodiscard]] ViewState NextMoment(ViewState state);

struct ScreenRect {
  bool operator==(const ScreenRect&) const = default;
  int x = 0, y = 0, width = 0, height = 0;
};

// Where the whole photo lies on the screen, in part outside when shown
// one-to-one.
ScreenRect PictureRect(const ViewState& state);

// The pixel at the point, or the nearest to it.
FocusPoint PhotoPixel(const ViewState& state, FocusPoint at);

// What has to be rendered for it, of the size that the screen shows.
struct FrameRequest {
  bool operator==(const FrameRequest&) const = default;
  FocusPoint focus;
  float f_number = 1;
  int maker = kFrameMaker, moment = 0;
  Size size;  // even and smaller than the photo; 0 x 0: the photo's own
  Layer layer = Layer::kResult;
};
FrameRequest RequestFor(const ViewState& state);

}  // namespace zuqel::tools

#endif  // ZUQEL_TOOLS_VIEW_VIEW_STATE_H_
