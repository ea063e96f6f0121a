// An output file while it is written.
#ifndef ZUQEL_TOOLS_FILES_PENDING_FILE_H_
#define ZUQEL_TOOLS_FILES_PENDING_FILE_H_

#include <cstdint>
#include <cstdio>
#include <memory>
#include <optional>
#include <span>
#include <string>

#include "files/temporary_path.h"

namespace zuqel::tools {

// Made new, next to its target, under a name that nobody can foresee, and
// renamed in Commit: a link in the target's place is replaced, never followed.
// Has the permissions of the file that it replaces. The target "-" is the
// standard output that was reserved, and has what is written at once. Members
// throw WorkError, which names the target, and ClosedPipe.
class PendingFile {
 public:
  explicit PendingFile(std::string target);

  [[nodiscard]] const std::string& target() const { return target_; }

  // For a writer that takes one; null after Close.
  [[nodiscard]] std::FILE* stream() const { return stream_.get(); }

  void Write(std::span<const uint8_t> bytes) const;
  void Write(const std::string& text) const;

  // Passes on what is written so far.
  void Flush() const;

  // Has everything on the disk. May be called again.
  void Close();

  // After Close.
  void Commit();

  // With the reason in errno, or `reason` if a write to the stream did not
  // fail.
  [[noreturn]] void Fail(const std::string& reason = {}) const;

 private:
  void CreateTemporary();
  void Own(int file);  // an open one, to write to

  struct CloseStream {
    void operator()(std::FILE* stream) const {
      static_cast<void>(std::fclose(stream));
    }
  };

  std::string target_;
  std::optional<TemporaryPath> temporary_;
  std::unique_ptr<std::FILE, CloseStream> stream_;
};

}  // namespace zuqel::tools

#endif  // ZUQEL_TOOLS_FILES_PENDING_FILE_H_
