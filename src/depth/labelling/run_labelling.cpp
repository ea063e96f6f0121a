// Labels runs word by word; bit operations find the runs that meet.
#include "depth/labelling/run_labelling.h"

#include <algorithm>

namespace zuqel {
namespace {

// The lowest set bits, `count` at most.
uint64_t LowestOf(uint64_t bits, size_t count) {
  uint64_t higher = bits;
  for (; higher != 0 && count > 0; --count) higher &= higher - 1;
  return bits ^ higher;
}

}  // namespace

void RunLabelling::LabelRuns(int32_t height) {
  for (size_t word = 0; height > 0 && word < bits_.words; ++word) {
    const size_t count = BitCount(bits_.starts[word]);
    std::fill_n(run_labels_ + last_run_ + 1, count, 0U);
    last_run_ += count;
  }
  for (int32_t y = 1; y < height; ++y) {
    if (LabelsCanSaturate()) SplitSaturated(y);
    LabelRow(y);
  }
}

bool RunLabelling::LabelsCanSaturate() const {
  return next_label_ + bits_.words * kWordBits / 2 > label_limit_;
}

void RunLabelling::SplitSaturated(int32_t y) {
  const size_t row = bits_.row(y);
  const uint64_t* above = bits_.bits + row - bits_.words;
  if (!has_saturated_) std::copy_n(above, bits_.words, unsaturated_);
  has_saturated_ = true;
  size_t next_label = next_label_;
  uint64_t carry = 0;
  uint64_t last = 0;  // the bit of `unsaturated` before this word's
  for (size_t word = 0; word < bits_.words; ++word) {
    const uint64_t set = bits_.bits[row + word];
    uint64_t& starts = bits_.starts[row + word];
    const uint64_t at_column_0 = word == 0 ? set & 1 : 0;
    const uint64_t new_labels = starts & ~above[word] & ~at_column_0;
    const size_t room = label_limit_ - std::min(label_limit_, next_label);
    const uint64_t seeds =
        (set & unsaturated_[word]) | at_column_0 | LowestOf(new_labels, room);
    next_label += BitCount(new_labels);
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

void RunLabelling::LabelRow(int32_t y) {
  const size_t row = bits_.row(y);
  const uint32_t* above = run_labels_ + last_run_above_;
  last_run_above_ = last_run_;
  for (size_t word = 0; word < bits_.words; ++word) {
    const uint64_t up = bits_.bits[row - bits_.words + word];
    const uint64_t up_starts = bits_.starts[row - bits_.words + word];
    const uint64_t set = bits_.bits[row + word];
    const uint64_t starts = bits_.starts[row + word];
    const uint32_t* runs = run_labels_ + last_run_;
    const bool at_column_0 = word == 0 && (starts & 1) != 0;
    if (at_column_0) run_labels_[++last_run_] = 0;
    AssignLabels(starts ^ (at_column_0 ? 1 : 0), up, up_starts, above);

    // Runs above that start later join the run below them.
    for (uint64_t meets = up_starts & set & ~starts; meets != 0;
         meets &= meets - 1) {
      const uint64_t upto = UpToLowest(meets);
      sets_.Unite(above[BitCount(up_starts & upto)],
                  runs[BitCount(starts & upto)]);
    }
    const uint64_t left = Shifted(bits_.bits + row, word);
    for (uint64_t splits = starts & left; splits != 0; splits &= splits - 1) {
      const size_t run = BitCount(starts & UpToLowest(splits));
      sets_.Unite(runs[run - 1], runs[run]);
    }
    above += BitCount(up_starts);
  }
}

void RunLabelling::AssignLabels(uint64_t starts, uint64_t up,
                                uint64_t up_starts, const uint32_t* above) {
  uint32_t next_label = next_label_;
  uint32_t* run_label = run_labels_ + last_run_;
  for (; starts != 0; starts &= starts - 1) {
    const uint64_t upto = UpToLowest(starts);
    const uint32_t above_label = above[BitCount(up_starts & upto)];
    // Without a branch: branches on noise mispredict.
    const uint32_t is_new = (up & upto & starts) == 0 ? 1 : 0;
    sets_.Add(next_label);
    *++run_label = above_label ^ ((above_label ^ next_label) & (0 - is_new));
    next_label += is_new;
  }
  next_label_ = next_label;
  last_run_ = static_cast<size_t>(run_label - run_labels_);
}

}  // namespace zuqel
