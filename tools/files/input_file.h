// A file while it is read.
#ifndef ZUQEL_TOOLS_FILES_INPUT_FILE_H_
#define ZUQEL_TOOLS_FILES_INPUT_FILE_H_

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

namespace zuqel::tools {

// "-" is standard input. InputError if the file cannot be opened or read, is a
// folder, or is claimed as an output.
class InputFile {
 public:
  explicit InputFile(std::string path);

  [[nodiscard]] const std::string& path() const { return path_; }

  // 0 for a device or pipe.
  [[nodiscard]] size_t size() const { return size_; }

  // Returns the number of bytes; less than the target's only at the end.
  [[nodiscard]] size_t Read(std::span<uint8_t> target) const;

 private:
  struct Descriptor {
    explicit Descriptor(int opened) : number(opened) {}
    ~Descriptor();
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    int number;
  };

  [[noreturn]] void Fail(const char* action) const;

  std::string path_;
  Descriptor file_;
  size_t size_ = 0;
};

}  // namespace zuqel::tools

#endif  // ZUQEL_TOOLS_FILES_INPUT_FILE_H_
