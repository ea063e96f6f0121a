// A file while it is read.
#include "files/input_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <utility>

#include "files/file_claims.h"
#include "files/standard_streams.h"
#include "tool_error.h"

namespace zuqel::tools {

InputFile::Descriptor::~Descriptor() {
  if (number >= 0) close(number);
}

InputFile::InputFile(std::string path)
    : path_(std::move(path)),
      file_(IsStandardStream(path_)
                ? TakeStandardInput()
                : open(path_.c_str(), O_RDONLY | O_CLOEXEC)) {
  struct stat status = {};
  if (file_.number < 0 || fstat(file_.number, &status) != 0) Fail("opened");
  if (S_ISDIR(status.st_mode)) throw InputError(path_ + ": is a folder");
  ClaimInput(path_);
  size_ = static_cast<size_t>(status.st_size);
}

size_t InputFile::Read(std::span<uint8_t> target) const {
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

void InputFile::Fail(const char* action) const {
  throw InputError(path_ + ": cannot be " + action + ": " +
                   std::strerror(errno));
}

}  // namespace zuqel::tools
