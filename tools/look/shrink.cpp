// Makes pictures smaller, by area averaging.
#include "look/shrink.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace zuqel::tools {
namespace {

using Row = std::vector<float>;

// How much of source pixel `at` lies before `edge`, which is in it or after it.
float PartBefore(double edge, int at) {
  return static_cast<float>(std::min(edge - at, 1.0));
}

// Adds `count` values, times `part`, to `sum`.
template <typename Value>
void AddTo(float* sum, const Value* values, size_t count, float part) {
  for (size_t i = 0; i < count; ++i) {
    sum[i] += part * static_cast<float>(values[i]);
  }
}

// Distributes `source` units of `count` values over the target units that they
// fall into. No target unit is smaller than a source unit, so one of the latter
// lies in two of the former at most. `done` is called with each finished sum.
template <typename UnitAt, typename Done>
void Distribute(int source, int target, size_t count, UnitAt unit_at,
                Done done) {
  const double step = static_cast<double>(source) / target;
  Row sum(count);
  int out = 0;
  for (int at = 0; at < source; ++at) {
    const auto* const values = unit_at(at);
    const double edge = (out + 1) * step;
    const float part = PartBefore(edge, at);
    AddTo(sum.data(), values, count, part);
    if (edge > at + 1 && at + 1 < source) continue;
    for (float& value : sum) value /= static_cast<float>(step);
    done(out++, sum);
    std::fill(sum.begin(), sum.end(), 0.0F);
    if (out == target) return;
    AddTo(sum.data(), values, count, 1 - part);
  }
}

uint8_t ToByte(float value) {
  return static_cast<uint8_t>(std::min(value + 0.5F, 255.0F));
}

}  // namespace

Picture Shrink(const Picture& picture, Size size) {
  constexpr size_t kChannels = 3;
  Picture shrunk(size.width, size.height);
  Row narrow(kChannels * static_cast<size_t>(size.width));
  const auto narrow_row = [&](int y) {
    Distribute(
        picture.width, size.width, kChannels,
        [&](int x) { return picture.Pixel(x, y); },
        [&](int x, const Row& sum) {
          std::copy(sum.begin(), sum.end(),
                    narrow.begin() + static_cast<ptrdiff_t>(kChannels) * x);
        });
    return narrow.data();
  };
  Distribute(picture.height, size.height, narrow.size(), narrow_row,
             [&](int y, const Row& sum) {
               std::transform(sum.begin(), sum.end(), shrunk.Pixel(0, y),
                              ToByte);
             });
  return shrunk;
}

}  // namespace zuqel::tools
