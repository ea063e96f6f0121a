// Encrypts a plain calibration container.
#ifndef ZUQEL_TOOLS_CALIBRATION_CONTAINER_SEAL_H_
#define ZUQEL_TOOLS_CALIBRATION_CONTAINER_SEAL_H_

#include "calib/calibration.h"
#include "files/file_bytes.h"

namespace zuqel::tools {

// Returns the encrypted container of the same records, each with a nonce from
// the system's random source. Throws an InputError, which names no file, when
// `plain` is not a plain container.
Bytes SealContainer(const Bytes& plain, const calib::Key& key);

}  // namespace zuqel::tools

#endif  // ZUQEL_TOOLS_CALIBRATION_CONTAINER_SEAL_H_
