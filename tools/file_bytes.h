// Reads and writes whole files.
#ifndef ZUQEL_TOOLS_FILE_BYTES_H_
#define ZUQEL_TOOLS_FILE_BYTES_H_

#include <cstdint>
#include <string>
#include <vector>

namespace zuqel::tools {

using Bytes = std::vector<uint8_t>;

// InputError if the file cannot be opened, is a folder or is claimed as an
// output.
Bytes ReadFile(const std::string& path);

// WorkError unless all of it could be written.
void WriteFile(const Bytes& bytes, const std::string& path);

}  // namespace zuqel::tools

#endif  // ZUQEL_TOOLS_FILE_BYTES_H_
