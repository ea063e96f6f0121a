// Labels runs row by row; bit operations find the runs that meet. Where a run
// touches its row above is looked up by the column of a start.
#include "depth/labelling/run_labelling.h"

#include <algorithm>
#include <bit>
#include <utility>

#include "base/kernel_set.h"
#include "depth/labelling/mask_kernels.h"

namespace zuqel {
namespace {

size_t CountTrailingZeros(uint64_t bits) {
  return static_cast<size_t>(std::countr_zero(bits));
}

size_t HighestBit(uint64_t bits) {
  return (kWordBits - 1) ^ static_cast<size_t>(std::countl_zero(bits));
}

// Branches on noise mispredict, so that choices are made by masks.
uint32_t MaskIf(bool condition) {
  return 0 - static_cast<uint32_t>(condition);
}

// All bits up to the lowest one that is set.
uint64_t UpToLowest(uint64_t bits) {
  return bits ^ (bits - 1);
}

// The bits of a row, one pixel to the right.
uint64_t Shifted(const uint64_t* row, size_t word) {
  return row[word] << 1 | (word > 0 ? row[word - 1] >> (kWordBits - 1) : 0);
}

// The lowest set bits, `count` at most.
uint64_t LowestOf(uint64_t bits, size_t count) {
  uint64_t higher = bits;
  for (; higher != 0 && count > 0; --count) higher &= higher - 1;
  return bits ^ higher;
}

// What the scratch memory holds.
struct ScratchLayout {
  size_t words, height, pixels;

  explicit ScratchLayout(ImageSize size)
      : words((static_cast<size_t>(size.width) + kWordBits - 1) / kWordBits),
        height(static_cast<size_t>(size.height)),
        pixels(static_cast<size_t>(size.width) * height) {}

  // A clear one is above the first.
  [[nodiscard]] size_t bit_words() const { return words * (height + 1); }
  // One entry for each pixel, label 0 and the eight that can be read.
  [[nodiscard]] size_t entries() const { return pixels + 10; }
  [[nodiscard]] size_t bytes() const {
    return 8 * (2 * bit_words() + 4 * words) +
           4 * (3 * entries() + 2 * words * kWordBits + height + 1);
  }
};

class RunLabelling {
 public:
  RunLabelling(Plane<const uint8_t> mask, MaskBorder border, size_t label_limit,
               const Buffer& scratch)
      : mask_(mask),
        border_(border),
        label_limit_(label_limit),
        layout_(mask.extent()) {
    auto* bits = reinterpret_cast<uint64_t*>(scratch.bytes());
    const auto take_bits = [&bits](size_t count) {
      return std::exchange(bits, bits + count);
    };
    set_ = take_bits(layout_.bit_words());
    starts_ = take_bits(layout_.bit_words());
    others_ = take_bits(layout_.words);
    others_above_ = take_bits(layout_.words);
    zeros_ = take_bits(layout_.words);
    unsaturated_ = take_bits(layout_.words);
    auto* entries = reinterpret_cast<uint32_t*>(bits);
    const auto take_entries = [&entries](size_t count) {
      return std::exchange(entries, entries + count);
    };
    run_labels_ = take_entries(layout_.entries());
    parents_ = take_entries(layout_.entries());
    areas_ = take_entries(layout_.entries());
    labels_ = take_entries(layout_.words * kWordBits);
    labels_above_ = take_entries(layout_.words * kWordBits);
    runs_before_ = take_entries(layout_.height + 1);
  }

  ComponentRuns Run() {
    std::fill_n(set_, layout_.words, 0U);
    std::fill_n(starts_, layout_.words, 0U);
    std::fill_n(others_, layout_.words, 0U);
    set_ += layout_.words;
    starts_ += layout_.words;
    run_labels_[0] = 0;
    parents_[0] = 0;
    areas_[0] = 0;
    runs_before_[0] = 0;
    const auto& kernels = Kernels<MaskKernels>();
    bool has_others_above = false;
    for (int32_t y = 0; y < mask_.height; ++y) {
      std::swap(others_, others_above_);
      std::swap(labels_, labels_above_);
      const bool has_others =
          kernels.find_bits(mask_.row(y), static_cast<size_t>(mask_.width),
                            RowOf(set_, y), others_);
      ApplyBorder(y);
      FindStarts(y, has_others || has_others_above);
      has_others_above = has_others;
      if (LabelsCanSaturate()) SplitSaturated(y);
      if (has_zeros_) {
        LabelRow<true>(y);
      } else {
        LabelRow<false>(y);
      }
      runs_before_[y + 1] = static_cast<uint32_t>(last_run_);
    }
    UncountEdges();
    Resolve();
    return {layout_.words,        set_,         starts_,
            run_labels_,          runs_before_, {parents_, next_label_},
            {areas_, next_label_}};
  }

