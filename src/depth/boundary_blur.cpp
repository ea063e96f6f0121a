// Two sweeps over the marked pixels, a span of a row at a time, with running
// sums of the seven pixels of each column.
#include "depth/boundary_blur.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>
#include <numeric>

namespace zuqel {
namespace {

constexpr int32_t kReach = 3;
constexpr int32_t kSide = 2 * kReach + 1;
constexpr uint8_t kExcluded = 255;

// A span's columns, and as many on each side as a window that has moved past
// the span's end reaches.
constexpr int32_t kMargin = kReach + 1;
constexpr int32_t kColumns = 64;
constexpr int32_t kSpan = kColumns - 2 * kMargin;

// 2^20 / count, rounded up: the product with a sum of up to 255 * count gives
// the truncated quotient in its upper bits, and fits uint32_t.
constexpr int32_t kQuotientBits = 20;
constexpr std::array<uint32_t, kSide* kSide + 1> kReciprocals = [] {
  std::array<uint32_t, kSide* kSide + 1> reciprocals = {};
  for (uint32_t count = 1; count < reciprocals.size(); ++count) {
    reciprocals[count] = ((1U << kQuotientBits) + count - 1) / count;
  }
  return reciprocals;
}();

struct WindowSum {
  uint32_t sum = 0;
  uint32_t count = 0;
};

uint64_t LoadEightMarks(const uint8_t* marks) {
  uint64_t eight = 0;
  std::memcpy(&eight, marks, sizeof(eight));
  return eight;
}

// True if no pixel from `begin` up to `end` counts, in all rows that windows
// around row `y` reach.
bool AllAreExcluded(Plane<const uint8_t> marks, int32_t begin, int32_t end,
                    int32_t y) {
  const int32_t bottom = std::min(y + kReach, marks.height - 1);
  for (int32_t row = std::max(y - kReach, 0); row <= bottom; ++row) {
    uint64_t all = UINT64_MAX;
    int32_t x = begin;
    for (; x + 8 <= end; x += 8) all &= LoadEightMarks(marks.row(row) + x);
    for (; x < end; ++x) all &= marks.row(row)[x] * 0x0101010101010101U;
    if (all != UINT64_MAX) return false;
  }
  return true;
}

// Sums and numbers of the pixels that count, by column, starting `kMargin`
// columns before the span. Columns outside the image are 0.
struct Columns {
  std::array<uint16_t, kColumns> sums = {};
  std::array<uint8_t, kColumns> counts = {};

  Columns(Plane<const uint8_t> map, Plane<const uint8_t> marks, int32_t begin,
          int32_t y) {
    const int32_t left = std::max(begin - kMargin, 0);
    const int32_t right = std::min(begin - kMargin + kColumns, map.width);
    const auto length = static_cast<size_t>(right - left);
    const int32_t bottom = std::min(y + kReach, map.height - 1);
    for (int32_t row = std::max(y - kReach, 0); row <= bottom; ++row) {
      const uint8_t* values = map.row(row) + left;
      const uint8_t* row_marks = marks.row(row) + left;
      if (length == kColumns) {
        AddRow(values, row_marks);
        continue;
      }
      const auto first = static_cast<size_t>(left - (begin - kMargin));
      std::array<uint8_t, kColumns> inside = {};
      std::array<uint8_t, kColumns> inside_marks;
      inside_marks.fill(kExcluded);
      std::memcpy(inside.data() + first, values, length);
      std::memcpy(inside_marks.data() + first, row_marks, length);
      AddRow(inside.data(), inside_marks.data());
    }
  }

  // A constant length vectorises without a remainder.
  void AddRow(const uint8_t* values, const uint8_t* row_marks) {
    for (size_t i = 0; i < kColumns; ++i) {
      const uint8_t kept = row_marks[i] == kExcluded ? 0 : kExcluded;
      sums[i] = static_cast<uint16_t>(sums[i] + (values[i] & kept));
      counts[i] = static_cast<uint8_t>(counts[i] + (kept & 1));
    }
  }

  void Update(size_t column, uint32_t change, bool is_new) {
    sums[column] = static_cast<uint16_t>(sums[column] + change);
    counts[column] = static_cast<uint8_t>(counts[column] + (is_new ? 1 : 0));
  }

  // The window around a column.
  [[nodiscard]] WindowSum Window(size_t column) const {
    WindowSum window;
    for (size_t i = column - kReach; i <= column + kReach; ++i) Add(i, window);
    return window;
  }

  void Add(size_t column, WindowSum& window) const {
    window.sum += sums[column];
    window.count += counts[column];
  }

  void Remove(size_t column, WindowSum& window) const {
    window.sum -= sums[column];
    window.count -= counts[column];
  }
};

// Smooths the marked pixels of row `y` from `begin` up to `end`, at most kSpan,
// or the other way round.
template <bool kForward>
void SmoothSpan(Plane<uint8_t> map, Plane<uint8_t> marks, int32_t begin,
                int32_t end, int32_t y) {
  // One column more than windows reach, on both sides: whole words.
  if (AllAreExcluded(marks, std::max(begin - kMargin, 0),
                     std::min(begin - kMargin + kColumns, map.width), y)) {
    return;
  }
  Columns columns(map, marks, begin, y);
  uint8_t* values = map.row(y) + begin;
  uint8_t* row_marks = marks.row(y) + begin;
  const auto length = static_cast<size_t>(end - begin);
  size_t x = kForward ? 0 : length - 1;
  WindowSum window = columns.Window(x + kMargin);
  for (size_t i = 0; i < length; ++i) {
    const size_t column = x + kMargin;
    if (row_marks[x] != 0 && window.count != 0) {
      const bool is_new = row_marks[x] == kExcluded;
      const uint32_t mean =
          window.sum * kReciprocals[window.count] >> kQuotientBits;
      const uint32_t change = mean - (is_new ? 0U : values[x]);  // may wrap
      window.sum += change;
      window.count += is_new ? 1 : 0;
      columns.Update(column, change, is_new);
      values[x] = static_cast<uint8_t>(mean);
      row_marks[x] = 0;
    }
    columns.Add(kForward ? column + kMargin : column - kMargin, window);
    columns.Remove(kForward ? column - kReach : column + kReach, window);
    x += kForward ? 1 : size_t{0} - 1;
  }
}

}  // namespace

// Most pixels are not marked: eight at a time are skipped.
void BoundaryBlur(Plane<uint8_t> map, Plane<uint8_t> marks) {
  for (int32_t y = 0; y < map.height; ++y) {
    const uint8_t* row = marks.row(y);
    for (int32_t x = 0; x < map.width;) {
      if (x + 8 <= map.width && LoadEightMarks(row + x) == 0) {
        x += 8;
        continue;
      }
      const int32_t end = std::min(x + kSpan, map.width);
      SmoothSpan<true>(map, marks, x, end, y);
      x = end;
    }
  }
  for (int32_t y = map.height - 1; y >= 0; --y) {
    const uint8_t* row = marks.row(y);
    for (int32_t end = map.width; end > 0;) {
      if (end >= 8 && LoadEightMarks(row + end - 8) == 0) {
        end -= 8;
        continue;
      }
      const int32_t begin = std::max(end - kSpan, 0);
      SmoothSpan<false>(map, marks, begin, end, y);
      end = begin;
    }
  }
}

}  // namespace zuqel
