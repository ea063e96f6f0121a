// The camera module's calibration: containers, records, and the values taken.
#ifndef ZUQEL_CALIB_CALIBRATION_H_
#define ZUQEL_CALIB_CALIBRATION_H_

#include <array>
#include <cstdint>
#include <optional>
#include <span>

#include "calib/secret.h"

namespace zuqel::calib {

// Asks for the record that fits the lens position best, of the first three.
inline constexpr uint32_t kByLensPosition = 0xFFFFFFFF;

using Key = std::array<uint8_t, 32>;

// The device maker's own keys; null where there is none.
struct DefaultKeys {
  // Opens records that come without a second block, and wrapped keys.
  const Key* general = nullptr;
  // Opens kind-4 containers that come without a second block.
  const Key* kind4 = nullptr;
};

// The blocks stay the caller's; nothing behind their sizes is read.
struct CalibrationInput {
  // The container, recognised by its length alone. Null or size 0: it is in the
  // second block.
  const uint8_t* block_a = nullptr;
  uint32_t block_a_size = 0;
  // Null, or 32 bytes: the key of encrypted records. Any other size: 40 bytes
  // of the key wrapped with the general default key, and behind them the
  // container where the first block has none.
  const uint8_t* block_b = nullptr;
  uint32_t block_b_size = 0;
  // Which half of a kind-4 container: 1 and 3 take the second one.
  int32_t selector = 0;
  // Lens-actuator position, used with `forced_index` kByLensPosition.
  int32_t lens_position = 0;
  // Record of a kind-1 or kind-3 container with several records to take, or
  // kByLensPosition.
  uint32_t forced_index = 0;
  DefaultKeys default_keys = {};
};

// Wiped when it dies, as every copy of it is.
struct CalibrationRecord {
  CalibrationRecord() = default;
  CalibrationRecord(const CalibrationRecord&) = default;
  CalibrationRecord& operator=(const CalibrationRecord&) = default;
  ~CalibrationRecord() { Wipe(std::span(bytes)); }

  std::array<uint8_t, 512> bytes = {};  // zero from `size` on
  uint32_t size = 0;                    // 464 or 512
  int32_t kind = 0;                     // 1, 3 or 4
  uint32_t index = 0;                   // place in its container; 0 for kind 4
  uint32_t count = 0;  // records in the container; 1 for kind 4
};

// Decodes a container and picks one record. Returns 0 or a ZUQEL_CALIB_ code of
// the public header; after a failure `record` may hold part of a record. A
// forced index past the records is ZUQEL_CALIB_BAD_LENGTH. Of an encrypted
// container every record must open, whichever is picked; the key and the others
// are wiped from memory.
[[nodiscard]] uint32_t DecodeCalibration(const CalibrationInput& input,
                                         CalibrationRecord& record);

// What a session keeps of a record. The focal length is the quotient of the
// first two.
struct CameraValues {
  float focal_length = 0;
  float focal_length_divisor = 0;
  float third = 0;
};

// Nothing for a kind without known places.
std::optional<CameraValues> TakeCameraValues(const CalibrationRecord& record);

}  // namespace zuqel::calib

#endif  // ZUQEL_CALIB_CALIBRATION_H_
