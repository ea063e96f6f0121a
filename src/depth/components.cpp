// Labels components run by run on rows of bits, which gives the same labels as
// pixel by pixel wherever the mask is two-valued.
#include "depth/components.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <numeric>

namespace zuqel {
namespace {

constexpr uint8_t kSet = 255;
constexpr int32_t kWordBits = 64;

// Union-find in which every link points to a smaller label, so that a root is
// the smallest label of its set.
class LabelSets {
 public:
  explicit LabelSets(std::span<uint32_t> parents) : parents_(parents) {}

  void Add(uint32_t label) { parents_[label] = label; }

  // Each step links one of two chains to the other at a smaller label.
  void Unite(uint32_t a, uint32_t b) {
    uint32_t parent_a = parents_[a];
    uint32_t parent_b = parents_[b];
    while (parent_a != parent_b) {
      if (parent_a < parent_b) {
        std::swap(a, b);
        std::swap(parent_a, parent_b);
      }
      parents_[a] = parent_b;
      if (a == parent_a) return;
      a = parent_a;
      parent_a = parents_[a];
    }
  }

  // Points each of the first `count` labels to its root. Links point downward,
  // so one pass in rising order does.
  void Flatten(size_t count) {
    for (size_t i = 0; i < count; ++i) parents_[i] = parents_[parents_[i]];
  }

  [[nodiscard]] uint32_t operator[](size_t label) const {
    return parents_[label];
  }

 private:
  std::span<uint32_t> parents_;
};

// A mask as rows of bits, the first pixel in the lowest bit of the first word,
// clear behind the last pixel. A run is a stretch of set pixels that no start
// but its own lies in.
struct MaskBits {
  size_t words;  // in a row
  uint64_t* bits;
  uint64_t* starts;

  [[nodiscard]] size_t row(int32_t y) const {
    return words * static_cast<size_t>(y);
  }
};

size_t WordsOfRow(int32_t width) {
  return (static_cast<size_t>(width) + kWordBits - 1) / kWordBits;
}

// The bits of a row one pixel further on.
uint64_t Shifted(const uint64_t* row, size_t word) {
  return row[word] << 1 | (word > 0 ? row[word - 1] >> (kWordBits - 1) : 0);
}

// All bits up to the lowest one that is set.
uint64_t UpToLowest(uint64_t bits) {
  return bits ^ (bits - 1);
}

size_t Count(uint64_t bits) {
  return static_cast<size_t>(std::popcount(bits));
}

// The lowest bits that are set, `count` at most.
uint64_t LowestOf(uint64_t bits, size_t count) {
  uint64_t rest = bits;
  for (; rest != 0 && count > 0; --count) rest &= rest - 1;
  return bits ^ rest;
}

// Up to 64 pixels as bits. `strange` gains bits when a pixel is neither 0 nor
// 255.
uint64_t BitsOf(const uint8_t* pixels, size_t count, uint64_t& strange) {
  uint64_t bits = 0;
  for (size_t i = 0; i < count; i += 8) {
    uint64_t eight = 0;
    if (count - i >= 8) {
      std::memcpy(&eight, pixels + i, 8);
    } else {
      std::memcpy(&eight, pixels + i, count - i);
    }
    const uint64_t ones = eight >> 7 & 0x0101010101010101U;
    strange |= ones * kSet ^ eight;
    bits |= (ones * 0x0102040810204080U >> 56) << i;
  }
  return bits;
}

// False when a pixel is neither 0 nor 255.
bool FindBits(Plane<const uint8_t> mask, const MaskBits& bits) {
  const auto width = static_cast<size_t>(mask.width);
  uint64_t strange = 0;
  for (int32_t y = 0; y < mask.height; ++y) {
    uint64_t* row = bits.bits + bits.row(y);
    uint64_t* starts = bits.starts + bits.row(y);
    for (size_t word = 0; word < bits.words; ++word) {
      const size_t x = word * kWordBits;
      const size_t count = std::min<size_t>(width - x, kWordBits);
      row[word] = BitsOf(mask.row(y) + x, count, strange);
      starts[word] = row[word] & ~Shifted(row, word);
    }
  }
  return strange == 0;
}

// Gives each run the label of its first pixel, in raster order. What touches row
// 0 or column 0 has label 0.
class RunLabelling {
 public:
  // `run_labels` has one entry before those of the runs; `unfolded` has room
  // for a row of bits.
  RunLabelling(const MaskBits& bits, LabelSets& sets, uint32_t* run_labels,
               uint64_t* unfolded, size_t label_limit)
      : bits_(bits),
        sets_(sets),
        run_labels_(run_labels),
        unfolded_(unfolded),
        label_limit_(label_limit) {
    sets_.Add(0);
    run_labels_[0] = 0;
  }