 private:
  template <typename T>
  T* RowOf(T* rows, int32_t y) const {
    return rows + static_cast<ptrdiff_t>(layout_.words) * y;
  }

  // Each label that the next row may give becomes its own parent, without an
  // area.
  void ReserveLabels() {
    const size_t end = std::min(next_label_ + layout_.words * kWordBits / 2,
                                layout_.entries());
    for (; reserved_ < end; ++reserved_) {
      parents_[reserved_] = static_cast<uint32_t>(reserved_);
      areas_[reserved_] = 0;
    }
  }

  void ApplyBorder(int32_t y) {
    if (border_ == MaskBorder::kAsItIs) return;
    uint64_t* set = RowOf(set_, y);
    const int32_t right = mask_.width - 1, bottom = mask_.height - 1;
    for (uint64_t* bits : {set, others_}) {
      if (y == 0 || y == bottom) std::fill_n(bits, layout_.words, 0U);
      if (right < 0) continue;
      bits[0] &= ~uint64_t{1};
      bits[right / 64] &= ~(uint64_t{1} << right % 64);
    }
    if (border_ == MaskBorder::kClear || right < 2 || y == 0 || y == bottom) {
      return;
    }
    const bool is_row = y == 1 || y == bottom - 1;
    const auto set_pixels = [&](int32_t first, int32_t last) {
      for (int32_t x = first; x <= last; ++x) {
        const uint64_t bit = uint64_t{1} << x % 64;
        set[x / 64] |= bit;
        others_[x / 64] &= ~bit;
      }
    };
    set_pixels(1, is_row ? right - 1 : 1);
    set_pixels(right - 1, right - 1);
  }

  // A run starts at a pixel without a left neighbour, or with one that has a
  // label of its own: 0, for those in row 0 and column 0, and for those with a
  // neighbour above or to their left that is neither clear nor set.
  void FindStarts(int32_t y, bool has_others) {
    const uint64_t* set = RowOf(set_, y);
    uint64_t* starts = RowOf(starts_, y);
    has_zeros_ = has_others || y == 0;
    for (size_t word = 0; word < layout_.words; ++word) {
      starts[word] = set[word] & ~Shifted(set, word);
    }
    if (layout_.words > 0 && (set[0] & 1) != 0) has_zeros_ = true;
    if (!has_zeros_) return;
    for (size_t word = 0; word < layout_.words; ++word) {
      uint64_t at = word == 0 ? 1 : 0;
      if (y == 0) at = starts[word];
      if (has_others) at |= others_above_[word] | Shifted(others_, word);
      zeros_[word] = set[word] & at;
      starts[word] |= zeros_[word];
    }
  }

  // True if the next row may get labels at or above the limit.
  [[nodiscard]] bool LabelsCanSaturate() const {
    return next_label_ + layout_.words * kWordBits / 2 > label_limit_;
  }

