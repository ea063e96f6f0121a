// Recognition of calibration containers and choice of a record.
#include "calib/calibration.h"

#include <zuQelRT_GL.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdlib>
#include <cstring>

namespace zuqel::calib {
namespace {

static_assert(std::endian::native == std::endian::little,
              "records hold little-endian floats");

constexpr uint32_t kKeySize = 32;

// What encryption adds to a record.
constexpr uint32_t kEncryptionOverhead = 32;

// One kind of record. Its optical values stand together, at different places.
struct RecordKind {
  int32_t kind;
  uint32_t size;
  uint32_t optics_at;
};

constexpr auto kKinds = std::to_array<RecordKind>({
    {1, 464, 320},
    {3, 512, 340},
    {4, 512, 340},
});

// The optical values as a record holds them. The lens-position line and the
// selection distance mean nothing in a record of kind 4.
struct Optics {
  float third;
  float focal_length_divisor;
  float slope;
  float offset;
  float focal_length;
  float distance;
};

// One container length. Record k begins at first + k * stride.
struct Container {
  uint32_t length;
  int32_t kind;
  uint32_t count;
  uint32_t first;
  uint32_t stride;
  bool encrypted;
};

constexpr auto kContainers = std::to_array<Container>({
    {464, 1, 1, 0, 0, false},
    {466, 1, 1, 0, 0, false},
    {496, 1, 1, 0, 0, true},
    {1403, 1, 3, 7, 466, false},
    {2801, 1, 6, 7, 466, false},
    {1499, 1, 3, 7, 498, true},
    {2993, 1, 6, 7, 498, true},
    {512, 3, 1, 0, 0, false},
    {514, 3, 1, 0, 0, false},
    {544, 3, 1, 0, 0, true},
    {1547, 3, 3, 7, 514, false},
    {1643, 3, 3, 7, 546, true},
    {1488, 4, 2, 0, 732, false},
    {2080, 4, 2, 0, 732, true},
});

constexpr const RecordKind* FindKind(int32_t kind) {
  for (const RecordKind& row : kKinds) {
    if (row.kind == kind) return &row;
  }
  return nullptr;
}

constexpr const Container* FindContainer(uint32_t length) {
  for (const Container& row : kContainers) {
    if (row.length == length) return &row;
  }
  return nullptr;
}

// Nothing is read behind a block, nor behind a record.
constexpr bool Fits(const Container& row) {
  const RecordKind* kind = FindKind(row.kind);
  if (kind == nullptr || row.count == 0) return false;
  const uint32_t stored =
      kind->size + (row.encrypted ? kEncryptionOverhead : 0);
  const uint32_t end = row.first + (row.count - 1) * row.stride + stored;
  return end <= row.length && kind->optics_at + sizeof(Optics) <= kind->size;
}
static_assert(std::all_of(kContainers.begin(), kContainers.end(), Fits));

Optics ReadOptics(const uint8_t* record, const RecordKind& kind) {
  Optics optics;
  std::memcpy(&optics, record + kind.optics_at, sizeof(optics));
  return optics;
}

// Cuts toward zero; saturates, and makes 0 of a NaN.
int32_t ToInteger(float value) {
  if (std::isnan(value)) return 0;
  if (value >= 0x1p31F) return INT32_MAX;
  if (value < -0x1p31F) return INT32_MIN;
  return static_cast<int32_t>(value);
}

// How far the lens is from where a record taken at `distance` expects it. The
// thin lens and the line from image distance to lens position are record 0's.
int64_t LensError(const Optics& lens, float distance, int32_t lens_position) {
  const float f = lens.focal_length;
  const float image_distance = distance * f / (distance - f);
  const int32_t expected =
      ToInteger((image_distance - f) * lens.slope + lens.offset);
  return std::abs(int64_t{lens_position} - expected);
}

// The best of the first three records, the earlier of two that are as good.
uint32_t ChooseByLensPosition(const CalibrationInput& input,
                              const Container& container,
                              const RecordKind& kind) {
  const uint8_t* records = input.block_a + container.first;
  const Optics lens = ReadOptics(records, kind);
  uint32_t best = 0;
  int64_t smallest = INT64_MAX;
  for (uint32_t k = 0; k < std::min(container.count, 3U); ++k) {
    const Optics optics =
        ReadOptics(records + size_t{k} * container.stride, kind);
    const int64_t error = LensError(lens, optics.distance, input.lens_position);
    if (error >= smallest) continue;
    smallest = error;
    best = k;
  }
  return best;
}

// The number of the record to take; it may lie past the container's last one.
uint32_t ChooseRecord(const CalibrationInput& input, const Container& container,
                      const RecordKind& kind) {
  if (container.kind == 4) {
    return input.selector == 1 || input.selector == 3 ? 1 : 0;
  }
  if (container.count == 1) return 0;
  if (input.forced_index != kByLensPosition) return input.forced_index;
  return ChooseByLensPosition(input, container, kind);
}

}  // namespace

uint32_t DecodeCalibration(const CalibrationInput& input,
                           CalibrationRecord& record) {
  record = {};
  if (input.block_a == nullptr && input.block_b == nullptr) {
    return ZUQEL_CALIB_NO_BLOCK;
  }
  // A block that is not a key itself holds a wrapped one, whose own key this
  // build does not have. That counts even when nothing needs decryption.
  if (input.block_b != nullptr && input.block_b_size != kKeySize) {
    return ZUQEL_CALIB_NO_KEY;
  }
  if (input.block_a == nullptr || input.block_a_size == 0) {
    return ZUQEL_CALIB_NO_PAYLOAD;
  }
  const Container* container = FindContainer(input.block_a_size);
  if (container == nullptr) return ZUQEL_CALIB_BAD_LENGTH;
  if (container->encrypted) return ZUQEL_CALIB_NOT_DECRYPTED;

  const RecordKind& kind = *FindKind(container->kind);
  const uint32_t chosen = ChooseRecord(input, *container, kind);
  if (chosen >= container->count) return ZUQEL_CALIB_BAD_LENGTH;
  const size_t offset = container->first + size_t{chosen} * container->stride;
  std::memcpy(record.bytes.data(), input.block_a + offset, kind.size);
  record.size = kind.size;
  record.kind = kind.kind;
  // The halves of kind 4 are two views of one record.
  record.index = kind.kind == 4 ? 0 : chosen;
  return ZUQEL_SUCCESS;
}

std::optional<CameraValues> TakeCameraValues(const CalibrationRecord& record) {
  const RecordKind* kind = FindKind(record.kind);
  if (kind == nullptr) return std::nullopt;
  const Optics optics = ReadOptics(record.bytes.data(), *kind);
  return CameraValues{.focal_length = optics.focal_length,
                      .focal_length_divisor = optics.focal_length_divisor,
                      .third = optics.third};
}

}  // namespace zuqel::calib