  void LabelRuns(int32_t height) {
    for (size_t word = 0; height > 0 && word < bits_.words; ++word) {
      const size_t count = Count(bits_.starts[word]);
      std::fill_n(run_labels_ + last_run_ + 1, count, 0U);
      last_run_ += count;
    }
    for (int32_t y = 1; y < height; ++y) {
      if (MayFold()) SplitFolded(y);
      LabelRow(y);
    }
  }

  // One more than the largest label given.
  [[nodiscard]] size_t next_label() const { return next_label_; }

 private:
  // Whether the next row may be given labels at or above the limit.
  [[nodiscard]] bool MayFold() const {
    return next_label_ + bits_.words * kWordBits / 2 > label_limit_;
  }

  void LabelRow(int32_t y) {
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
      GiveLabels(starts ^ (at_column_0 ? 1 : 0), up, up_starts, above);

      // Runs above that start further on join the run below them.
      for (uint64_t meets = up_starts & set & ~starts; meets != 0;
           meets &= meets - 1) {
        const uint64_t upto = UpToLowest(meets);
        sets_.Unite(above[Count(up_starts & upto)], runs[Count(starts & upto)]);
      }
      const uint64_t left = Shifted(bits_.bits + row, word);
      for (uint64_t splits = starts & left; splits != 0; splits &= splits - 1) {
        const size_t run = Count(starts & UpToLowest(splits));
        sets_.Unite(runs[run - 1], runs[run]);
      }
      above += Count(up_starts);
    }
  }

  // A run's first pixel decides which label it is given: that of the run above,
  // of those after `above`, or a new one.
  void GiveLabels(uint64_t starts, uint64_t up, uint64_t up_starts,
                  const uint32_t* above) {
    uint32_t next_label = next_label_;
    uint32_t* run_label = run_labels_ + last_run_;
    for (; starts != 0; starts &= starts - 1) {
      const uint64_t upto = UpToLowest(starts);
      const uint32_t above_label = above[Count(up_starts & upto)];
      // Without a branch: noise has no habits to predict.
      const uint32_t is_new = (up & upto & starts) == 0 ? 1 : 0;
      sets_.Add(next_label);
      *++run_label = above_label ^ ((above_label ^ next_label) & (0 - is_new));
      next_label += is_new;
    }
    next_label_ = next_label;
    last_run_ = static_cast<size_t>(run_label - run_labels_);
  }

  // Pixel by pixel, a label at or above the limit is handed on, up to the first
  // pixel of the run below one with a smaller label. A run starts there, too:
  // what lies before it folds into the last label.
  void SplitFolded(int32_t y) {
    const size_t row = bits_.row(y);
    const uint64_t* above = bits_.bits + row - bits_.words;
    if (!has_folded_) std::copy_n(above, bits_.words, unfolded_);
    has_folded_ = true;
    size_t next_label = next_label_;
    uint64_t carry = 0;
    uint64_t last = 0;  // the bit of `unfolded` before this word's
    for (size_t word = 0; word < bits_.words; ++word) {
      const uint64_t set = bits_.bits[row + word];
      uint64_t& starts = bits_.starts[row + word];
      const uint64_t at_column_0 = word == 0 ? set & 1 : 0;
      const uint64_t new_labels = starts & ~above[word] & ~at_column_0;
      const size_t room = label_limit_ - std::min(label_limit_, next_label);
      const uint64_t seeds =
          (set & unfolded_[word]) | at_column_0 | LowestOf(new_labels, room);
      next_label += Count(new_labels);
      // The carry runs from the first seed of a run to its end and leaves what
      // lies before it as it was.
      const uint64_t sum = set + seeds;
      const uint64_t unfolded = set & (~(sum + carry) | seeds);
      carry = sum < set || sum + carry < sum ? 1 : 0;
      starts |= unfolded & ~(unfolded << 1 | last);
      last = unfolded >> (kWordBits - 1);
      unfolded_[word] = unfolded;
    }
  }

