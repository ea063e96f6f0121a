// Reads whole files.
#include "files/file_bytes.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "files/file_claims.h"
#include "tool_error.h"

namespace zuqel::tools {
namespace {

[[noreturn]] void RefuseLarger(const std::string& path, size_t limit) {
  const bool is_small = limit < size_t{1} << 20;
  throw InputError(path + ": is larger than " +
                   std::to_string(limit >> (is_small ? 10 : 20)) +
                   (is_small ? " KiB" : " MiB"));
}

struct Descriptor {
  explicit Descriptor(int opened) : number(opened) {}
  ~Descriptor() {
    if (number >= 0) close(number);
  }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;

  int number;
};

class InputFile {
 public:
  explicit InputFile(const std::string& path)
      : path_(path), file_(open(path.c_str(), O_RDONLY | O_CLOEXEC)) {
    if (file_.number < 0 || fstat(file_.number, &status_) != 0) Fail("opened");
    if (S_ISDIR(status_.st_mode)) throw InputError(path + ": is a folder");
    ClaimInput(path);
  }
  // 0 for a device or pipe.
  [[nodiscard]] size_t size() const {
    return static_cast<size_t>(status_.st_size);
  }

  // Returns the number of bytes; less than the target's only at the end.
  [[nodiscard]] size_t Read(std::span<uint8_t> target) const {
    size_t done = 0;
    while (done < target.size()) {
      const ssize_t count =
          read(file_.number, &target[done], target.size() - done);
      if (count == 0) break;
      if (count < 0 && errno == EINTR) continue;
      if (count < 0) Fail("read");
      done += static_cast<size_t>(count);
    }
    return done;
  }

 private:
  [[noreturn]] void Fail(const char* action) const {
    throw InputError(path_ + ": cannot be " + action + ": " +
                     std::strerror(errno));
  }

  const std::string& path_;
  Descriptor file_;
  struct stat status_ = {};
};

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
