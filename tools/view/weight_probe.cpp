// The weights of a frame, measured in what it makes of chequers.
#include "view/weight_probe.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>

#include "photo/nv21.h"
#include "rendering/bokeh_session.h"

namespace zuqel::tools {
namespace {

// The blurred copy of a frame has half this size. There each pixel is the mean
// of 2 x 2 chequers, with every f-number.
constexpr Size kProbe = {1280, 960};
constexpr int kBlock = 4;  // frame pixels for each of the weights

uint8_t Chequer(int x, int y) {
  return (x + y) % 2 == 0 ? 0 : 255;
}

Nv21Frame Chequers() {
  Nv21Frame frame = {kProbe.width, kProbe.height, {}, {}};
  const size_t count = PixelCount(kProbe.width, kProbe.height);
  frame.luma.reserve(count);
  for (int y = 0; y < kProbe.height; ++y) {
    for (int x = 0; x < kProbe.width; ++x) frame.luma.push_back(Chequer(x, y));
  }
  frame.chroma.assign(count / 2, 128);
  return frame;
}

// A chequer has moved towards the mean, 127.5, by its weight.
uint8_t WeightOfBlock(const Nv21Frame& frame, int left, int top) {
  int moved = 0;
  for (int y = top; y < top + kBlock; ++y) {
    for (int x = left; x < left + kBlock; ++x) {
      const int luma =
          frame.luma[PixelCount(frame.width, y) + static_cast<size_t>(x)];
      moved += std::abs(luma - Chequer(x, y));
    }
  }
  constexpr int kHalfPixels = kBlock * kBlock / 2;
  return static_cast<uint8_t>(
      std::min((moved + kHalfPixels / 2) / kHalfPixels, 255));
}

int CoordinateIn(int to, int at, int from, int map) {
  if (to == from) return at;
  const int64_t in_map = int64_t{at} * map / from;
  return static_cast<int>((in_map * to + to / 2) / map);
}

}  // namespace

FocusPoint FocusIn(Size to, FocusPoint focus, Size from, Size map) {
  return {CoordinateIn(to.width, focus.x, from.width, map.width),
          CoordinateIn(to.height, focus.y, from.height, map.height)};
}

WeightMap MeasureWeights(const FrameMap& map, FocusPoint focus, Size picture) {
  const SessionSetup setup = SetupFor(kProbe, map);
  const Size map_size = map.disparity ? setup.depth : setup.work;
  const BokehSession session(setup);
  Rendered rendered;
  RenderFrame(session, Chequers(), map,
              {FocusIn(kProbe, focus, picture, map_size)}, rendered);
  WeightMap weights(kProbe.width / kBlock, kProbe.height / kBlock);
  for (int y = 0; y < weights.height; ++y) {
    for (int x = 0; x < weights.width; ++x) {
      weights.At(x, y) = WeightOfBlock(rendered.frame, x * kBlock, y * kBlock);
    }
  }
  return weights;
}

}  // namespace zuqel::tools
