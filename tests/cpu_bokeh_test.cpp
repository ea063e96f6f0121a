// The CPU render path and its kernels beside plain forms, on planes with no
// byte to touch behind them. The depth steps, tested on their own, are used.
#include <gtest/gtest.h>
#include <zuQelRT_GL.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <map>
#include <set>
#include <utility>
#include <vector>

#include "api/session.h"
#include "cpu_bokeh/box_blur.h"
#include "cpu_bokeh/resize_plane.h"
#include "depth/component_cleanup.h"
#include "depth/disparity_range.h"
#include "depth/focus_mask.h"
#include "depth/hole_filling.h"
#include "guarded_memory.h"
#include "log_capture.h"

namespace zuqel {
namespace {

using Bytes = std::vector<uint8_t>;

auto& Nth(auto& values, int64_t i) {
  return values[static_cast<size_t>(i)];
}

template <typename T>
struct Image {
  int32_t width = 0, height = 0;
  std::vector<T> values = {};

  Plane<T> View() { return {values.data(), width, height}; }
};

// What each target sample of an axis is made of: source samples and weights.
using Parts = std::vector<std::pair<int64_t, int64_t>>;
using Axis = std::vector<Parts>;
using Numbers = std::map<int64_t, std::vector<int64_t>>;

// Position between samples, in 1/256.
Parts At(int64_t position, int64_t source) {
  if (position < 0) return {{0, 256}};
  const int64_t first = position / 256, share = position % 256;
  return {{first, 256 - share}, {std::min(first + 1, source - 1), share}};
}

Axis Walk(int64_t source, int64_t target) {
  Axis axis(static_cast<size_t>(target));
  const int64_t start = (source - target) * 128, grown = source * 256;
  for (int64_t t = 0; source <= target && t < target; ++t) {
    const int64_t left = (start % target + t * (grown % target)) / target;
    Nth(axis, t) = At(start / target + t * (grown / target) + left, source);
  }
  // Up to sample s, the axis covers floor((s + 1) * target / source), in 1/256:
  // 85, 85, 86 and 42, 43, 43, 42, 43, 43 where 3 or 6 become 1.
  for (int64_t s = 0, at = 0; source > target && s < source; ++s) {
    const int64_t end = (s + 1) * target * 256 / source;
    for (int64_t next = 0; at < end; at = next) {
      next = std::min(at / 256 * 256 + 256, end);
      Nth(axis, at / 256).emplace_back(s, next - at);
    }
  }
  return axis;
}

// Down the columns or along the rows.
template <bool kDown, typename T>
Image<T> Summed(const Image<T>& in, const Axis& axis, int64_t divisor = 256,
                int64_t half = 128) {
  const auto length = static_cast<int32_t>(axis.size());
  Image<T> out = {kDown ? in.width : length, kDown ? length : in.height};
  for (int64_t i = 0; i < int64_t{out.width} * out.height; ++i) {
    const int64_t x = i % out.width, y = i / out.width;
    const int64_t first = kDown ? x : y * in.width;
    int64_t sum = half;
    for (const auto& [s, weight] : Nth(axis, kDown ? y : x)) {
      sum += weight * Nth(in.values, first + s * (kDown ? in.width : 1));
    }
    out.values.push_back(static_cast<T>(sum / divisor));
  }
  return out;
}

template <typename T>
Image<T> Resized(Image<T> in, int32_t width, int32_t height) {
  // From small to large. Only bytes grow in steps.
  static const Numbers kSteps = {{2, {2}},    {3, {3}},       {4, {4}},
                                 {6, {6}},    {8, {2, 2, 2}}, {9, {3, 3}},
                                 {12, {2, 6}}};
  const size_t size = static_cast<size_t>(width) * static_cast<size_t>(height);
  if (in.values.empty()) return {width, height, std::vector<T>(size)};
  if (in.width == width && in.height == height) return in;
  for (auto [factor, steps] : kSteps) {
    const bool grows = sizeof(T) == 1 && width == in.width * factor &&
                       height == in.height * factor;
    const bool shrinks =
        in.width == width * factor && in.height == height * factor;
    if (!grows && !shrinks) continue;
    if (shrinks) std::reverse(steps.begin(), steps.end());
    for (const int64_t step : steps) {
      const auto axis = [=](int64_t length) {
        return Walk(length, grows ? length * step : length / step);
      };
      in = Summed<false>(Summed<true>(in, axis(in.height)), axis(in.width));
    }
    return in;
  }
  Axis columns = Walk(in.width, width);
  for (int32_t t = 0; t < width; ++t) {
    const int64_t nearest = std::lround((t + 0.5) * 512 / 3 - 128);
    if (sizeof(T) == 2 && in.width == 1280 && width == 1920 && height == 1080) {
      Nth(columns, t) = At(nearest, in.width);
    }
  }
  return Summed<false>(Summed<true>(in, Walk(in.height, height)), columns);
}

// The last sample at either end stands for those behind it.
Image<uint8_t> Boxed(const Image<uint8_t>& in, int64_t radius) {
  const int64_t size = 2 * radius + 1;
  const auto around = [=](int64_t length) {
    Axis axis(static_cast<size_t>(length));
    for (int64_t i = 0; i < length * size; ++i) {
      const int64_t s = i / size + i % size - radius;
      Nth(axis, i / size)
          .emplace_back(std::clamp<int64_t>(s, 0, length - 1), 1);
    }
    return axis;
  };
  return Summed<true>(Summed<false>(in, around(in.width), size, 0),
                      around(in.height), size, 0);
}

uint32_t noise = 1;

// With extremes among it.
template <typename T>
Image<T> Noise(int32_t width, int32_t height) {
  Image<T> image = Resized<T>({}, width, height);
  for (T& value : image.values) {
    const uint32_t kind = (noise *= 69069) >> 28;
    value = static_cast<T>(kind < 2 ? 0 - kind : noise >> 12);
  }
  return image;
}

template <typename T>
std::vector<T> Resize(const Image<T>& image, int32_t width, int32_t height) {
  static ResizeScratch scratch;  // used again by whatever comes next
  const GuardedMemory<T> in(image.values);
  const GuardedMemory<T> out(Noise<T>(width, height).values);
  const Plane<const T> plane = {in.data(), image.width, image.height};
  EXPECT_TRUE(ResizePlane(plane, scratch, {out.data(), width, height}));
  return {out.span().begin(), out.span().end()};
}

// Noise, and a constant, which stays.
void Check(int32_t width, int32_t height, int32_t to_width, int32_t to_height) {
  const auto check = [&]<typename T>(Image<T> image) {
    Image<T> expected = Resized(image, to_width, to_height);
    ASSERT_EQ(Resize(image, to_width, to_height), expected.values)
        << width << ", " << height << " to " << to_width << ", " << to_height;
    if (image.values.empty()) return;
    std::ranges::fill(image.values, static_cast<T>(-1));
    std::ranges::fill(expected.values, static_cast<T>(-1));
    ASSERT_EQ(Resize(image, to_width, to_height), expected.values);
  };
  if (testing::Test::HasFailure()) return;
  check(Noise<uint8_t>(width, height));
  check(Noise<uint16_t>(width, height));
}

TEST(ResizePlane, TakesAnySizes) {
  // Either axis in any way, beside one that stays, shrinks or grows.
  for (const auto& [from, to] : {std::array{6, 6}, {13, 5}, {3, 11}}) {
    for (int32_t i = 0; i < 41 * 41; ++i) {
      Check(i % 41, from, i / 41, to);
      Check(from, i % 41, to, i / 41);
    }
  }
  for (const auto& [width, height] :
       {std::array{1, 1}, {1, 2}, {2, 1}, {5, 3}, {17, 9}, {35, 20}}) {
    for (int32_t i = 0; i < 14 * 14; ++i) {
      const int32_t across = width * (i % 14 + 1), down = height * (i / 14 + 1);
      Check(width, height, across, down);
      Check(across, down, width, height);
      Check(across, height, width, down);
    }
  }
  Check(1440, 1080, 640, 480);
  Check(1280, 960, 320, 240);
  Check(320, 240, 1280, 960);
  Check(1280, 720, 1920, 1080);
  Check(1280, 960, 1920, 1440);
  // Each sample covers almost a whole one.
  Check(1, 556, 3, 555);
}

TEST(ResizePlane, KnownResults) {
  EXPECT_EQ(Resize<uint8_t>({2, 2, {0, 1, 1, 1}}, 1, 1), Bytes({1}));
  // Coverages of 170, 86 + 85 and 171.
  EXPECT_EQ(Resize<uint8_t>({3, 1, {0, 90, 255}}, 2, 1), Bytes({30, 200}));
  // The weights of the second pixel, above 128 less 1.
  const auto grown = [](int32_t width) {
    Bytes rows = Resize<uint8_t>({2, 1, {0, 255}}, width, width / 2);
    rows.resize(rows.size() / static_cast<size_t>(width / 2));
    return rows;
  };
  EXPECT_EQ(grown(4), Bytes({0, 64, 191, 255}));
  EXPECT_EQ(grown(6), Bytes({0, 0, 85, 169, 255, 255}));
  EXPECT_EQ(grown(12),
            Bytes({0, 0, 0, 21, 64, 106, 148, 191, 233, 255, 255, 255}));
}

Bytes Blur(const Image<uint8_t>& image, decltype(BoxBlur)& blur,
           int32_t argument) {
  const auto& [width, height, values] = image;
  const GuardedMemory<uint8_t> in(values), out(in.size());
  Buffer scratch;
  EXPECT_TRUE(blur({in.data(), width, height}, argument, scratch,
                   {out.data(), width, height}));
  return {out.span().begin(), out.span().end()};
}

TEST(BoxBlur, IsTheMeanOfRowsAndThenOfColumns) {
  for (const int32_t radius :
       {-1, 0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 100, 70000}) {
    // Also of planes smaller than the box.
    for (int32_t i = 0; i < 196; i += (radius > 100 ? 60 : 1)) {
      const auto image = Noise<uint8_t>(i % 14 + i / 195 * 60, i / 14);
      const int32_t taken = std::clamp(radius, 0, 65535);
      ASSERT_EQ(Blur(image, BoxBlur, radius), Boxed(image, taken).values)
          << image.width << " x " << image.height << " by " << radius;
    }
  }
}

TEST(BoxBlur, ApproximatesAGaussian) {
  // Radii in the digits, by strength.
  constexpr std::array kRadii = {0, 0, 1, 1, 111, 112, 112, 222, 223, 223, 333};
  for (int32_t strength = -10; strength <= 10; ++strength) {
    const int32_t radii = Nth(kRadii, std::max(strength, -strength));
    const auto image = Noise<uint8_t>(41, 23);
    const auto twice = Boxed(Boxed(image, radii / 100), radii / 10 % 10);
    const Bytes expected = Boxed(twice, radii % 10).values;
    EXPECT_EQ(Blur(image, BoxGaussianBlur, strength), expected);
  }
  // More of the smaller boxes than an integer holds.
  EXPECT_EQ(GaussianBoxRadii(1600000000)[2], 533333332);
}

// A caller's planes, and what is to become of them.
struct PlainExpansion {
  const int32_t width, height;
  Image<uint16_t> map;
  int32_t counter;
  Image<uint8_t> luma = {};
  Bytes chroma = {};
  Image<uint8_t> weights = {};
  std::array<Bytes, 3> history = {};

