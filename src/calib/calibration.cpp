// Finds the container and its key, and picks a record.
#include "calib/calibration.h"

#include <zuQelRT_GL.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <span>

#include "calib/aes256.h"
#include "calib/container.h"
#include "calib/key_wrap.h"
#include "calib/secret.h"

namespace zuqel::calib {
namespace {

// Offsets of the optical values from the first of them. Kind 4 has neither a
// lens-position line nor a selection distance.
constexpr size_t kThirdAt = 0;
constexpr size_t kFocalLengthDivisorAt = 4;
constexpr size_t kSlopeAt = 8;
constexpr size_t kOffsetAt = 12;
constexpr size_t kFocalLengthAt = 16;
constexpr size_t kDistanceAt = 20;
constexpr size_t kOpticsSize = 24;

static_assert(std::all_of(kRecordKinds.begin(), kRecordKinds.end(),
                          [](const RecordKind& kind) {
                            return kind.optics_at + kOpticsSize <= kind.size;
                          }));

// The plain units of a container.
struct Units {
  const uint8_t* first;
  size_t stride;
};

float ReadFloat(const uint8_t* bytes) {
  float value = 0;
  std::memcpy(&value, bytes, sizeof(value));
  return value;
}

// Truncates toward zero and saturates; 0 for NaN.
int32_t ToInteger(float value) {
  if (std::isnan(value)) return 0;
  if (value >= 0x1p31F) return INT32_MAX;
  if (value < -0x1p31F) return INT32_MIN;
  return static_cast<int32_t>(value);
}

// Distance of the lens from where a record made at `distance` expects it. Thin
// lens and lens-position line are those at `lens`, the optics of record 0.
int64_t LensError(const uint8_t* lens, float distance, int32_t lens_position) {
  const float f = ReadFloat(lens + kFocalLengthAt);
  const float image_distance = distance * f / (distance - f);
  const int32_t expected =
      ToInteger((image_distance - f) * ReadFloat(lens + kSlopeAt) +
                ReadFloat(lens + kOffsetAt));
  return std::abs(int64_t{lens_position} - expected);
}

// The best of the first three records, the earlier one on a tie.
uint32_t ChooseByLensPosition(Units units, const Container& container,
                              const RecordKind& kind, int32_t lens_position) {
  const uint8_t* const lens = units.first + kind.optics_at;
  uint32_t best = 0;
  int64_t smallest = INT64_MAX;
  for (uint32_t k = 0; k < std::min(container.count, size_t{3}); ++k) {
    const float distance = ReadFloat(lens + k * units.stride + kDistanceAt);
    const int64_t error = LensError(lens, distance, lens_position);
    if (error >= smallest) continue;
    smallest = error;
    best = k;
  }
  return best;
}

// The index of the unit to take, which may lie past the container's last one.
uint32_t ChooseUnit(const CalibrationInput& input, Units units,
                    const Container& container, const RecordKind& kind) {
  if (container.count == 1) return 0;
  if (input.forced_index != kByLensPosition) return input.forced_index;
  return ChooseByLensPosition(units, container, kind, input.lens_position);
}

// Makes the cipher for the key in the second block. False when it holds none.
bool ReadKey(std::span<const uint8_t> block, const Key* wrapping_key,
             std::optional<Aes256>& cipher) {
  if (block.size() == kAesKeySize) {
    cipher.emplace(block.first<kAesKeySize>());
    return true;
  }
  if (block.size() < kWrappedKeySize || wrapping_key == nullptr) return false;
  SecretBytes<kAesKeySize> key;
  if (!UnwrapKey(Aes256(*wrapping_key), block.first<kWrappedKeySize>(),
                 key.values)) {
    return false;
  }
  cipher.emplace(key.values);
  return true;
}

// The container, or nothing when neither block has one.
std::span<const uint8_t> FindPayload(const CalibrationInput& input) {
  if (input.block_a != nullptr && input.block_a_size != 0) {
    return {input.block_a, input.block_a_size};
  }
  if (input.block_b == nullptr || input.block_b_size <= kWrappedKeySize) {
    return {};
  }
  return std::span(input.block_b, input.block_b_size).subspan(kWrappedKeySize);
}

// Copies the record that is asked for. False when a forced index lies past the
// last one.
bool CopyRecord(const CalibrationInput& input, Units units,
                const Container& container, const RecordKind& kind,
                CalibrationRecord& record) {
  const uint32_t chosen = ChooseUnit(input, units, container, kind);
  if (chosen >= container.count) return false;
  const uint8_t* bytes = units.first + chosen * units.stride;
  const bool is_second_half = input.selector == 1 || input.selector == 3;
  if (is_second_half) bytes += kind.second_half_at;
  std::memcpy(record.bytes.data(), bytes, kind.size);
  record.size = static_cast<uint32_t>(kind.size);
  record.kind = kind.kind;
  record.index = chosen;
  record.count = static_cast<uint32_t>(container.count);
  return true;
}

// Its frame, and those of what it calls, lie where WipeStack() writes.
[[gnu::noinline]] uint32_t Decode(const CalibrationInput& input,
                                  CalibrationRecord& record) {
  record = {};
  if (input.block_a == nullptr && input.block_b == nullptr) {
    return ZUQEL_CALIB_NO_BLOCK;
  }
  // A second block without a key is an error even when nothing is encrypted.
  std::optional<Aes256> cipher;
  if (input.block_b != nullptr &&
      !ReadKey({input.block_b, input.block_b_size}, input.default_keys.general,
               cipher)) {
    return ZUQEL_CALIB_NO_KEY;
  }
  const std::span<const uint8_t> payload = FindPayload(input);
  if (payload.empty()) return ZUQEL_CALIB_NO_PAYLOAD;
  const std::optional<Container> container = FindContainer(payload.size());
  if (!container) return ZUQEL_CALIB_BAD_LENGTH;
  const RecordKind kind = *FindKind(container->kind);

  Units units = {payload.data() + container->First(), container->Stride()};
  SecretBytes<MostDecryptedBytes()> plain;
  if (container->encrypted) {
    const Key* const default_key = input.default_keys.*kind.default_key;
    if (!cipher && default_key != nullptr) cipher.emplace(*default_key);
    if (!cipher) return ZUQEL_CALIB_NOT_DECRYPTED;
    const uint32_t status =
        OpenUnits(payload, *container, kind, *cipher, plain.values);
    if (status != ZUQEL_SUCCESS) return status;
    units = {plain.values.data(), container->unit_size};
  }
  return CopyRecord(input, units, *container, kind, record)
             ? ZUQEL_SUCCESS
             : ZUQEL_CALIB_BAD_LENGTH;
}

// More than Decode() needs without optimisation.
constexpr size_t kDecodeStackWords = 2048;

// Wipes the stack below the caller's frame: secrets that the compiler spilled
// there from registers belong to no object that could do it.
[[gnu::noinline]] void WipeStack() {
  std::array<volatile uint64_t, kDecodeStackWords> words;
  for (volatile uint64_t& word : words) word = 0;
}

}  // namespace

uint32_t DecodeCalibration(const CalibrationInput& input,
                           CalibrationRecord& record) {
  const uint32_t status = Decode(input, record);
  WipeStack();
  return status;
}

std::optional<CameraValues> TakeCameraValues(const CalibrationRecord& record) {
  const std::optional<RecordKind> kind = FindKind(record.kind);
  if (!kind) return std::nullopt;
  const uint8_t* const optics = record.bytes.data() + kind->optics_at;
  return CameraValues{
      .focal_length = ReadFloat(optics + kFocalLengthAt),
      .focal_length_divisor = ReadFloat(optics + kFocalLengthDivisorAt),
      .third = ReadFloat(optics + kThirdAt)};
}

}  // namespace zuqel::calib
