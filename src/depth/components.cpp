// Labels components run by run where that gives the same labels as pixel by
// pixel, which is wherever the mask is two-valued and the labels suffice.
#include "depth/components.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <numeric>
#include <utility>

namespace zuqel {
namespace {

constexpr uint8_t kSet = 255;

// Union-find in which every link points to a smaller label, so that a root is
// the smallest label of its set.
class LabelSets {
 public:
  explicit LabelSets(std::span<uint32_t> parents) : parents_(parents) {
    std::iota(parents_.begin(), parents_.end(), 0U);
  }

  uint32_t Root(uint32_t label) {
    while (parents_[label] != label) {
      parents_[label] = parents_[parents_[label]];
      label = parents_[label];
    }
    return label;
  }

  void Unite(uint32_t a, uint32_t b) {
    const uint32_t root_a = Root(a);
    const uint32_t root_b = Root(b);
    parents_[std::max(root_a, root_b)] = std::min(root_a, root_b);
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

// Columns of one row that are set, without a gap.
struct Run {
  int32_t begin;
  int32_t end;
  uint32_t label;
};

// Words of the scratch memory, part by part.
struct ScratchLayout {
  size_t labels, rows, runs;

  ScratchLayout(Plane<const uint8_t> mask, size_t label_limit)
      : labels(std::max(mask.size() + 1, label_limit)),
        rows(static_cast<size_t>(mask.height)),
        runs((static_cast<size_t>(mask.width) / 2 + 1) * rows *
             (sizeof(Run) / 4)) {}

  [[nodiscard]] size_t words() const { return labels + rows + runs; }
};

// One bit for each of eight pixels, the first in the lowest bit; nothing when a
// pixel is neither 0 nor 255.
std::optional<uint64_t> BitsOfEight(uint64_t pixels) {
  const uint64_t ones = pixels >> 7 & 0x0101010101010101U;
  if (ones * kSet != pixels) return std::nullopt;
  return ones * 0x0102040810204080U >> 56;
}

// Up to 64 pixels as bits.
std::optional<uint64_t> BitsOf(const uint8_t* pixels, int32_t count) {
  uint64_t bits = 0;
  for (int32_t i = 0; i < count; i += 8) {
    uint64_t eight = 0;
    if (count - i >= 8) {
      std::memcpy(&eight, pixels + i, 8);
    } else {
      std::memcpy(&eight, pixels + i, static_cast<size_t>(count - i));
    }
    const auto eight_bits = BitsOfEight(eight);
    if (!eight_bits) return std::nullopt;
    bits |= *eight_bits << i;
  }
  return bits;
}

// Writes the runs of a row and returns how many there are; nothing when a pixel
// is neither 0 nor 255.
std::optional<size_t> FindRuns(const uint8_t* row, int32_t width, Run* runs) {
  size_t edges = 0;
  uint64_t last = 0;  // the bit before this word's
  for (int32_t x = 0; x < width; x += 64) {
    const auto bits = BitsOf(row + x, std::min(width - x, 64));
    if (!bits) return std::nullopt;
    for (uint64_t changes = *bits ^ (*bits << 1 | last); changes != 0;
         changes &= changes - 1) {
      const int32_t at = x + std::countr_zero(changes);
      Run& run = runs[edges / 2];
      (edges % 2 == 0 ? run.begin : run.end) = at;
      ++edges;
    }
    last = *bits >> 63;
  }
  if (edges % 2 != 0) {
    runs[edges / 2].end = width;
    ++edges;
  }
  return edges / 2;
}

class RunLabelling {
 public:
  RunLabelling(Plane<const uint8_t> mask, LabelSets& sets, Run* runs,
               size_t label_limit)
      : mask_(mask), sets_(sets), runs_(runs), label_limit_(label_limit) {}

  // False when runs cannot tell: a third value, or too many labels.
  bool LabelRuns(std::span<uint32_t> run_counts) {
    Run* above = runs_;
    size_t above_count = 0;
    Run* row_runs = runs_;
    for (int32_t y = 0; y < mask_.height; ++y) {
      const auto count = FindRuns(mask_.row(y), mask_.width, row_runs);
      if (!count) return false;
      run_counts[static_cast<size_t>(y)] = static_cast<uint32_t>(*count);
      for (size_t i = 0; y == 0 && i < *count; ++i) row_runs[i].label = 0;
      if (y > 0 && !LabelRow({above, above_count}, {row_runs, *count})) {
        return false;
      }
      above = row_runs;
      above_count = *count;
      row_runs += *count;
    }
    return true;
  }

 private:
  // A run's first pixel decides which label it is given: that of the pixel
  // above, or a new one. All runs above that it touches join it. What touches
  // column 0 has label 0.
  bool LabelRow(std::span<const Run> above, std::span<Run> row) {
    size_t first = 0;
    for (Run& run : row) {
      while (first < above.size() && above[first].end <= run.begin) ++first;
      const bool has_above =
          first < above.size() && above[first].begin <= run.begin;
      if (run.begin == 0) {
        run.label = 0;
      } else if (has_above) {
        run.label = above[first].label;
      } else {
        if (next_label_ >= label_limit_) return false;
        run.label = static_cast<uint32_t>(next_label_++);
      }
      for (size_t i = first; i < above.size() && above[i].begin < run.end;
           ++i) {
        if (above[i].label != run.label) sets_.Unite(above[i].label, run.label);
      }
    }
    return true;
  }

  Plane<const uint8_t> mask_;
  LabelSets& sets_;
  Run* runs_;
  size_t label_limit_;
  size_t next_label_ = 1;
};

// Writes the labels of the runs and counts areas.
void WriteRuns(Plane<const uint8_t> mask, const LabelSets& sets,
               const Run* runs, std::span<const uint32_t> run_counts,
               std::span<uint32_t> labels, std::span<uint32_t> areas) {
  for (int32_t y = 0; y < mask.height; ++y) {
    uint32_t* row = labels.data() +
                    static_cast<size_t>(y) * static_cast<size_t>(mask.width);
    std::fill_n(row, mask.width, 0U);
    const bool is_counted = y > 0 && y < mask.height - 1;
    for (size_t i = 0; i < run_counts[static_cast<size_t>(y)]; ++i, ++runs) {
      const uint32_t label = sets[runs->label];
      if (label == 0) continue;
      std::fill(row + runs->begin, row + runs->end, label);
      const int32_t end = std::min(runs->end, mask.width - 1);
      if (is_counted) areas[label] += static_cast<uint32_t>(end - runs->begin);
    }
  }
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

bool ReserveLabelling(Plane<const uint8_t> mask, size_t label_limit,
                      Buffer& scratch) {
  const size_t words = ScratchLayout(mask, label_limit).words();
  return words <= INT32_MAX / 4 && scratch.Reserve(words * 4);
}

std::optional<uint32_t> LabelComponents(Plane<const uint8_t> mask,
                                        std::span<uint32_t> labels,
                                        std::span<uint32_t> areas,
                                        Buffer& scratch) {
  if (!ReserveLabelling(mask, areas.size(), scratch)) return std::nullopt;
  if (areas.empty()) {
    std::fill(labels.begin(), labels.end(), 0U);
    return 0;
  }
  const ScratchLayout layout(mask, areas.size());
  const std::span<uint32_t> all = scratch.words();
  const auto parents = all.first(layout.labels);
  const auto run_counts = all.subspan(layout.labels, layout.rows);
  auto* runs = reinterpret_cast<Run*>(all.data() + layout.labels + layout.rows);

  std::fill(areas.begin(), areas.end(), 0U);
  LabelSets sets(parents.first(areas.size()));
  RunLabelling by_runs(mask, sets, runs, areas.size());
  if (by_runs.LabelRuns(run_counts)) {
    sets.Flatten(areas.size());
    WriteRuns(mask, sets, runs, run_counts, labels, areas);
  } else {
    sets = LabelSets(parents);
    std::fill(labels.begin(), labels.end(), 0U);
    LabelPixels(mask, sets, labels);
    sets.Flatten(areas.size());
    ResolvePixels(mask, sets, labels, areas);
  }
  return LargestLabel(areas);
}

}  // namespace zuqel
