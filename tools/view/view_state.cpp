// What the window shows, and how events change it.
#include "view/view_state.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <utility>

namespace zuqel::tools {
namespace {

// A hand that clicks is not quite still.
constexpr int kDragStart = 4;

constexpr const char* kNeedsDepth =
    "2 to 6 make weights from depth, and only weights are given";

// The part of `length` pixels that is shown begins here when `centre` is in the
// middle; all of it is in the middle if it fits.
int StartOf(int screen, int length, int centre) {
  if (length <= screen) return (screen - length) / 2;
  return std::clamp(screen / 2 - centre, screen - length, 0);
}

// Of one side, the pixel in the middle of a place on the screen.
int PixelAt(int at, int start, int length, int pixels) {
  const int64_t offset = std::clamp(at - start, 0, length - 1);
  return static_cast<int>((2 * offset + 1) * pixels / (int64_t{2} * length));
}

void KeepCentreInside(ViewState& state) {
  const auto keep = [](int centre, int screen, int pixels) {
    const int margin = std::min(screen, pixels) / 2;
    return std::clamp(centre, margin, pixels - margin);
  };
  state.centre = {
      keep(state.centre.x, state.screen.width, state.photo.width),
      keep(state.centre.y, state.screen.height, state.photo.height)};
}

// One-to-one, what is dragged is the picture.
void Drag(ViewState& state, FocusPoint to) {
  if (!state.is_one_to_one) {
    state.focus = PhotoPixel(state, to);
    return;
  }
  state.centre.x -= to.x - state.pressed_at.x;
  state.centre.y -= to.y - state.pressed_at.y;
  KeepCentreInside(state);
  state.pressed_at = to;
}

void Toggle(ViewState& state, Layer layer) {
  state.layer = state.layer == layer ? Layer::kResult : layer;
}

void ChooseMaker(ViewState& state, int maker) {
  if (maker != kFrameMaker && !state.has_depth) {
    state.refusal = kNeedsDepth;
  } else {
    state.maker = maker;
  }
}

void ShowDisparity(ViewState& state) {
  if (state.has_depth) {
    Toggle(state, Layer::kDisparity);
  } else {
    state.refusal = "no disparity: only weights are given";
  }
}

void Advance(ViewState& state) {
  if (state.is_playing) state.moment = state.moment % state.moments + 1;
}

void Play(ViewState& state) {
  if (state.moments > 0) {
    state.is_playing = !state.is_playing;
    Advance(state);
  } else {
    state.refusal = "P plays the moving scene of --demo";
  }
}

}  // namespace

ViewState Press(ViewState state, FocusPoint at) {
  state.refusal.clear();
  state.is_pressed = true;
  state.is_dragged = false;
  state.pressed_at = at;
  if (!state.is_one_to_one) state.focus = PhotoPixel(state, at);
  return state;
}

ViewState Move(ViewState state, FocusPoint to) {
  if (!state.is_pressed) return state;
  const int way = std::max(std::abs(to.x - state.pressed_at.x),
                           std::abs(to.y - state.pressed_at.y));
  if (way >= kDragStart) state.is_dragged = true;
  if (state.is_dragged) Drag(state, to);
  return state;
}

ViewState Release(ViewState state, FocusPoint at) {
  if (state.is_pressed && !state.is_dragged) {
    state.focus = PhotoPixel(state, at);
  }
  state.is_pressed = false;
  return state;
}

ViewState TurnWheel(ViewState state, int steps) {
  state.refusal.clear();
  constexpr int kLast = kFNumbers.size() - 1;
  const auto* const next =
      std::lower_bound(kFNumbers.begin(), kFNumbers.end(), state.f_number);
  auto at = static_cast<int>(next - kFNumbers.begin());
  // From between two, a step down leads to the lower one.
  if (steps > 0 && at <= kLast && *next > state.f_number) --at;
  at = std::clamp(at + std::clamp(steps, -kLast, kLast), 0, kLast);
  state.f_number = kFNumbers.at(static_cast<size_t>(at));
  return state;
}

ViewState KeyDown(ViewState state, int key) {
  state.refusal.clear();
  switch (key) {
    case ' ':
      state.shows_original = true;
      break;
    case 'd':
      ShowDisparity(state);
      break;
    case 'w':
      Toggle(state, Layer::kWeights);
      break;
    case 'z':
      state.is_one_to_one = !state.is_one_to_one;
      state.is_pressed = false;
      state.centre = state.focus;
      KeepCentreInside(state);
      break;
    case 'f':
      state.is_full_screen = !state.is_full_screen;
      break;
    case 'h':
      state.shows_help = !state.shows_help;
      break;
    case 'p':
      Play(state);
      break;
    case 's':
      ++state.saves;
      break;
    case 'q':
    case kEscapeKey:
      state.is_ended = true;
      break;
    default:
      if (key >= '1' && key < '1' + kCpuMaker) {
        ChooseMaker(state, key - '0');
      }
  }
  return state;
}

ViewState KeyUp(ViewState state, int key) {
  if (key == ' ') state.shows_original = false;
  return state;
}

ViewState Resize(ViewState state, Size screen) {
  state.screen = {std::max(screen.width, 1), std::max(screen.height, 1)};
  KeepCentreInside(state);
  return state;
}

ViewState NextMoment(ViewState state) {
  Advance(state);
  return state;
}

ScreenRect PictureRect(const ViewState& state) {
  Size size = state.photo;
  if (!state.is_one_to_one) {
    const double scale =
        std::min(static_cast<double>(state.screen.width) / size.width,
                 static_cast<double>(state.screen.height) / size.height);
    const auto side = [scale](int pixels) {
      return std::max(static_cast<int>(std::lround(pixels * scale)), 1);
    };
    size = {side(size.width), side(size.height)};
  }
  return {StartOf(state.screen.width, size.width, state.centre.x),
          StartOf(state.screen.height, size.height, state.centre.y), size.width,
          size.height};
}

FocusPoint PhotoPixel(const ViewState& state, FocusPoint at) {
  const ScreenRect rect = PictureRect(state);
  return {PixelAt(at.x, rect.x, rect.width, state.photo.width),
          PixelAt(at.y, rect.y, rect.height, state.photo.height)};
}

FrameRequest RequestFor(const ViewState& state) {
  FrameRequest request;
  request.focus = state.focus;
  // The CPU renderer's strength of blur is fixed.
  if (state.maker != kCpuMaker) request.f_number = state.f_number;
  request.maker = state.maker;
  request.moment = state.moment;
  request.layer = state.layer;
  const ScreenRect rect = PictureRect(state);
  if (rect.width >= state.photo.width || rect.height >= state.photo.height) {
    return request;
  }
  request.size = {std::max(rect.width & ~1, 2), std::max(rect.height & ~1, 2)};
  return request;
}

}  // namespace zuqel::tools