  MaskBits bits_;
  LabelSets& sets_;
  uint32_t* run_labels_;
  uint64_t* unfolded_;
  size_t label_limit_;
  bool has_folded_ = false;
  uint32_t next_label_ = 1;
  size_t last_run_ = 0;
  size_t last_run_above_ = 0;
};

constexpr uint64_t kEachByte = 0x0101010101010101U;

// Eight bits as bytes of 0 and 1.
uint64_t BytesOf(uint64_t eight_bits) {
  const uint64_t apart = eight_bits * kEachByte & 0x8040201008040201U;
  return (apart + 0x7F * kEachByte) >> 7 & kEachByte;
}

// Writes the labels of the runs word by word and counts areas.
class RunWriter {
 public:
  RunWriter(const LabelSets& sets, const uint32_t* run_labels,
            std::span<uint32_t> areas)
      : sets_(sets), run_label_(run_labels), areas_(areas) {}

  // Writes `count` labels; with `has_room` it may overwrite 71 from `out` on.
  void WriteWord(uint64_t set, uint64_t starts, size_t count, bool has_room,
                 uint32_t* out) {
    if (has_room && Count(starts) >= kManyRuns) {
      WritePixels(set, starts, out);
    } else {
      WriteStretches(set, starts, count, has_room, out);
    }
  }

 private:
  static constexpr size_t kManyRuns = 6;

  [[nodiscard]] uint32_t Label() const {
    return sets_[std::min<size_t>(*run_label_, areas_.size() - 1)];
  }

  void WriteStretches(uint64_t set, uint64_t starts, size_t count,
                      bool has_room, uint32_t* out) {
    size_t done = 0;
    const auto fill_to = [out, has_room, &done](size_t end, uint32_t label) {
      for (; has_room && done < end; done += 8)
        std::fill_n(out + done, 8, label);
      if (!has_room) std::fill(out + done, out + end, label);
      done = end;
    };
    // A run that goes on from the word before starts here once more.
    for (uint64_t rest = starts | (set & 1); rest != 0;) {
      const auto begin = static_cast<size_t>(std::countr_zero(rest));
      const uint64_t upto = UpToLowest(rest);
      rest &= rest - 1;
      const auto end =
          static_cast<size_t>(std::countr_zero((rest | ~set) & ~upto));
      run_label_ += starts >> begin & 1;
      const uint32_t label = Label();
      fill_to(begin, 0);
      fill_to(end, label);
      areas_[label] += static_cast<uint32_t>(end - begin);
    }
    fill_to(count, 0);
  }

  // Costs the same wherever runs begin and end.
  void WritePixels(uint64_t set, uint64_t starts, uint32_t* out) {
    // 0, the run that goes on from the word before, and those that start here.
    std::array<uint32_t, 2 + kWordBits> run_labels;
    run_labels[0] = 0;
    run_labels[1] = Label();
    areas_[run_labels[1]] +=
        static_cast<uint32_t>(Count(set & ~starts & UpToLowest(starts)));
    size_t runs = 2;
    for (uint64_t rest = starts; rest != 0;) {
      const uint64_t here = rest & (0 - rest);
      rest ^= here;
      const uint64_t next = rest & (0 - rest);
      ++run_label_;
      const uint32_t label = Label();
      run_labels[runs++] = label;
      areas_[label] += static_cast<uint32_t>(Count(set & (next - here)));
    }
    uint64_t run = 1;
    for (size_t i = 0; i < kWordBits; i += 8) {
      // A byte for each pixel: the starts up to it, summed by multiplying.
      const uint64_t pixel_runs =
          (BytesOf(starts >> i & 0xFF) + run) * kEachByte;
      const uint64_t indices = pixel_runs & BytesOf(set >> i & 0xFF) * 0xFF;
      for (size_t j = 0; j < 8; ++j) {
        out[i + j] = run_labels[indices >> 8 * j & 0xFF];
      }
      run = pixel_runs >> 56;
    }
  }