  // Noise, and a slope with a step that moves from turn to turn, with holes and
  // bits above the lowest ten.
  void Shoot(int32_t turn) {
    luma = Noise<uint8_t>(width, height);
    chroma = Noise<uint8_t>(width, height / 2).values;
    map = Noise<uint16_t>(map.width, map.height);
    for (int32_t i = turn / 2; uint16_t & value : map.values) {
      const int base = 100 + i++ % map.width * 500 / map.width;
      const int measured = value / 1024 * 1024 + value % 8 + base;
      value = static_cast<uint16_t>(value % 31 == 0 ? value | 1023 : measured);
    }
  }

  // V, of byte 0 of each pair, or U: packed, and the last row again and again.
  [[nodiscard]] Image<uint8_t> Region(int32_t byte) const {
    const int64_t half = width / 2, rows = height / 2;
    Image<uint8_t> region = Resized<uint8_t>({}, width, height);
    for (int64_t i = 0; half * rows > 0 && i < std::ssize(region.values); ++i) {
      const int64_t row = std::min(i / half, rows - 1);
      Nth(region.values, i) = Nth(chroma, row * width + i % half * 2 + byte);
    }
    if (width % 2 * rows == 0) return region;
    Nth(region.values, half * rows) = byte == 0 ? chroma.back() : uint8_t{0};
    return region;
  }

