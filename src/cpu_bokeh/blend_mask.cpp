// Finds out where a mask is uniform, and enlarges the rest.
#include "cpu_bokeh/blend_mask.h"

#include <cstddef>
#include <cstring>

namespace zuqel {
namespace {

// The bits that any sample has, and those that all have, eight samples at once:
// to take some twice changes nothing.
struct CommonBits {
  uint64_t any = 0;
  uint64_t all = UINT64_MAX;

  void Take(const uint8_t* samples, size_t count) {
    constexpr size_t kEight = sizeof(uint64_t);
    for (size_t x = 0; x + kEight <= count; x += kEight) {
      TakeEight(samples + x);
    }
    if (count >= kEight) return TakeEight(samples + count - kEight);
    for (size_t x = 0; x < count; ++x) {
      any |= samples[x];
      all &= uint64_t{samples[x]} * 0x0101010101010101;
    }
  }

 private:
  void TakeEight(const uint8_t* samples) {
    uint64_t eight = 0;
    std::memcpy(&eight, samples, sizeof(eight));
    any |= eight;
    all &= eight;
  }
};

}  // namespace

bool BlendMask::Reserve(ImageSize map, ImageSize frame) {
  return rows_.Reserve(map, frame) &&
         of_map_.Reserve(ByteCount(1, map.height, sizeof(Uniform))) &&
         row_.Reserve(ByteCount(frame.width, 1, 1));
}

void BlendMask::Begin(Plane<const uint8_t> map, ImageSize frame) {
  map_ = map;
  frame_ = frame;
  is_empty_ = map.size() == 0 || frame.pixel_count() == 0;
  if (is_empty_) return;
  segments_ = Segments(frame.width);
  Rewind();
  for (int32_t y = 0; y < map.height; ++y) of_map()[y] = {0, 0};
  for (int32_t i = 0; i < segments_.count(); ++i) {
    const auto [first, last] =
        rows_.SourceColumns(segments_.begin(i), segments_.end(i));
    for (int32_t y = 0; y < map.height; ++y) {
      CommonBits bits;
      bits.Take(map.row(y) + first, static_cast<size_t>(last - first) + 1);
      of_map()[y].zero |= uint64_t{bits.any == 0 ? 1U : 0U} << i;
      of_map()[y].full |= uint64_t{bits.all == UINT64_MAX ? 1U : 0U} << i;
    }
  }
}

BlendMask::Uniform BlendMask::UniformSegments(int32_t y) const {
  Uniform both = {segments_.all(), segments_.all()};
  const auto [first, last] = rows_.SourceRows(y);
  for (int32_t row = first; row <= last; ++row) {
    both.zero &= of_map()[row].zero;
    both.full &= of_map()[row].full;
  }
  return both;
}

const uint8_t* BlendMask::Row(int32_t y, uint64_t bits) {
  if (y == made_) return row_.bytes();
  made_ = y;
  const auto rows = [&](int32_t n) { return map_.row(n); };
  rows_.CombineRow(y, rows);
  segments_.ForEachRun(bits, [&](int32_t begin, int32_t end) {
    rows_.FinishRow(begin, end, row_.bytes());
  });
  return row_.bytes();
}

}  // namespace zuqel
