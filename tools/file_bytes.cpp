// Reads and writes whole files.
#include "file_bytes.h"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <system_error>

#include "file_claims.h"
#include "tool_error.h"

namespace zuqel::tools {

Bytes ReadFile(const std::string& path) {
  std::error_code ignored;
  if (std::filesystem::is_directory(path, ignored)) {
    throw InputError(path + ": is a folder");
  }
  ClaimInput(path);
  std::ifstream file(path, std::ios::binary);
  if (!file) {
    throw InputError(path + ": cannot be opened: " + std::strerror(errno));
  }
  return {std::istreambuf_iterator<char>(file), {}};
}

void WriteFile(const Bytes& bytes, const std::string& path) {
  std::ofstream file(path, std::ios::binary);
  file.write(reinterpret_cast<const char*>(bytes.data()),
             static_cast<std::streamsize>(bytes.size()));
  file.close();
  if (!file) {
    throw WorkError(path + ": cannot be written: " + std::strerror(errno));
  }
}

}  // namespace zuqel::tools