  [[nodiscard]] Image<uint8_t> Blended(const Image<uint8_t>& sharp) const {
    const auto half = Resized(sharp, width / 2, height / 2);
    const auto strong = Resized(Boxed(half, 1), width, height);
    auto out = Boxed(sharp, 1);
    for (size_t i = 0; i < out.values.size(); ++i) {
      const int weight = weights.values[i];
      const int other = weight == 0 ? sharp.values[i] : out.values[i];
      const int sum = weight * strong.values[i] + (255 - weight) * other;
      out.values[i] = static_cast<uint8_t>(sum / 255);
    }
    return out;
  }

  void Render(int64_t x, int64_t y) {
    const auto u = Region(1), v = Region(0);
    const auto reduced = [this](const Image<uint8_t>& plane) {
      return Resized(plane, map.width, map.height).values;
    };
    for (uint16_t& value : map.values) value %= 1024;
    FillDisparityHoles(map.View());
    const auto [min, max] = GetDispRange(map.View(), 1);
    const auto on_map = [](int64_t product, int32_t size) {
      return size == 0 ? 0 : static_cast<int32_t>(product) / size;
    };
    const MaskPoint focus = {on_map(x * map.width, width),
                             on_map(y * map.height, height)};
    const uint16_t in_focus = ValueAt(map.View(), focus.x, focus.y);
    auto grown = Resized<uint8_t>({}, map.width, map.height), work = grown;
    CleanupScratch cleanup;
    Buffer growth;
    uint32_t area = 0;
    EXPECT_TRUE(FocusMaskExpansion(
        map.View(),
        {reduced(luma).data(), reduced(u).data(), reduced(v).data()},
        {max, min, in_focus}, growth, grown.View()));
    EXPECT_TRUE(PruneComponents(grown.View(), focus, true, cleanup, work.View(),
                                &area));
    for (uint8_t& value : work.values) value ^= 255;
    EXPECT_TRUE(RemoveSpecks(work.View(), area, cleanup, grown.View()));
    Image<uint8_t> feathered = Boxed(grown, 1);
    Bytes& mask = feathered.values;
    const auto slot = static_cast<size_t>((counter % 3 + 3) % 3);
    for (size_t i = 0; counter > 2 && i < mask.size(); ++i) {
      const int sum = mask[i] + 2 * history[(slot + 2) % 3][i];
      mask[i] = static_cast<uint8_t>((sum + history[(slot + 1) % 3][i]) / 4);
    }
    history[slot] = mask;
    counter = static_cast<int32_t>(int64_t{counter} + 1);
    weights = Resized(feathered, width, height);
    luma = Blended(luma);
    const auto new_u = Blended(u), new_v = Blended(v);
    const auto end = std::ssize(chroma);
    for (int32_t i = 0; i < width * height; ++i) {
      const int32_t column = i % width / 2, row = i / width / 2 * width;
      const int32_t from = column + row / 2, to = row + 2 * column;
      if (to < end) Nth(chroma, to) = Nth(new_v.values, from);
      if (to + 1 < end) Nth(chroma, to + 1) = Nth(new_u.values, from);
    }
  }
};

TEST(RenderExpansion, IsItsStepsInPlainForm) {
  noise = 1;  // whatever ran before
  LogCapture log;
  Session& session = TheSession();
  std::set<int> weights;
  constexpr std::array kSides = {64, 48, 16, 12, 65, 47, 33, 21, 20, 30,
                                 40, 14, 40, 28, 1,  9,  4,  3,  2,  200,
                                 24, 10, 0,  7,  6,  1,  1,  1,  1};
  // The sizes overlap: those of the map are the next one's of the frame.
  for (size_t i = 0; i + 3 < kSides.size(); ++i) {
    const int32_t width = kSides[i], height = kSides[i + 1];
    const int32_t counter = i % 4 == 3 ? INT32_MAX - 20 : i % 5 == 4 ? -20 : 0;
    const auto map = Resized<uint16_t>({}, kSides[i + 2], kSides[i + 3]);
    PlainExpansion plain = {width, height, map, counter};
    plain.history.fill(Bytes(map.values.size()));
    if (counter != 0) session.expansion = {};
    session.expansionFrameCounter = counter;
    session.gInfo = {width, height, map.width, map.height, 0, 0,
                     0,     0,      0,         0,          0, 0};
    const std::array xs = {width / 2, 0, width - 1, -1, INT32_MIN};
    const std::array ys = {height / 2, 0, height - 1, height, INT32_MAX};
    for (size_t turn = 0; turn < 75; ++turn) {
      const int32_t x = xs[turn / 3 % 5], y = ys[turn / 15];
      plain.Shoot(static_cast<int32_t>(turn));
      const GuardedMemory<uint8_t> luma(plain.luma.values);
      const GuardedMemory<uint8_t> chroma(plain.chroma);
      const GuardedMemory<uint16_t> disparity(plain.map.values);
      const uint32_t status = zuQelRT_Bokeh_ZU4410_DisparityBase_Expansion_CPU(
          luma.data(), chroma.data(), disparity.data(), x,
          static_cast<uint32_t>(y));
      plain.Render(x, y);
      weights.insert(plain.weights.values.begin(), plain.weights.values.end());
      ASSERT_TRUE(status == 0 &&
                  std::ranges::equal(disparity.span(), plain.map.values) &&
                  std::ranges::equal(luma.span(), plain.luma.values) &&
                  std::ranges::equal(chroma.span(), plain.chroma))
          << "turn " << turn << " of " << width << " x " << height;
      const Lines lines = log.Take();
      if (i > 0 || turn > 0) continue;
      EXPECT_EQ(
          lines,
          (Lines{"pindle PreviewWidth w = 64, h = 48",
                 "pindle Depth w = 16, h = 12", "uwMaxDisp = 575\n",
                 "uwMinDisp = 100\n",
                 "(a_dFocusX,a_dFocusY)=(8,6), a_dReX = 32, a_dReY = 24 \n",
                 "FocusDisp = 351\n", "pindle uwScaleW = 32, uwScaleH = 24 ",
                 "pindle uwScaleW = 64, uwScaleH = 48 ",
                 "Bokeh_ZU4410_DisparityBase_Expansion take # ms"}));
    }
  }
  EXPECT_EQ(weights.size(), 256U) << "not every weight was there";
}

}  // namespace
}  // namespace zuqel
