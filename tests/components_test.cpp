// Components, clean-ups and filters of masks beside plain forms of themselves,
// on masks with no byte behind them that may be touched.
#include "depth/components.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <functional>
#include <string>
#include <vector>

#include "depth/boundary_blur.h"
#include "depth/component_cleanup.h"
#include "depth/morphology.h"
#include "depth/refocus_refinement.h"
#include "guarded_memory.h"
#include "test_scene.h"

namespace zuqel {
namespace {

struct Mask {
  int width = 0, height = 0;
  std::vector<uint8_t> bytes =
      std::vector<uint8_t>(Plane<int>{nullptr, width, height}.size());

  // Null outside.
  uint8_t* At(int x, int y) {
    const bool is_inside = x >= 0 && y >= 0 && x < width && y < height;
    return is_inside ? bytes.data() + x + int64_t{y} * width : nullptr;
  }
  // Calls visit(x, y, byte) in raster order.
  void Visit(auto visit) {
    for (int y = 0; y < height; ++y) {
      for (int x = 0; x < width; ++x) visit(x, y, *At(x, y));
    }
  }
  void SetRing(int inset, uint8_t value) {
    Visit([&](int x, int y, uint8_t& byte) {
      const int place = std::min({x, y, width - 1 - x, height - 1 - y});
      if (place == inset) byte = value;
    });
  }
  bool operator==(const Mask&) const = default;
};

// What kernel(in, out) makes; nothing when it says that it made nothing.
Mask Make(const Mask& mask, bool is_in_place, auto kernel) {
  const GuardedMemory<uint8_t> in(mask.bytes), out(mask.bytes.size());
  uint8_t* made = is_in_place ? in.data() : out.data();
  if (mask.bytes.empty()) made = nullptr;
  const Plane<const uint8_t> from = {in.data(), mask.width, mask.height};
  if (!kernel(from, Plane<uint8_t>{made, mask.width, mask.height})) return {};
  return {mask.width, mask.height, {made, made + in.size()}};
}

// Calls check(mask, random) with shapes and noise of two or more values, in
// sizes around those of words and rings, with and without a clear border.
void ForEachMask(size_t most_pixels, auto check) {
  TestRandom random;
  for (int k = 0; k < 500 && !testing::Test::HasFailure(); ++k) {
    Mask mask = {random(k % 3 == 0 ? 6 : 140), random(k % 2 == 0 ? 6 : 40)};
    const int set = random(101), others = k % 5 == 0 ? random(101) : 0;
    const bool has_rings = k % 16 == 5;
    mask.Visit([&](int x, int y, uint8_t& byte) {
      const int dx = x - mask.width / 2, drop = dx > 0 && !has_rings ? 1 : 0;
      const int dy = std::abs(y - mask.height / 2 - drop);
      bool is_set = random(100) < set;
      if (k % 8 == 1) is_set = x == 0 || y == 0;
      if (k % 8 == 2) is_set = x % 2 == 1 || y == mask.height - 2;
      if (k % 8 == 3) is_set = y % 2 == 1 || x == mask.width - 2;
      if (k % 8 == 4) is_set = (x + y) % 2 == 0;
      // Nested rings; a spiral where their right half lies one step lower.
      const int ring =
          (std::max(std::abs(dx), dy) + drop) / (has_rings ? 4 : 1);
      if (k % 8 == 5) is_set = ring % 2 == 0;
      byte = is_set ? 255 : 0;
      if (random(100) < others) byte = static_cast<uint8_t>(random(256));
    });
    if (mask.bytes.size() > most_pixels) continue;
    SCOPED_TRACE(testing::Message() << mask.width << " x " << mask.height);
    check(mask, random);
    mask.SetRing(0, 0);
    check(mask, random);
  }
}

struct Labelled {
  std::vector<uint32_t> labels, areas;
  uint32_t largest = 0;
};

// Pixel by pixel; where labels meet, all that became one of them become the
// smaller one.
Labelled PlainLabel(const Mask& mask, size_t limit) {
  const auto width = static_cast<size_t>(mask.width);
  const size_t size = mask.bytes.size();
  Labelled made = {std::vector<uint32_t>(size), std::vector<uint32_t>(limit)};
  auto& [labels, areas, largest] = made;
  std::vector<uint32_t> least = {0};
  for (size_t i = width; i < size; ++i) {
    if (i % width == 0 || mask.bytes[i] != 255) continue;
    const uint8_t up = mask.bytes[i - width], left = mask.bytes[i - 1];
    if (up == 255 && left == 255) {
      labels[i] = std::min(labels[i - width], labels[i - 1]);
      const uint32_t a = least[labels[i - width]], b = least[labels[i - 1]];
      if (a != b) std::ranges::replace(least, std::max(a, b), std::min(a, b));
    } else if ((up == 255 && left == 0) || (up == 0 && left == 255)) {
      labels[i] = labels[up == 255 ? i - width : i - 1];
    } else if (up == 0 && left == 0) {
      labels[i] = static_cast<uint32_t>(least.size());
      least.push_back(labels[i]);
    }
  }
  for (size_t i = 0; i < size; ++i) {
    labels[i] = limit == 0 ? 0 : least[std::min<size_t>(labels[i], limit - 1)];
    const bool is_last = i % width == width - 1 || i + width >= size;
    if (labels[i] != 0 && !is_last) ++areas[labels[i]];
  }
  for (uint32_t label = 1; label + 1 < limit; ++label) {
    if (areas[label] > areas[largest]) largest = label;
  }
  return made;
}

TEST(LabelComponents, IsAsPixelByPixel) {
  Buffer scratch;
  ForEachMask(SIZE_MAX, [&](const Mask& mask, auto&) {
    for (const size_t limit : {0U, 1U, 2U, 3U, 5U, 40U, 65535U}) {
      const GuardedMemory<uint8_t> in(mask.bytes);
      const GuardedMemory<uint32_t> labels(
          std::vector<uint32_t>(in.size(), 77)),
          areas(std::vector<uint32_t>(limit, 77));
      const auto largest =
          LabelComponents({in.data(), mask.width, mask.height}, labels.span(),
                          areas.span(), scratch);
      const Labelled plain = PlainLabel(mask, limit);
      EXPECT_TRUE(std::ranges::equal(labels.span(), plain.labels)) << limit;
      EXPECT_TRUE(std::ranges::equal(areas.span(), plain.areas)) << limit;
      EXPECT_EQ(largest, plain.largest) << limit;
    }
  });
}

enum CleanUp { kKeepFocus, kKeepLarge, kKeepBorder, kDropSpecks };

// Step by step. The first two make the area that the last takes.
Mask PlainClean(CleanUp kind, Mask mask, MaskPoint point, uint32_t& area) {
  const bool is_prune = kind <= kKeepLarge;
  mask.SetRing(0, 0);
  if (kind == kKeepBorder) mask.SetRing(1, 255);
  auto [labels, areas, unused] = PlainLabel(mask, 65535);
  const auto at = static_cast<uint64_t>(point.x + point.y * mask.width);
  const uint32_t focus = at < labels.size() ? labels[at] : 0;  // < 0: huge
  const uint32_t ring = mask.At(1, 1) ? labels[size_t(mask.width) + 1] : 0;
  uint32_t limit = *std::max_element(areas.begin(), areas.end());
  limit = kind == kKeepFocus ? limit * 2 : limit * 80 / 100;
  if (kind == kDropSpecks) limit = area / 200;
  for (size_t i = 0; i < labels.size(); ++i) {
    const uint32_t label = labels[i];
    const bool is_small = areas[label] != 0 && areas[label] <= limit;
    bool is_kept = !is_small || (is_prune && label == focus);
    if (kind == kKeepBorder) is_kept = label == focus || label == ring;
    if (!is_kept) mask.bytes[i] = 0;
  }
  if (is_prune) area = areas[focus];
  const int right = mask.width - 1, down = mask.height - 1;
  const int steps = is_prune ? 1 : 2;
  const auto refill = [&mask](int x, int y, int from_x, int from_y) {
    const uint8_t* from = mask.At(from_x, from_y);
    if (from != nullptr) *mask.At(x, y) = *from;
  };
  for (int y = 0; y <= down; ++y) refill(0, y, steps, y);
  for (int y = 0; y <= down; ++y) refill(right, y, right - steps, y);
  for (int x = 0; x <= right; ++x) refill(x, 0, x, steps);
  for (int x = 0; x <= right; ++x) refill(x, down, x, down - steps);
  return mask;
}

// Runs each clean-up beside its plain form.
void ExpectPlain(const Mask& mask, MaskPoint focus, uint32_t given_area,
                 CleanupScratch& scratch) {
  testing::internal::CaptureStdout();
  for (const CleanUp kind :
       {kKeepFocus, kKeepLarge, kKeepBorder, kDropSpecks}) {
    uint32_t area = given_area, plain_area = given_area;
    const Mask made = Make(mask, /*is_in_place=*/false, [&](auto in, auto out) {
      if (kind == kDropSpecks) {
        return RemoveSpecks(in, area, scratch, out);
      }
      return kind == kKeepBorder
                 ? KeepFocusAndBorderComponents(in, focus, scratch, out)
                 : PruneComponents(in, focus, kind == kKeepFocus, scratch, out,
                                   &area);
    });
    EXPECT_EQ(made, PlainClean(kind, mask, focus, plain_area)) << kind;
    EXPECT_EQ(area, plain_area) << kind;
  }
  EXPECT_EQ(testing::internal::GetCapturedStdout(),
            "FocusComponentArea=" + std::to_string(given_area) + "\n");
}

// With a focus inside; and there, in a later row or outside.
TEST(CleanUps, AreAsStepByStep) {
  CleanupScratch scratch;
  ForEachMask(SIZE_MAX, [&](const Mask& mask, auto& random) {
    const auto area = static_cast<uint32_t>(random(2000));
    ExpectPlain(mask, {mask.width / 2, mask.height / 2}, area, scratch);
    ExpectPlain(mask, {random(200) - 3, random(30) - 1}, area, scratch);
  });
}

TEST(CleanUps, ManyLabelsAndNoMemory) {
  CleanupScratch scratch;
  TestRandom random;
  Mask mask = {800, 700};
  for (uint8_t& byte : mask.bytes) byte = random(100) < 30 ? 255 : 0;
  const auto labels = PlainLabel(mask, 100000).labels;
  ASSERT_GT(*std::max_element(labels.begin(), labels.end()), 66000U);
  ExpectPlain(mask, {398, 398}, 400, scratch);
  // Without memory for the labelling, nothing is read or written.
  const Plane<uint8_t> large = {nullptr, 20000, 15000};
  EXPECT_FALSE(KeepFocusAndBorderComponents(large, {}, scratch, large));
}

// Each pixel with all that are near it.
Mask PlainFilter(Mask mask, int radius, auto op) {
  Mask made = mask;
  made.Visit([&](int x, int y, uint8_t& byte) {
    mask.Visit([&](int near_x, int near_y, uint8_t near) {
      const int step = std::max(std::abs(near_x - x), std::abs(near_y - y));
      if (step <= radius) byte = op(byte, near);
    });
  });
  return made;
}

TEST(SquareFilters, TakeInAllThatIsNear) {
  Buffer scratch;
  const auto check = [&](const Mask& mask, auto filter, auto op) {
    for (const int radius : {0, 1, 2, 4, 32, 255}) {
      const auto kernel = [&](auto in, auto out) {
        return filter(in, static_cast<uint8_t>(radius), scratch, out);
      };
      const Mask plain = PlainFilter(mask, radius, op);
      EXPECT_EQ(Make(mask, /*is_in_place=*/false, kernel), plain) << radius;
      EXPECT_EQ(Make(mask, /*is_in_place=*/true, kernel), plain) << radius;
    }
  };
  ForEachMask(500, [&](const Mask& mask, auto&) {
    check(mask, DilateMask, std::bit_or<uint8_t>());
    check(mask, ErodeMin, [](auto a, auto b) { return std::min(a, b); });
    check(mask, DilateMax, [](auto a, auto b) { return std::max(a, b); });
  });
}

void PlainBlur(Mask& map, Mask& marks) {
  const auto smooth = [&](int x, int y) {
    int sum = 0, count = 0;
    for (int k = 0; k < 49 && *marks.At(x, y) != 0; ++k) {
      const int near_x = x + k % 7 - 3, near_y = y + k / 7 - 3;
      const uint8_t* mark = marks.At(near_x, near_y);
      if (mark == nullptr || *mark == 255) continue;
      sum += *map.At(near_x, near_y);
      ++count;
    }
    if (count == 0) return;
    *map.At(x, y) = static_cast<uint8_t>(sum / count);
    *marks.At(x, y) = 0;
  };
  const auto size = static_cast<int>(map.bytes.size()), width = map.width;
  for (int i = 0; i < size; ++i) smooth(i % width, i / width);
  for (int i = size - 1; i >= 0; --i) smooth(i % width, i / width);
}

TEST(BoundaryBlur, IsThatOfEachPixelInTurn) {
  ForEachMask(SIZE_MAX, [](Mask marks, auto& random) {
    Mask map = marks, made_map;
    for (uint8_t& byte : map.bytes) byte = static_cast<uint8_t>(random(256));
    const Mask made = Make(marks, true, [&](auto, auto marks_plane) {
      made_map = Make(map, true, [&](auto, auto map_plane) {
        return BoundaryBlur(map_plane, marks_plane), true;
      });
      return true;
    });
    PlainBlur(map, marks);
    EXPECT_TRUE(made_map == map && made == marks);
  });
}

// One scratch for all sizes.
TEST(RefineRefocusMap, IsTheChainOfItsSteps) {
  RefinementScratch scratch;
  ForEachMask(1500, [&](Mask map, auto& random) {
    // Levels around the threshold, and far from it.
    for (uint8_t& byte : map.bytes) {
      byte = static_cast<uint8_t>((byte & 128) + random(2) * random(128));
    }
    const MaskPoint focus = {random(map.width + 2), random(map.height + 2)};
    const Mask made = Make(map, random(2) == 0, [&](auto in, auto out) {
      return RefineRefocusMap(in, focus, scratch, out);
    });
    uint32_t unused = 0;
    Mask a = map;
    for (uint8_t& byte : a.bytes) byte = byte < 128 ? 255 : 0;
    const Mask b = PlainClean(kKeepFocus, a, focus, unused);
    Mask other = b;
    for (uint8_t& byte : other.bytes) byte ^= 255;
    const Mask c = PlainClean(kKeepBorder, other, focus, unused);
    for (size_t i = 0; i < a.bytes.size(); ++i) {
      a.bytes[i] ^= b.bytes[i];
      if (other.bytes[i] != c.bytes[i]) a.bytes[i] = 255;
    }
    Mask changes = PlainFilter(a, 2, std::bit_or<uint8_t>());
    PlainBlur(map, changes);
    EXPECT_EQ(made, map) << focus.x << ", " << focus.y;
  });
}

}  // namespace
}  // namespace zuqel
