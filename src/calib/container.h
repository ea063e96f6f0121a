// Calibration containers: their lengths, the kinds of record in them, and how
// encrypted records are stored.
#ifndef ZUQEL_CALIB_CONTAINER_H_
#define ZUQEL_CALIB_CONTAINER_H_

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

#include "calib/aes256.h"
#include "calib/calibration.h"
#include "calib/gcm.h"

namespace zuqel::calib {

static_assert(std::endian::native == std::endian::little,
              "records are little-endian and read as they are");

// All that differs from one kind of record to another.
struct RecordKind {
  int32_t kind;
  size_t size;
  size_t optics_at;       // the optical values stand together
  size_t second_half_at;  // in its unit; 0 where the unit is one record
  bool has_header;        // which is checked when the record was encrypted
  const Key* DefaultKeys::*default_key;
};

inline constexpr auto kRecordKinds = std::to_array<RecordKind>({
    {1, 464, 320, 0, false, &DefaultKeys::general},
    {3, 512, 340, 0, true, &DefaultKeys::general},
    {4, 512, 340, 732, false, &DefaultKeys::kind4},
});

// A sealed unit is a nonce, zeros, the encrypted bytes and their tag.
inline constexpr size_t kSealFillerSize = 4;
inline constexpr size_t kSealedDataAt = kGcmNonceSize + kSealFillerSize;
inline constexpr size_t kSealOverhead = kSealedDataAt + kGcmTagSize;

// One container length. A unit is what is encrypted as a whole: a record, or
// the two halves of kind 4, each of which begins with a record. Several units
// follow a header, with a gap between two of them.
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

// Nothing is read past the end of a block, nor of a unit.
constexpr bool Fits(const Container& row) {
  const std::optional<RecordKind> kind = FindKind(row.kind);
  if (!kind || row.count == 0) return false;
  const size_t last = row.First() + (row.count - 1) * row.Stride();
  return last + row.StoredSize() <= row.length &&
         kind->second_half_at + kind->size <= row.unit_size;
}
static_assert(std::all_of(kContainers.begin(), kContainers.end(), Fits));

// Bytes of the units of the largest encrypted container.
constexpr size_t MostDecryptedBytes() {
  size_t most = 0;
  for (const Container& row : kContainers) {
    if (row.encrypted) most = std::max(most, row.count * row.unit_size);
  }
  return most;
}

// Decrypts every unit of `payload` into `plain`, one after another. Returns 0,
// or the ZUQEL_CALIB_ code of the first unit that does not decrypt or whose
// header is wrong.
[[nodiscard]] uint32_t OpenUnits(std::span<const uint8_t> payload,
                                 const Container& container,
                                 const RecordKind& kind, const Aes256& cipher,
                                 std::span<uint8_t> plain);

}  // namespace zuqel::calib

#endif  // ZUQEL_CALIB_CONTAINER_H_
