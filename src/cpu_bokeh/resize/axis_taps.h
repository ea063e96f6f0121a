// The source samples and weights of each sample of a resized axis.
#ifndef ZUQEL_CPU_BOKEH_RESIZE_AXIS_TAPS_H_
#define ZUQEL_CPU_BOKEH_RESIZE_AXIS_TAPS_H_

#include <cstddef>
#include <cstdint>

#include "base/buffer.h"

namespace zuqel {

// Each target sample is a weighted sum of adjacent source samples; the weights
// are in 1/256 and add up to 256.
class AxisTaps {
 public:
  struct Taps {
    int32_t first;  // source sample
    int32_t count;
    const uint16_t* weights;  // padded with zeros to kPadded
  };
  static constexpr int32_t kPadded = 4;

  // Up to four weights in one word of 16-bit lanes, the last one lowest. The
  // top lane of its product with four samples in such lanes, the first one
  // lowest, is their weighted sum. No lane overflows, as the weights add up to
  // 256.
  struct PackedTaps {
    uint64_t weights;
    int64_t first;
  };

  // Makes room for a walk, and keeps the last one if it is the same; false when
  // there is no memory.
  [[nodiscard]] bool Reserve(int32_t source, int32_t target);

  // Walks along an axis of `source` samples that becomes `target` long, neither
  // 0, unless it has already. There is room for it.
  //
  // Where it grows, target sample t interpolates at the source position
  // (t + 0.5) * source / target - 0.5, truncated to 1/256; the end samples are
  // repeated outside. Where it shrinks, every source sample covers
  // target / source of a target sample, truncated to 1/256; the remainder is
  // carried along the axis, so that source sample s ends at
  // floor((s + 1) * target * 256 / source).
  void Walk(int32_t source, int32_t target);

  [[nodiscard]] Taps operator[](int32_t target) const {
    const Entry& entry = entries()[target];
    return {entry.first, entry.count, weights() + entry.offset};
  }
  // Valid if most() is at most kPadded.
  [[nodiscard]] const PackedTaps* packed() const {
    return reinterpret_cast<const PackedTaps*>(packed_bytes_.bytes());
  }
  // The largest count.
  [[nodiscard]] int32_t most() const { return most_; }

 private:
  struct Entry {
    int32_t first;
    int32_t count;
    size_t offset;  // of its weights
  };

  void Grow(int64_t source, int64_t target);
  void Shrink(int64_t source, int64_t target);
  void Begin(int64_t first);
  void Add(int64_t weight);
  void End();
  void Pack();

  [[nodiscard]] Entry* entries() const {
    return reinterpret_cast<Entry*>(entry_bytes_.bytes());
  }
  [[nodiscard]] uint16_t* weights() const {
    return reinterpret_cast<uint16_t*>(weight_bytes_.bytes());
  }

  Buffer entry_bytes_;
  Buffer weight_bytes_;
  Buffer packed_bytes_;
  // The axis that was walked along.
  int32_t source_ = 0;
  int32_t target_ = 0;
  size_t entry_count_ = 0;
  size_t weight_count_ = 0;
  int32_t most_ = 0;
};

}  // namespace zuqel

#endif  // ZUQEL_CPU_BOKEH_RESIZE_AXIS_TAPS_H_
