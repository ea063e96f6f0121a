// Walks along an axis and records the weights.
#include "cpu_bokeh/resize/axis_taps.h"

#include <algorithm>

namespace zuqel {
namespace {

constexpr int64_t kOne = 256;  // a whole sample

}  // namespace

bool AxisTaps::Reserve(int32_t source, int32_t target) {
  if (source == source_ && target == target_) return true;
  source_ = target_ = 0;
  // Shrinking, a source sample has a part in two target samples at most.
  const size_t weights =
      static_cast<size_t>(source) + static_cast<size_t>(target) * (kPadded + 1);
  return entry_bytes_.Reserve(static_cast<size_t>(target) * sizeof(Entry)) &&
         weight_bytes_.Reserve(weights * sizeof(uint16_t)) &&
         packed_bytes_.Reserve(static_cast<size_t>(target) *
                               sizeof(PackedTaps));
}

void AxisTaps::Walk(int32_t source, int32_t target) {
  if (source == source_ && target == target_) return;
  source_ = source;
  target_ = target;
  entry_count_ = weight_count_ = 0;
  most_ = 0;
  if (source <= target) {
    Grow(source, target);
  } else {
    Shrink(source, target);
  }
  if (most_ <= kPadded) Pack();
}

void AxisTaps::Pack() {
  auto* packed = reinterpret_cast<PackedTaps*>(packed_bytes_.bytes());
  for (size_t t = 0; t < entry_count_; ++t) {
    const Taps taps = (*this)[static_cast<int32_t>(t)];
    uint64_t word = 0;
    for (int32_t i = 0; i < kPadded; ++i) word = word << 16 | taps.weights[i];
    packed[t] = {word, taps.first};
  }
}

void AxisTaps::Begin(int64_t first) {
  entries()[entry_count_] = {static_cast<int32_t>(first), 0, weight_count_};
}

void AxisTaps::Add(int64_t weight) {
  weights()[weight_count_++] = static_cast<uint16_t>(weight);
  ++entries()[entry_count_].count;
}

void AxisTaps::End() {
  const int32_t count = entries()[entry_count_++].count;
  most_ = std::max(most_, count);
  for (int32_t i = count; i < kPadded; ++i) weights()[weight_count_++] = 0;
}

void AxisTaps::Grow(int64_t source, int64_t target) {
  const int64_t start = (source - target) * (kOne / 2);
  int64_t position = start / target;
  int64_t carried = start % target;
  const int64_t step = source * kOne / target;
  const int64_t remainder = source * kOne % target;
  for (int64_t t = 0; t < target; ++t) {
    const int64_t current = std::max<int64_t>(position, 0) / kOne;
    const int64_t share = std::max<int64_t>(position, 0) % kOne;
    Begin(current);
    if (share == 0 || current + 1 >= source) {
      Add(kOne);
    } else {
      Add(kOne - share);
      Add(share);
    }
    End();
    position += step;
    carried += remainder;
    if (carried < target) continue;
    carried -= target;
    ++position;
  }
}

void AxisTaps::Shrink(int64_t source, int64_t target) {
  const int64_t step = target * kOne / source;
  const int64_t remainder = target * kOne % source;
  int64_t carried = 0;
  int64_t missing = kOne;  // of the current target sample
  Begin(0);
  for (int64_t s = 0; s < source; ++s) {
    int64_t cover = step;
    carried += remainder;
    if (carried >= source) {
      carried -= source;
      ++cover;
    }
    if (cover < missing) {
      Add(cover);
      missing -= cover;
      continue;
    }
    Add(missing);
    End();
    cover -= missing;
    // The coverages add up to `target` whole samples: the last source sample
    // completes the last target sample, and nothing is left of it.
    if (s == source - 1) return;
    Begin(cover > 0 ? s : s + 1);
    if (cover > 0) Add(cover);
    missing = kOne - cover;
  }
}

}  // namespace zuqel
