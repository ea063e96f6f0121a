// Reads whole files.
#include "files/file_bytes.h"

#include <algorithm>

#include "files/input_file.h"
#include "tool_error.h"

namespace zuqel::tools {
namespace {

[[noreturn]] void RefuseLarger(const std::string& path, size_t limit) {
  const bool is_small = limit < size_t{1} << 20;
  throw InputError(path + ": is larger than " +
                   std::to_string(limit >> (is_small ? 10 : 20)) +
                   (is_small ? " KiB" : " MiB"));
}

}  // namespace

Bytes ReadFile(const std::string& path) {
  // Doubled, it stays clear of the limit until the last step.
  constexpr size_t kFirstRoom = (size_t{64} << 10) + 1;
  const InputFile file(path);
  if (file.size() > kLargestFile) RefuseLarger(path, kLargestFile);
  // With room for one byte more, the end shows.
  Bytes bytes(std::max(file.size() + 1, kFirstRoom));
  size_t size = file.Read(bytes);
  while (size == bytes.size()) {
    if (size > kLargestFile) RefuseLarger(path, kLargestFile);
    bytes.resize(std::min(2 * size, kLargestFile + 1));
    size += file.Read(std::span(bytes).subspan(size));
  }
  bytes.resize(size);
  return bytes;
}

size_t ReadFileInto(const std::string& path, std::span<uint8_t> target) {
  const InputFile file(path);
  const size_t size = file.Read(target);
  uint8_t next = 0;
  if (size == target.size() && file.Read({&next, 1}) != 0) {
    RefuseLarger(path, target.size());
  }
  return size;
}

}  // namespace zuqel::tools
