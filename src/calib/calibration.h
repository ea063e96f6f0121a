// The camera module's calibration: decodes a container into a record and reads
// the camera values from it.
#ifndef ZUQEL_CALIB_CALIBRATION_H_
#define ZUQEL_CALIB_CALIBRATION_H_

#include <array>
#include <cstdint>
#include <optional>
#include <span>

#include "calib/secret.h"

namespace zuqel::calib {

// Picks the record that fits the lens position best, of the first three.
inline constexpr uint32_t kByLensPosition = 0xFFFFFFFF;

using Key = std::array<uint8_t, 32>;

// The device maker's keys; null where there is none.
struct DefaultKeys {
  // Decrypts records that come without a second block, and unwraps keys.
  const Key* general = nullptr;
  // Decrypts kind-4 containers that come without a second block.
  const Key* kind4 = nullptr;
};

// The blocks stay the caller's; nothing past their sizes is read.
struct CalibrationInput {
  // The container, recognised by its length alone. When null or of size 0, the
  // second block has it.
  const uint8_t* block_a = nullptr;
  uint32_t block_a_size = 0;
  // Null, or the key of encrypted records: 32 bytes are the key itself. Of any
  // other size, the first 40 bytes are the key wrapped with the general default
  // key, followed by the container when the first block has none.
  const uint8_t* block_b = nullptr;
  uint32_t block_b_size = 0;
  // Half of a kind-4 container: the second for 1 and 3, otherwise the first.
  int32_t selector = 0;
  // Position of the lens actuator, for kByLensPosition.
  int32_t lens_position = 0;
  // Record to pick from a container with several, or kByLensPosition.
  uint32_t forced_index = 0;
  DefaultKeys default_keys = {};
};

// Wiped when it dies; so are its copies.
struct CalibrationRecord {
  CalibrationRecord() = default;
  CalibrationRecord(const CalibrationRecord&) = default;
  CalibrationRecord& operator=(const CalibrationRecord&) = default;
  ~CalibrationRecord() { Wipe(std::span(bytes)); }

  std::array<uint8_t, 512> bytes = {};  // zero from `size` on
  uint32_t size = 0;                    // 464 or 512
  int32_t kind = 0;                     // 1, 3 or 4
  uint32_t index = 0;                   // in its container; 0 for kind 4
  uint32_t count = 0;  // records in the container; 1 for kind 4
};

// Decodes a container and picks one record. Returns 0 or a ZUQEL_CALIB_ code of
// the public header; after a failure `record` may hold part of a record. A
// forced index past the last record is ZUQEL_CALIB_BAD_LENGTH. Every record of
// an encrypted container must decrypt, whichever is picked. Keys and decrypted
// bytes are wiped from the stack, except for `record`.
[[nodiscard]] uint32_t DecodeCalibration(const CalibrationInput& input,
                                         CalibrationRecord& record);

// What a session keeps of a record. The focal length is the first value divided
// by the second.
struct CameraValues {
  float focal_length = 0;
  float focal_length_divisor = 0;
  float third = 0;
};

// Nothing for an unknown kind.
std::optional<CameraValues> TakeCameraValues(const CalibrationRecord& record);

}  // namespace zuqel::calib

#endif  // ZUQEL_CALIB_CALIBRATION_H_
