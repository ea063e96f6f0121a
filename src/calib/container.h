// The containers of calibration records and the kinds of record in them.
#ifndef ZUQEL_CALIB_CONTAINER_H_
#define ZUQEL_CALIB_CONTAINER_H_

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>

#include "calib/sealed_record.h"

namespace zuqel::calib {

// One kind of record. Its optical values stand together, at different places.
struct RecordKind {
  int32_t kind;
  size_t size;
  size_t optics_at;
};

inline constexpr auto kRecordKinds = std::to_array<RecordKind>({
    {1, 464, 320},
    {3, 512, 340},
    {4, 512, 340},
});

// One container length. A unit is what is encrypted as a whole: a record, or
// the two halves of kind 4, each of which begins with a record. Several units
// stand behind a header, with a gap between two of them.
struct Container {
  size_t length;
  int32_t kind;
  size_t count;
  size_t unit_size;  // when plain
  bool encrypted;

  [[nodiscard]] constexpr size_t StoredSize() const {
    return unit_size + (encrypted ? kSealOverhead : 0);
  }
  [[nodiscard]] constexpr size_t Stride() const { return StoredSize() + 2; }
  [[nodiscard]] constexpr size_t First() const { return count == 1 ? 0 : 7; }
};

inline constexpr auto kContainers = std::to_array<Container>({
    {464, 1, 1, 464, false},
    {466, 1, 1, 464, false},
    {496, 1, 1, 464, true},
    {1403, 1, 3, 464, false},
    {2801, 1, 6, 464, false},
    {1499, 1, 3, 464, true},
    {2993, 1, 6, 464, true},
    {512, 3, 1, 512, false},
    {514, 3, 1, 512, false},
    {544, 3, 1, 512, true},
    {1547, 3, 3, 512, false},
    {1643, 3, 3, 512, true},
    {1488, 4, 1, 1488, false},
    {2080, 4, 1, 2048, true},
});

// Where the second half of kind 4 begins.
inline constexpr size_t kSecondHalfAt = 732;

constexpr std::optional<RecordKind> FindKind(int32_t kind) {
  for (const RecordKind& row : kRecordKinds) {
    if (row.kind == kind) return row;
  }
  return std::nullopt;
}

constexpr std::optional<Container> FindContainer(size_t length) {
  for (const Container& row : kContainers) {
    if (row.length == length) return row;
  }
  return std::nullopt;
}

// Nothing is read behind a block, nor behind a unit.
constexpr bool Fits(const Container& row) {
  const std::optional<RecordKind> kind = FindKind(row.kind);
  if (!kind || row.count == 0) return false;
  const size_t last = row.First() + (row.count - 1) * row.Stride();
  const size_t record_at = row.kind == 4 ? kSecondHalfAt : 0;
  return last + row.StoredSize() <= row.length &&
         record_at + kind->size <= row.unit_size;
}
static_assert(std::all_of(kContainers.begin(), kContainers.end(), Fits));

}  // namespace zuqel::calib

#endif  // ZUQEL_CALIB_CONTAINER_H_