  const LabelSets& sets_;
  const uint32_t* run_label_;  // of the run written last
  std::span<uint32_t> areas_;
};

// Writes the labels of the runs and counts areas.
void WriteRuns(Plane<const uint8_t> mask, const MaskBits& bits,
               RunWriter& writer, std::span<uint32_t> labels) {
  const auto width = static_cast<size_t>(mask.width);
  for (int32_t y = 0; y < mask.height; ++y) {
    for (size_t word = 0; word < bits.words; ++word) {
      const size_t x = word * kWordBits;
      const size_t at = static_cast<size_t>(y) * width + x;
      writer.WriteWord(bits.bits[bits.row(y) + word],
                       bits.starts[bits.row(y) + word],
                       std::min<size_t>(width - x, kWordBits),
                       labels.size() - at >= kWordBits + 8, &labels[at]);
    }
  }
}

// Takes the last row and column out of the areas.
void LeaveOutEdges(Plane<const uint32_t> labels, std::span<uint32_t> areas) {
  if (labels.size() == 0) return;
  const int32_t right = labels.width - 1;
  for (int32_t y = 0; y < labels.height; ++y) --areas[labels.row(y)[right]];
  const uint32_t* bottom = labels.row(labels.height - 1);
  for (int32_t x = 0; x < right; ++x) --areas[bottom[x]];
}

// Pixel by pixel, for every mask.
void LabelPixels(Plane<const uint8_t> mask, LabelSets& sets,
                 std::span<uint32_t> labels) {
  const auto width = static_cast<size_t>(mask.width);
  uint32_t next_label = 1;
  for (size_t i = width; i < mask.size(); ++i) {
    if (i % width == 0 || mask.data[i] != kSet) continue;
    const uint8_t up = mask.data[i - width];
    const uint8_t left = mask.data[i - 1];
    const uint32_t up_label = labels[i - width];
    const uint32_t left_label = labels[i - 1];
    if (up == kSet && left == kSet) {
      labels[i] = std::min(up_label, left_label);
      if (up_label != left_label) sets.Unite(up_label, left_label);
    } else if (up == kSet && left == 0) {
      labels[i] = up_label;
    } else if (up == 0 && left == kSet) {
      labels[i] = left_label;
    } else if (up == 0 && left == 0) {
      labels[i] = next_label++;
    }
  }
}

void ResolvePixels(Plane<const uint8_t> mask, const LabelSets& sets,
                   std::span<uint32_t> labels, std::span<uint32_t> areas) {
  const auto width = static_cast<size_t>(mask.width);
  const size_t last = areas.size() - 1;
  for (size_t i = 0; i < mask.size(); ++i) {
    // Those in row 0 and column 0 are 0, which is its own root.
    labels[i] = sets[std::min<size_t>(labels[i], last)];
  }
  for (int32_t y = 1; y < mask.height - 1; ++y) {
    const uint32_t* row = labels.data() + static_cast<size_t>(y) * width;
    for (size_t x = 1; x + 1 < width; ++x) ++areas[row[x]];
  }
  areas[0] = 0;
}

uint32_t LargestLabel(std::span<const uint32_t> areas) {
  if (areas.size() < 3) return 0;
  const auto candidates = areas.subspan(1, areas.size() - 2);
  const auto largest = std::max_element(candidates.begin(), candidates.end());
  return *largest == 0
             ? 0
             : static_cast<uint32_t>(largest - candidates.begin()) + 1;
}

}  // namespace

std::optional<uint32_t> LabelComponents(Plane<const uint8_t> mask,
                                        std::span<uint32_t> labels,
                                        std::span<uint32_t> areas,
                                        Buffer& scratch) {
  const size_t row_words = WordsOfRow(mask.width);
  const size_t bit_words = row_words * static_cast<size_t>(mask.height);
  const size_t most_labels = mask.size() + 2;
  const size_t words = 2 * (2 * bit_words + row_words) + 2 * most_labels;
  if (words > INT32_MAX / 4 || !scratch.Reserve(words * 4)) return std::nullopt;
  if (areas.empty()) return 0;
  auto* bit_rows = reinterpret_cast<uint64_t*>(scratch.bytes());
  const MaskBits bits{row_words, bit_rows, bit_rows + bit_words};
  uint64_t* unfolded = bit_rows + 2 * bit_words;
  const auto parents =
      scratch.words().subspan(2 * (2 * bit_words + row_words), most_labels);
  uint32_t* run_labels = parents.data() + most_labels;

  std::fill(areas.begin(), areas.end(), 0U);
  LabelSets sets(parents);
  size_t label_count = 0;
  if (FindBits(mask, bits)) {
    RunLabelling runs(bits, sets, run_labels, unfolded, areas.size());
    runs.LabelRuns(mask.height);
    label_count = runs.next_label();
    sets.Flatten(label_count);
    RunWriter writer(sets, run_labels, areas);
    WriteRuns(mask, bits, writer, labels);
    LeaveOutEdges({labels.data(), mask.width, mask.height}, areas);
    areas[0] = 0;
  } else {
    std::iota(parents.begin(), parents.end(), 0U);
    std::fill(labels.begin(), labels.end(), 0U);
    LabelPixels(mask, sets, labels);
    label_count = areas.size();
    sets.Flatten(std::min(areas.size(), most_labels));
    ResolvePixels(mask, sets, labels, areas);
  }
  return LargestLabel(areas.first(std::min(label_count + 1, areas.size())));
}

}  // namespace zuqel
