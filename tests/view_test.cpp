// What the window of zuqel view is made of: its state, smaller pictures, and
// the weights of a frame. view_window_test.py opens the window.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "look/shrink.h"
#include "pin_driver.h"
#include "rendering/bokeh_session.h"
#include "view/view_state.h"
#include "view/view_text.h"
#include "view/weight_probe.h"

namespace zuqel::tools {
namespace {

// A photo of 1000 x 500 on a screen half as wide: 500 x 250, 75 rows down.
ViewState Begin() {
  ViewState state;
  state.photo = {1000, 500};
  state.moments = 2;
  state.focus = {600, 100};
  return Resize(state, {500, 400});
}

ViewState Keys(ViewState state, const std::string& keys) {
  for (const char key : keys) state = KeyDown(std::move(state), key);
  return state;
}

TEST(ViewState, EventsChangeWhatTheyShould) {
  using Change = std::function<void(ViewState&)>;
  struct Case {
    const char* name;
    std::function<ViewState(const ViewState&)> event;
    Change change;  // what has to become of the state before
  };
  const auto keys = [](const char* keys) {
    return [keys](const ViewState& state) { return Keys(state, keys); };
  };
  const auto turn = [](int steps) {
    return [steps](const ViewState& state) { return TurnWheel(state, steps); };
  };
  const auto click = [](FocusPoint at) {
    return
        [at](const ViewState& state) { return Release(Press(state, at), at); };
  };
  const auto drag = [](FocusPoint from, FocusPoint to) {
    return [from, to](const ViewState& state) {
      return Release(Move(Press(state, from), to), to);
    };
  };
  const auto focus = [](FocusPoint at) {
    return [at](ViewState& state) { state.focus = at; };
  };
  const auto maker = [](int maker) {
    return [maker](ViewState& state) { state.maker = maker; };
  };
  const auto lens = [](float f_number) {
    return [f_number](ViewState& state) { state.f_number = f_number; };
  };
  const Change nothing = [](ViewState&) {};
  const std::vector<Case> cases = {
      {"a click", click({250, 200}), focus({501, 251})},
      {"a click above the picture", click({9, 3}), focus({19, 1})},
      {"a drag off the screen", drag({250, 200}, {600, 900}),
       focus({999, 499})},
      {"a move without a press",
       [](const ViewState& state) {
         return Move(state, {9, 99});
       },
       nothing},
      {"a move after a release",
       [](const ViewState& state) {
         return Move(Release(Press(state, {250, 200}), {250, 200}), {9, 99});
       },
       focus({501, 251})},
      {"the wheel past its end", turn(-1), nothing},
      {"the wheel", turn(3), lens(1.4F)},
      {"the wheel, far", turn(1000000), lens(10)},
      {"space", keys(" "), [](ViewState& s) { s.shows_original = true; }},
      {"space and back",
       [](const ViewState& state) { return KeyUp(KeyDown(state, ' '), ' '); },
       nothing},
      {"D", keys("d"), [](ViewState& s) { s.layer = Layer::kDisparity; }},
      {"W after D", keys("dw"),
       [](ViewState& s) { s.layer = Layer::kWeights; }},
      {"W twice", keys("ww"), nothing},
      {"6", keys("6"), maker(kCpuMaker)},
      {"7", keys("7"), nothing},
      {"3, then 1", keys("31"), maker(kFrameMaker)},
      {"H", keys("h"), [](ViewState& s) { s.shows_help = true; }},
      {"F", keys("f"), [](ViewState& s) { s.is_full_screen = true; }},
      {"S twice", keys("ss"), [](ViewState& s) { s.saves = 2; }},
      {"Q", keys("q"), [](ViewState& s) { s.is_ended = true; }},
      {"Escape", keys("\x1b"), [](ViewState& s) { s.is_ended = true; }},
      {"P, three frames, P, and one more",
       [](const ViewState& state) {
         ViewState playing = KeyDown(state, 'p');
         for (int i = 0; i < 3; ++i) playing = NextMoment(playing);
         return NextMoment(KeyDown(playing, 'p'));
       },
       [](ViewState& state) { state.moment = 2; }},
  };
  for (const auto& [name, event, change] : cases) {
    ViewState expected = Begin();
    change(expected);
    const ViewState state = event(Begin());
    // Of no meaning once the button is up.
    expected.is_dragged = state.is_dragged;
    expected.pressed_at = state.pressed_at;
    EXPECT_TRUE(state == expected) << name;
  }
}

TEST(ViewState, WithWeightsAloneNothingNeedsDepth) {
  ViewState state = Begin();
  state.has_depth = false;
  state.moments = 0;
  for (const char* key : {"2", "6", "d", "p"}) {
    ViewState after = Keys(state, key);
    EXPECT_NE(after.refusal, "") << key;
    EXPECT_EQ(NoticeLine(after, nullptr, "saved"), after.refusal);
    after.refusal.clear();
    EXPECT_TRUE(after == state) << key;
  }
  EXPECT_EQ(Keys(state, "2w").refusal, "");
}

TEST(ViewState, RequestsWhatTheScreenShows) {
  ViewState state = Begin();
  EXPECT_EQ(PictureRect(state), (ScreenRect{0, 75, 500, 250}));
  EXPECT_EQ(RequestFor(state).size, (Size{500, 250}));
  EXPECT_EQ(RequestFor(Resize(state, {301, 400})).size, (Size{300, 150}));
  EXPECT_EQ(RequestFor(Resize(state, {3000, 2000})).size, Size{});
  state = Resize(state, {0, 0});
  EXPECT_EQ(RequestFor(state).size, (Size{2, 2}));

  // One-to-one around the focus, as far as there are pixels.
  state = KeyDown(Begin(), 'z');
  EXPECT_EQ(PictureRect(state), (ScreenRect{-350, 0, 1000, 500}));
  EXPECT_EQ(RequestFor(state).size, Size{});
  EXPECT_EQ(PhotoPixel(state, {0, 0}), (FocusPoint{350, 0}));
  state = Move(Press(state, {100, 100}), {90, 70});
  EXPECT_EQ(PictureRect(state), (ScreenRect{-360, -30, 1000, 500}));
  EXPECT_EQ(state.focus, Begin().focus);
  state = Move(state, {-3000, -3000});
  EXPECT_EQ(PictureRect(state), (ScreenRect{-500, -100, 1000, 500}));
  state = Release(state, {0, 0});
  state = Release(Press(state, {0, 0}), {2, 0});
  EXPECT_EQ(state.focus, (FocusPoint{502, 100}));
}

TEST(StatusLine, SaysLessWhereThereIsLessRoom) {
  ShownFrame shown;
  auto disparity = DisparityMap(100, 50);
  disparity.At(60, 10) = 612;
  shown.disparity = std::make_shared<DisparityMap>(disparity);
  shown.result = std::make_shared<Nv21Frame>();
  shown.frame_ms = 12.4;
  const ViewState state = TurnWheel(Begin(), 3);
  const std::array lines = {
      "focus 600,100  disparity 612  f/1.4  1 frame from disparity  12 ms  H "
      "help",
      "focus 600,100  disparity 612  f/1.4  1 frame from disparity  12 ms",
      "focus 600,100  disparity 612  f/1.4  1  12 ms"};
  EXPECT_EQ(StatusLine(state, &shown, 100), lines[0]);
  EXPECT_EQ(StatusLine(state, &shown, 70), lines[1]);
  EXPECT_EQ(StatusLine(state, &shown, 50), lines[2]);
  EXPECT_EQ(StatusLine(KeyDown(state, '6'), nullptr, 100),
            "focus 600,100  f fixed  6 CPU renderer  H help");
}

TEST(Shrink, TakesTheMeanOfTheAreaThatAPixelCovers) {
  Picture picture(5, 3);
  for (int i = 0; i < 15; ++i) {
    const auto value = static_cast<uint8_t>(17 * (i % 5) + 60 * (i / 5));
    std::fill_n(picture.Pixel(i % 5, i / 5), 3, value);
  }
  EXPECT_EQ(Shrink(picture, {5, 3}).rgb, picture.rgb);
  // Columns 0, 1 and half of 2: (0 + 17 + 17) / 2.5. Row 0 and half of 1.
  const Picture half = Shrink(picture, {2, 2});
  const std::array expected = {13.6 + 20, 54.4 + 20, 13.6 + 100, 54.4 + 100};
  for (int i = 0; i < 4; ++i) {
    const int value = *half.Pixel(i % 2, i / 2);
    EXPECT_NEAR(value, expected.at(static_cast<size_t>(i)), 0.51);
  }
  EXPECT_EQ(*Shrink(picture, {1, 1}).Pixel(0, 0), 34 + 60);
}

// Weights that are known beforehand come out as they went in.
TEST(MeasureWeights, FindsTheWeightsOfAFrame) {
  FrameMap map;
  map.weights = WeightMap(320, 240);
  for (int i = 0; i < 320 * 240; ++i) {
    map.weights->values[static_cast<size_t>(i)] =
        static_cast<uint8_t>(std::min(i % 320, 255));
  }
  {
    const BokehSession session({.picture = {2, 2}, .depth = {2, 2}});
    PinDriverLibraries();
  }
  const WeightMap found = MeasureWeights(map, {9, 9}, {640, 480});
  ASSERT_EQ(SizeOf(found), (Size{320, 240}));
  int largest = 0;
  for (size_t i = 0; i < found.values.size(); ++i) {
    largest =
        std::max(largest, std::abs(found.values[i] - map.weights->values[i]));
  }
  EXPECT_LE(largest, 2);

  // The same pixel of the map is in focus at any size.
  for (int x = 0; x < 4032; x += 31) {
    const FocusPoint at =
        FocusIn({1280, 960}, {x, x / 2}, {4032, 3024}, {768, 576});
    EXPECT_EQ(at.x * 768 / 1280, x * 768 / 4032) << x;
    EXPECT_EQ(at.y * 576 / 960, x / 2 * 576 / 3024) << x;
  }
}

}  // namespace
}  // namespace zuqel::tools