  // Pixel by pixel, a label at or above the limit is passed on up to the first
  // pixel of the run that lies below one with a smaller label. Another run
  // starts there; the pixels before it saturate to the last label.
  void SplitSaturated(int32_t y) {
    const uint64_t* above = RowOf(set_, y - 1);
    const uint64_t* row = RowOf(set_, y);
    uint64_t* row_starts = RowOf(starts_, y);
    if (!has_saturated_) std::copy_n(above, layout_.words, unsaturated_);
    has_saturated_ = true;
    size_t next_label = next_label_;
    uint64_t carry = 0;
    uint64_t last = 0;  // the bit of `unsaturated` before this word's
    for (size_t word = 0; word < layout_.words; ++word) {
      const uint64_t set = row[word];
      uint64_t& starts = row_starts[word];
      const uint64_t zeros = has_zeros_ ? zeros_[word] : 0;
      const uint64_t new_labels = starts & ~above[word] & ~zeros;
      const size_t room = label_limit_ - std::min(label_limit_, next_label);
      const uint64_t seeds =
          (set & unsaturated_[word]) | zeros | LowestOf(new_labels, room);
      next_label += static_cast<size_t>(std::popcount(new_labels));
      // The carry runs from the first seed of a run to its end; the bits before
      // the seed stay as they were.
      const uint64_t sum = set + seeds;
      const uint64_t unsaturated = set & (~(sum + carry) | seeds);
      carry = sum < set || sum + carry < sum ? 1 : 0;
      starts |= unsaturated & ~(unsaturated << 1 | last);
      last = unsaturated >> (kWordBits - 1);
      unsaturated_[word] = unsaturated;
    }
  }

  // A run's first pixel decides its label: 0, that of the run above it, or a
  // new one. A start's label is kept by its column, and that of a run which
  // goes on by the first column of each word.
  template <bool kHasZeros>
  void LabelRow(int32_t y) {
    const uint64_t* row = RowOf(set_, y);
    const uint64_t* row_starts = RowOf(starts_, y);
    const uint64_t* above = RowOf(set_, y - 1);
    const uint64_t* above_starts = RowOf(starts_, y - 1);
    ReserveLabels();
    uint32_t* const areas = areas_;
    uint32_t* run_label = run_labels_ + last_run_;
    uint32_t next_label = next_label_;
    uint32_t label = *run_label;
    uint32_t area = 0;         // of the last run, so far
    uint64_t zeros_below = 0;  // the last pixel, of those below set pixels
    for (size_t word = 0; word < layout_.words; ++word) {
      const uint64_t set = row[word];
      if (set == 0) {
        zeros_below = 0;
        continue;
      }
      const uint64_t starts = row_starts[word], up = above[word];
      const uint64_t up_stretches = above_starts[word] | 1;
      const uint64_t zeros = kHasZeros ? zeros_[word] : 0;
      uint32_t* labels = labels_ + word * kWordBits;
      const uint32_t* labels_up = labels_above_ + word * kWordBits;
      const uint32_t label_before = label;
      labels[0] = label;
      area += static_cast<uint32_t>(CountTrailingZeros(~set | starts));
      for (uint64_t rest = starts; rest != 0;) {
        const size_t begin = CountTrailingZeros(rest);
        const uint64_t upto = UpToLowest(rest);
        rest &= rest - 1;
        const size_t end = CountTrailingZeros((~set & ~upto) | rest);
        areas[label] += area;
        area = static_cast<uint32_t>(end - begin);
        const uint32_t label_up = labels_up[HighestBit(up_stretches & upto)];
        uint32_t is_new = 1 ^ (up >> begin & 1);
        label = label_up ^ ((label_up ^ next_label) & MaskIf(is_new != 0));
        if (kHasZeros && (zeros >> begin & 1) != 0) label = is_new = 0;
        labels[begin] = label;
        *++run_label = label;
        next_label += is_new;
      }

      // Runs above that start later join the run below them. The pixel after
      // one that has label 0 for its own reason is the first to meet the run
      // above both.
      uint64_t meets = above_starts[word];
      if (kHasZeros) {
        meets |= ((zeros & up) << 1 | zeros_below) & up;
        zeros_below = (zeros & up) >> (kWordBits - 1);
      }
      const uint64_t stretches = starts | 1;
      for (meets &= set & ~starts; meets != 0; meets &= meets - 1) {
        const uint64_t upto = UpToLowest(meets);
        Unite(labels_up[HighestBit(up_stretches & upto)],
              labels[HighestBit(stretches & upto)]);
      }
      if (!has_saturated_) continue;
      for (uint64_t splits = starts & Shifted(row, word) & ~zeros; splits != 0;
           splits &= splits - 1) {
        const uint64_t before = UpToLowest(splits) >> 1;
        Unite(
            before == 0 ? label_before : labels[HighestBit(stretches & before)],
            labels[CountTrailingZeros(splits)]);
      }
    }
    areas[label] += area;
    next_label_ = next_label;
    last_run_ = static_cast<size_t>(run_label - run_labels_);
  }

