// Resizes and blurs planes.
#include "reference_planes.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <utility>
#include <vector>

namespace zuqel::reference {
namespace {

// What a target sample is made of: source samples and their weights.
using Parts = std::vector<std::pair<int64_t, int64_t>>;
using Axis = std::vector<Parts>;

auto& Nth(auto& values, int64_t i) {
  return values[static_cast<size_t>(i)];
}

// A position between samples, in 1/256.
Parts Interpolated(int64_t position, int64_t source) {
  if (position < 0) return {{0, 256}};
  const int64_t first = position / 256, share = position % 256;
  return {{first, 256 - share}, {std::min(first + 1, source - 1), share}};
}

// Both the start and the step are cut to 1/256, apart from each other; what is
// cut off adds up along the axis.
Axis Enlarged(int64_t source, int64_t target) {
  Axis axis;
  const int64_t start = (source - target) * 128, step = source * 256;
  for (int64_t t = 0; t < target; ++t) {
    const int64_t carried = (start % target + t * (step % target)) / target;
    axis.push_back(
        Interpolated(start / target + t * (step / target) + carried, source));
  }
  return axis;
}

// Up to sample s, the axis covers floor((s + 1) * target / source), in 1/256:
// 85, 85, 86 and 42, 43, 43, 42, 43, 43 where 3 or 6 become 1.
Axis Reduced(int64_t source, int64_t target) {
  Axis axis(static_cast<size_t>(target));
  for (int64_t s = 0, at = 0; s < source; ++s) {
    const int64_t end = (s + 1) * target * 256 / source;
    for (int64_t next = 0; at < end; at = next) {
      next = std::min(at / 256 * 256 + 256, end);
      Nth(axis, at / 256).emplace_back(s, next - at);
    }
  }
  return axis;
}

Axis Resized(int64_t source, int64_t target) {
  return source > target ? Reduced(source, target) : Enlarged(source, target);
}

// The last sample at either end stands for those outside.
Axis Boxed(int64_t length, int64_t radius) {
  Axis axis(static_cast<size_t>(length));
  for (int64_t i = 0; i < length; ++i) {
    const int64_t last = length - 1, right = last - i;
    Parts& parts = Nth(axis, i);
    parts = {{0, std::max<int64_t>(radius - i, 0)},
             {last, std::max<int64_t>(radius - right, 0)}};
    for (int64_t s = std::max<int64_t>(i - radius, 0);
         s <= std::min(i + radius, last); ++s) {
      parts.emplace_back(s, 1);
    }
  }
  return axis;
}

struct Division {
  int64_t divisor, bias;
};
constexpr Division kNearest = {256, 128};

// Along rows or along columns.
template <typename T>
Image<T> Sum(const Image<T>& in, const Axis& axis, Division division,
             bool is_across) {
  const auto length = static_cast<int32_t>(axis.size());
  Image<T> out = {is_across ? length : in.width,
                  is_across ? in.height : length};
  out.Visit([&](int32_t x, int32_t y, T& value) {
    int64_t sum = division.bias;
    for (const auto& [s, weight] : Nth(axis, is_across ? x : y)) {
      const int64_t at = is_across ? y * in.width + s : s * in.width + x;
      sum += weight * Nth(in.values, at);
    }
    value = static_cast<T>(sum / division.divisor);
  });
  return out;
}

// The steps of an exact factor, as an image grows, or none. Only bytes grow in
// steps.
template <typename T>
std::vector<int32_t> StepsOf(const Image<T>& in, int32_t width,
                             int32_t height) {
  static const std::vector<std::pair<int32_t, std::vector<int32_t>>> kChains = {
      {2, {2}},       {3, {3}},    {4, {4}},    {6, {6}},
      {8, {2, 2, 2}}, {9, {3, 3}}, {12, {2, 6}}};
  for (const auto& [factor, steps] : kChains) {
    const bool shrinks =
        in.width == width * factor && in.height == height * factor;
    if (shrinks) return {steps.rbegin(), steps.rend()};
    const bool grows =
        width == in.width * factor && height == in.height * factor;
    if (grows && sizeof(T) == 1) return steps;
  }
  return {};
}

}  // namespace

template <typename T>
Image<T> ResizePlane(Image<T> in, int32_t width, int32_t height) {
  if (in.values.empty()) return {width, height};
  if (in.width == width && in.height == height) return in;
  const bool grows = width > in.width;
  const auto resize = [&in](int32_t new_width, int32_t new_height) {
    Axis columns = Resized(in.width, new_width);
    // Here 16 bits have weights rounded to nearest across.
    if (sizeof(T) == 2 && in.width == 1280 && in.height == 720 &&
        new_width == 1920 && new_height == 1080) {
      for (int32_t t = 0; t < 1920; ++t) {
        Nth(columns, t) =
            Interpolated(std::lround((t + 0.5) * 512 / 3 - 128), 1280);
      }
    }
    in = Sum(in, Resized(in.height, new_height), kNearest, false);
    in = Sum(in, columns, kNearest, true);
  };
  for (const int32_t step : StepsOf(in, width, height)) {
    if (grows) {
      resize(in.width * step, in.height * step);
    } else {
      resize(in.width / step, in.height / step);
    }
  }
  if (in.width != width || in.height != height) resize(width, height);
  return in;
}
template Image<uint8_t> ResizePlane(Image<uint8_t>, int32_t, int32_t);
template Image<uint16_t> ResizePlane(Image<uint16_t>, int32_t, int32_t);

Image<uint8_t> BoxBlur(const Image<uint8_t>& in, int32_t radius) {
  const Division mean = {2 * int64_t{radius} + 1, 0};
  return Sum(Sum(in, Boxed(in.width, radius), mean, true),
             Boxed(in.height, radius), mean, false);
}

Image<uint8_t> BlurAndBlend(const Image<uint8_t>& sharp,
                            const Image<uint8_t>& weights) {
  const int32_t width = sharp.width, height = sharp.height;
  const Image<uint8_t> half = ResizePlane(sharp, width / 2, height / 2);
  const Image<uint8_t> strong = ResizePlane(BoxBlur(half, 1), width, height);
  Image<uint8_t> out = BoxBlur(sharp, 1);
  for (size_t i = 0; i < out.values.size(); ++i) {
    const int32_t weight = weights.values[i];
    const int32_t rest = weight == 0 ? sharp.values[i] : out.values[i];
    const int32_t sum = weight * strong.values[i] + (255 - weight) * rest;
    out.values[i] = static_cast<uint8_t>(sum / 255);
  }
  return out;
}

}  // namespace zuqel::reference
