// What a command has made and must not leave behind.
#ifndef ZUQEL_TOOLS_FILES_TEMPORARY_PATH_H_
#define ZUQEL_TOOLS_FILES_TEMPORARY_PATH_H_

#include <atomic>
#include <string>

namespace zuqel::tools {

// A file or an empty folder that this program has made. Unless it is kept, the
// destructor removes it, and so does a signal that ends the program.
class TemporaryPath {
 public:
  explicit TemporaryPath(std::string path);
  ~TemporaryPath();
  TemporaryPath(const TemporaryPath&) = delete;
  TemporaryPath& operator=(const TemporaryPath&) = delete;

  [[nodiscard]] const std::string& path() const { return entry_->path; }
  void Keep() { entry_->is_temporary = false; }

  // An entry in the list that the signal handler walks. It is never freed: the
  // handler may run on any thread, at any time.
  struct Entry {
    std::string path;
    Entry* older = nullptr;
    std::atomic<bool> is_temporary = true;
  };

 private:
  Entry* entry_;
};

// Once, before the first TemporaryPath.
void RemoveTemporaryPathsOnSignals();

}  // namespace zuqel::tools

#endif  // ZUQEL_TOOLS_FILES_TEMPORARY_PATH_H_
