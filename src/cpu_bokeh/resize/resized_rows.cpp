// Splits changes of size into steps.
#include "cpu_bokeh/resize/resized_rows.h"

#include <algorithm>

namespace zuqel {
namespace {

// A factor that takes more than one step, in their order; 0 is no step.
struct Chain {
  int32_t factor;
  std::array<int32_t, 3> steps;
};
constexpr auto kEnlargingChains =
    std::to_array<Chain>({{9, {3, 3}}, {8, {2, 2, 2}}, {12, {2, 6}}});
constexpr auto kReducingChains =
    std::to_array<Chain>({{8, {2, 2, 2}}, {9, {3, 3}}, {12, {6, 2}}});

// The chain that makes `large` out of `small` on both axes; null for none.
template <size_t kCount>
const Chain* FindChain(const std::array<Chain, kCount>& chains, ImageSize small,
                       ImageSize large) {
  const auto* found =
      std::find_if(chains.begin(), chains.end(), [&](const Chain& chain) {
        return int64_t{small.width} * chain.factor == large.width &&
               int64_t{small.height} * chain.factor == large.height;
      });
  return found == chains.end() ? nullptr : found;
}

// The sizes after each step.
struct Path {
  size_t length = 0;
  std::array<ImageSize, 3> sizes = {};
};

template <typename Sample>
Path FindPath(ImageSize from, ImageSize to) {
  const bool is_enlarging = to.pixel_count() >= from.pixel_count();
  const Chain* chain = nullptr;
  if (!is_enlarging) {
    chain = FindChain(kReducingChains, to, from);
  } else if (sizeof(Sample) == 1) {
    chain = FindChain(kEnlargingChains, from, to);
  }
  if (chain == nullptr) return {1, {to}};
  Path path;
  for (const int32_t factor : chain->steps) {
    if (factor == 0) break;
    from = is_enlarging ? ImageSize{from.width * factor, from.height * factor}
                        : ImageSize{from.width / factor, from.height / factor};
    path.sizes[path.length++] = from;
  }
  return path;
}

// A step takes at most this many rows of the one before: it reduces by 6, or
// interpolates.
constexpr int32_t kRowsBetween = 6;

}  // namespace

template <typename Sample>
bool ResizedRows<Sample>::Reserve(ImageSize from, ImageSize to) {
  const Path path = FindPath<Sample>(from, to);
  for (size_t i = 0; i < path.length; ++i) {
    const ImageSize size = path.sizes[i];
    if (!steps_[i].Reserve(from, size) ||
        (i + 1 < path.length &&
         !between_[i].Reserve(size.width, kRowsBetween))) {
      return false;
    }
    from = size;
  }
  return true;
}

template <typename Sample>
void ResizedRows<Sample>::Begin(ImageSize from, ImageSize to) {
  const Path path = FindPath<Sample>(from, to);
  count_ = path.length;
  for (size_t i = 0; i < count_; ++i) {
    const ImageSize size = path.sizes[i];
    steps_[i].Begin(from, size);
    if (i + 1 < count_) between_[i].Begin();
    from = size;
  }
}

template <typename Sample>
Stretch ResizedRows<Sample>::SourceRows(int32_t y) const {
  Stretch rows = {y, y};
  for (size_t i = count_; i-- > 0;) {
    rows = {steps_[i].SourceRows(rows.first).first,
            steps_[i].SourceRows(rows.last).last};
  }
  return rows;
}

template <typename Sample>
Stretch ResizedRows<Sample>::SourceColumns(int32_t begin, int32_t end) const {
  Stretch columns = {begin, end - 1};
  for (size_t i = count_; i-- > 0;) {
    columns = steps_[i].SourceColumns(columns.first, columns.last + 1);
  }
  return columns;
}

template class ResizedRows<uint8_t>;
template class ResizedRows<uint16_t>;

}  // namespace zuqel