  // Links always point to smaller labels, so that a root is the smallest label
  // of its set. Each step links one of two chains to the other at a smaller
  // label.
  void Unite(uint32_t a, uint32_t b) {
    uint32_t* const parents = parents_;
    uint32_t parent_a = parents[a], parent_b = parents[b];
    while (parent_a != parent_b) {
      // Selected, not branched on, as either may be the smaller one.
      const bool is_a_smaller = parent_a < parent_b;
      const uint32_t larger = is_a_smaller ? b : a;
      const uint32_t parent = is_a_smaller ? parent_b : parent_a;
      b = is_a_smaller ? a : b;
      parent_b = is_a_smaller ? parent_a : parent_b;
      parents[larger] = parent_b;
      if (larger == parent) return;
      a = parent;
      parent_a = parents[a];
    }
  }

  // Takes the last row and column out of the areas again.
  void UncountEdges() {
    if (mask_.size() == 0) return;
    const int32_t right = mask_.width - 1, bottom = mask_.height - 1;
    for (int32_t y = 0; y < mask_.height; ++y) {
      const bool is_set = (RowOf(set_, y)[right / 64] >> right % 64 & 1) != 0;
      if (is_set) --areas_[run_labels_[runs_before_[y + 1]]];
    }
    const uint64_t* set = RowOf(set_, bottom);
    const uint64_t* starts = RowOf(starts_, bottom);
    const uint32_t* run_label = run_labels_ + runs_before_[bottom];
    for (int32_t x = 0; x < right; ++x) {
      run_label += starts[x / 64] >> x % 64 & 1;
      areas_[*run_label] -= set[x / 64] >> x % 64 & 1;
    }
  }

  // Points each label to its root, and adds its area to the root's. Links point
  // downward, so one pass in rising order does.
  void Resolve() {
    for (uint32_t label = 0; label < next_label_; ++label) {
      const uint32_t root = label < label_limit_ ? parents_[parents_[label]]
                                                 : parents_[label_limit_ - 1];
      parents_[label] = root;
      areas_[root] += areas_[label] & MaskIf(root != label);
    }
    for (uint32_t label = 0; label < next_label_; ++label) {
      areas_[label] &= MaskIf(parents_[label] == label);
    }
    areas_[0] = 0;
  }

  Plane<const uint8_t> mask_;
  MaskBorder border_;
  size_t label_limit_;
  ScratchLayout layout_;
  // Rows of the mask.
  uint64_t* set_;
  uint64_t* starts_;
  // Of this row: pixels that are neither clear nor set, starts with label 0,
  // and pixels with a label below the limit; these remain from the row above.
  uint64_t* others_;
  uint64_t* others_above_;
  uint64_t* zeros_;
  uint64_t* unsaturated_;
  uint32_t* run_labels_;
  uint32_t* runs_before_;
  uint32_t* labels_;
  uint32_t* labels_above_;
  uint32_t* parents_;
  uint32_t* areas_;
  bool has_zeros_ = false;
  bool has_saturated_ = false;
  size_t reserved_ = 1;
  uint32_t next_label_ = 1;
  size_t last_run_ = 0;
};

}  // namespace

uint32_t ComponentRuns::ComponentAt(size_t index, size_t width) const {
  const size_t y = index / width, x = index % width;
  const size_t row = y * words, word = x / kWordBits;
  if ((set[row + word] >> x % kWordBits & 1) == 0) return 0;
  size_t run = runs_before[y];
  for (size_t i = 0; i < word; ++i) {
    run += static_cast<size_t>(std::popcount(starts[row + i]));
  }
  const uint64_t upto = UpToLowest(uint64_t{1} << x % kWordBits);
  run += static_cast<size_t>(std::popcount(starts[row + word] & upto));
  return components[run_labels[run]];
}

bool ReserveLabelling(ImageSize size, Buffer& scratch) {
  const size_t bytes = ScratchLayout(size).bytes();
  return bytes <= INT32_MAX && scratch.Reserve(bytes);
}

ComponentRuns FindRuns(Plane<const uint8_t> mask, MaskBorder border,
                       size_t label_limit, const Buffer& scratch) {
  return RunLabelling(mask, border, label_limit, scratch).Run();
}

}  // namespace zuqel
