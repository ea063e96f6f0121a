// Reads keys from files.
#ifndef ZUQEL_TOOLS_CALIBRATION_KEY_FILE_H_
#define ZUQEL_TOOLS_CALIBRATION_KEY_FILE_H_

#include <cstddef>
#include <cstdint>
#include <string>

#include "calib/secret.h"

namespace zuqel::tools {

// The camera module's second block, wiped when it dies. There is room for a
// wrapped key and the longest container.
struct SecondBlock {
  calib::SecretBytes<4096> bytes;
  uint32_t size = 0;
};

inline constexpr size_t kKeySize = 32;

// Leave no other copy of what they read. A file of 64 hex digits is the key
// that it spells: it can be nothing else, for a wrapped key and a container are
// longer. InputError if the file cannot be read or does not fit.
void ReadSecondBlock(const std::string& path, SecondBlock& block);

// InputError also if the file is not a key.
void ReadKey(const std::string& path, calib::SecretBytes<kKeySize>& key);

}  // namespace zuqel::tools

#endif  // ZUQEL_TOOLS_CALIBRATION_KEY_FILE_H_
