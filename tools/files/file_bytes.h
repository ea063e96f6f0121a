// Reads whole files.
#ifndef ZUQEL_TOOLS_FILES_FILE_BYTES_H_
#define ZUQEL_TOOLS_FILES_FILE_BYTES_H_

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace zuqel::tools {

using Bytes = std::vector<uint8_t>;

// No picture of the largest size needs more: with 16-bit colours it has 384
// MiB.
inline constexpr size_t kLargestFile = size_t{512} << 20;

// InputError as InputFile, and if the file is larger than kLargestFile.
Bytes ReadFile(const std::string& path);

// The same for a file that fits into `target`; returns its size. Keeps no copy.
size_t ReadFileInto(const std::string& path, std::span<uint8_t> target);

}  // namespace zuqel::tools

#endif  // ZUQEL_TOOLS_FILES_FILE_BYTES_H_
