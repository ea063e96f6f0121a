// Labels components run by run, which gives the same labels as pixel by pixel
// where the mask has two values; other masks are labelled pixel by pixel.
#include "depth/labelling/components.h"

#include <algorithm>
#include <array>
#include <bit>
#include <numeric>

#include "depth/labelling/label_sets.h"
#include "depth/labelling/mask_bits.h"
#include "depth/labelling/run_labelling.h"

namespace zuqel {
namespace {

constexpr uint8_t kSet = 255;

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
    if (has_room && BitCount(starts) >= kManyRuns) {
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

  // Takes the same time wherever runs begin and end.
  void WritePixels(uint64_t set, uint64_t starts, uint32_t* out) {
    // 0, the run that goes on from the word before, and those that start here.
    std::array<uint32_t, 2 + kWordBits> run_labels;
    run_labels[0] = 0;
    run_labels[1] = Label();
    areas_[run_labels[1]] +=
        static_cast<uint32_t>(BitCount(set & ~starts & UpToLowest(starts)));
    size_t runs = 2;
    for (uint64_t rest = starts; rest != 0;) {
      const uint64_t here = rest & (0 - rest);
      rest ^= here;
      const uint64_t next = rest & (0 - rest);
      ++run_label_;
      const uint32_t label = Label();
      run_labels[runs++] = label;
      areas_[label] += static_cast<uint32_t>(BitCount(set & (next - here)));
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

// Subtracts the last row and column from the areas.
void SubtractEdges(Plane<const uint32_t> labels, std::span<uint32_t> areas) {
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

// Words of the scratch memory: bits and starts of all rows, one more row of
// bits, the parents and the labels of the runs.
struct ScratchLayout {
  size_t row_words, bit_words, most_labels;

  explicit ScratchLayout(ImageSize size)
      : row_words(WordsOfRow(size.width)),
        bit_words(row_words * static_cast<size_t>(size.height)),
        most_labels(static_cast<size_t>(size.width) *
                        static_cast<size_t>(size.height) +
                    2) {}

  [[nodiscard]] size_t bit_rows() const { return 2 * bit_words + row_words; }
  [[nodiscard]] size_t words() const {
    return 2 * bit_rows() + 2 * most_labels;
  }
};

}  // namespace

bool ReserveLabelling(ImageSize size, Buffer& scratch) {
  const size_t words = ScratchLayout(size).words();
  return words <= INT32_MAX / 4 && scratch.Reserve(words * 4);
}

std::optional<uint32_t> LabelComponents(Plane<const uint8_t> mask,
                                        std::span<uint32_t> labels,
                                        std::span<uint32_t> areas,
                                        Buffer& scratch) {
  if (!ReserveLabelling(mask.extent(), scratch)) return std::nullopt;
  if (areas.empty()) {
    std::fill(labels.begin(), labels.end(), 0U);
    return 0;
  }
  const ScratchLayout layout(mask.extent());
  auto* bit_rows = reinterpret_cast<uint64_t*>(scratch.bytes());
  const MaskBits bits{layout.row_words, bit_rows, bit_rows + layout.bit_words};
  uint64_t* unsaturated = bit_rows + 2 * layout.bit_words;
  const auto parents =
      scratch.words().subspan(2 * layout.bit_rows(), layout.most_labels);
  uint32_t* run_labels = parents.data() + layout.most_labels;

  std::fill(areas.begin(), areas.end(), 0U);
  LabelSets sets(parents);
  size_t label_count = 0;
  if (FindBits(mask, bits)) {
    RunLabelling runs(bits, sets, run_labels, unsaturated, areas.size());
    runs.LabelRuns(mask.height);
    label_count = runs.next_label();
    sets.Flatten(label_count);
    RunWriter writer(sets, run_labels, areas);
    WriteRuns(mask, bits, writer, labels);
    SubtractEdges({labels.data(), mask.width, mask.height}, areas);
    areas[0] = 0;
  } else {
    std::iota(parents.begin(), parents.end(), 0U);
    std::fill(labels.begin(), labels.end(), 0U);
    LabelPixels(mask, sets, labels);
    label_count = areas.size();
    sets.Flatten(std::min(areas.size(), layout.most_labels));
    ResolvePixels(mask, sets, labels, areas);
  }
  return LargestLabel(areas.first(std::min(label_count + 1, areas.size())));
}

}  // namespace zuqel
