// Turns pictures and maps upright.
#include "photo/orientation.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <utility>
#include <vector>

namespace zuqel::tools {
namespace {

// How the stored rows become upright ones: exchanged with the columns first,
// then mirrored.
struct Turn {
  bool transposes, mirrors_x, mirrors_y;
};

constexpr std::array<Turn, 9> kTurns = {{{},  // not in use
                                         {false, false, false},
                                         {false, true, false},
                                         {false, true, true},
                                         {false, false, true},
                                         {true, false, false},
                                         {true, true, false},
                                         {true, true, true},
                                         {true, false, true}}};

// `kValues` neighbours in `values` make a pixel.
template <size_t kValues, typename Value>
void Turned(std::vector<Value>& values, int& width, int& height,
            int orientation) {
  if (orientation <= 1 || orientation > 8) return;
  const Turn turn = kTurns.at(static_cast<size_t>(orientation));
  const int new_width = turn.transposes ? height : width;
  const int new_height = turn.transposes ? width : height;
  std::vector<Value> turned(values.size());
  // In squares, whose rows and columns both stay in the cache.
  constexpr int kSide = 32;
  const auto turn_square = [&](int left, int top) {
    for (int y = top; y < std::min(top + kSide, new_height); ++y) {
      for (int x = left; x < std::min(left + kSide, new_width); ++x) {
        const int u = turn.mirrors_x ? new_width - 1 - x : x;
        const int v = turn.mirrors_y ? new_height - 1 - y : y;
        const size_t from = turn.transposes
                                ? PixelCount(width, u) + static_cast<size_t>(v)
                                : PixelCount(width, v) + static_cast<size_t>(u);
        const size_t to = PixelCount(new_width, y) + static_cast<size_t>(x);
        for (size_t i = 0; i < kValues; ++i) {
          turned[kValues * to + i] = values[kValues * from + i];
        }
      }
    }
  };
  for (int top = 0; top < new_height; top += kSide) {
    for (int left = 0; left < new_width; left += kSide) turn_square(left, top);
  }
  values = std::move(turned);
  width = new_width;
  height = new_height;
}

}  // namespace

void TurnUpright(Picture& picture, int orientation) {
  Turned<3>(picture.rgb, picture.width, picture.height, orientation);
}

void TurnUpright(Map<float>& map, int orientation) {
  Turned<1>(map.values, map.width, map.height, orientation);
}

}  // namespace zuqel::tools
