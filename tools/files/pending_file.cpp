// An output file while it is written.
#include "files/pending_file.h"

#include <fcntl.h>
#include <sys/random.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <utility>

#include "files/standard_streams.h"
#include "tool_error.h"

namespace zuqel::tools {
namespace {

// Of the regular file at `path`; nothing if there is none.
std::optional<mode_t> PermissionsOf(const std::string& path) {
  struct stat status = {};
  if (lstat(path.c_str(), &status) != 0 || !S_ISREG(status.st_mode)) {
    return std::nullopt;
  }
  return status.st_mode & (S_IRWXU | S_IRWXG | S_IRWXO);
}

std::string RandomName() {
  uint64_t number = 0;
  if (getrandom(&number, sizeof(number), 0) != sizeof(number)) {
    throw WorkError("the system has no random numbers");
  }
  std::array<char, 32> name = {};
  static_cast<void>(std::snprintf(name.data(), name.size(), ".zuqel-%016llx",
                                  static_cast<unsigned long long>(number)));
  return name.data();
}

// Until it has its permissions, only the owner may open a file that replaces
// another; a new one gets those that the umask leaves.
int CreateFile(const std::string& path, bool replaces) {
  constexpr mode_t kOwner = S_IRUSR | S_IWUSR;
  constexpr mode_t kAll = kOwner | S_IRGRP | S_IWGRP | S_IROTH | S_IWOTH;
  return open(path.c_str(),
              O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC,
              replaces ? kOwner : kAll);
}

}  // namespace

PendingFile::PendingFile(std::string target) : target_(std::move(target)) {
  if (IsStandardStream(target_)) {
    Own(OpenReservedOutput());
  } else {
    CreateTemporary();
  }
}

void PendingFile::Own(int file) {
  stream_.reset(fdopen(file, "wb"));
  if (stream_ != nullptr) return;
  const int error = errno;
  close(file);
  errno = error;
  Fail();
}

void PendingFile::CreateTemporary() {
  constexpr int kAttempts = 8;  // at names that are free
  const auto folder = std::filesystem::path(target_).parent_path();
  const std::optional<mode_t> permissions = PermissionsOf(target_);
  int file = -1;
  for (int i = 0; file < 0; ++i) {
    const std::string path = folder / RandomName();
    file = CreateFile(path, permissions.has_value());
    if (file >= 0)
      temporary_.emplace(path);
    else if (errno != EEXIST || i == kAttempts)
      Fail();
  }
  Own(file);
  if (permissions && fchmod(file, *permissions) != 0) Fail();
}

void PendingFile::Write(std::span<const uint8_t> bytes) const {
  if (std::fwrite(bytes.data(), 1, bytes.size(), stream()) != bytes.size()) {
    Fail();
  }
}

void PendingFile::Write(const std::string& text) const {
  if (std::fputs(text.c_str(), stream()) == EOF) Fail();
}

void PendingFile::Flush() const {
  if (std::fflush(stream()) != 0) Fail();
}

void PendingFile::Close() {
  if (stream_ == nullptr) return;
  Flush();
  // Some file systems report a lack of space only now. Where there is nothing
  // to synchronise, EINVAL.
  if (fsync(fileno(stream())) != 0 && errno != EINVAL) Fail();
  if (std::fclose(stream_.release()) != 0) Fail();
}

void PendingFile::Commit() {
  if (!temporary_) return;
  if (std::rename(temporary_->path().c_str(), target_.c_str()) != 0) Fail();
  temporary_->Keep();
}

void PendingFile::Fail(const std::string& reason) const {
  const bool is_known = reason.empty() || std::ferror(stream()) != 0;
  if (is_known && errno == EPIPE) throw ClosedPipe();
  throw WorkError(target_ + ": cannot be written: " +
                  (is_known ? std::strerror(errno) : reason));
}

}  // namespace zuqel::tools
