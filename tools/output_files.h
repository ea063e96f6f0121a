// Output files that appear together, whole, or not at all.
#ifndef ZUQEL_TOOLS_OUTPUT_FILES_H_
#define ZUQEL_TOOLS_OUTPUT_FILES_H_

#include <cstdint>
#include <filesystem>
#include <set>
#include <string>
#include <vector>

#include "file_bytes.h"
#include "image.h"

namespace zuqel::tools {

// The files are written beside their targets under names of their own, and take
// the targets' names in Commit. Without it the destructor removes them.
class OutputFiles {
 public:
  OutputFiles() = default;
  ~OutputFiles();
  OutputFiles(const OutputFiles&) = delete;
  OutputFiles& operator=(const OutputFiles&) = delete;

  // Makes the folder where there is none. InputError when that fails.
  void MakeFolder(const std::string& path);

  // Says before any work that `path` will be written. InputError when its
  // folder is missing, it is a folder itself, it was announced before, or the
  // file is one of the inputs, whether read already or later.
  void Announce(const std::string& path);

  // Writes a file for the announced `path`; pictures as PNG.
  void Write(const std::string& path, const Picture& picture);
  void Write(const std::string& path, const Map<uint8_t>& grey);
  void Write(const std::string& path, const DisparityMap& map);
  void Write(const std::string& path, const Bytes& bytes);

  // Where the caller writes the file for the announced `path`; `size` is what
  // Commit says of it.
  std::filesystem::path Begin(const std::string& path, const std::string& size);

  // Moves every written file to its place and prints a line for each.
  void Commit();

 private:
  struct Written {
    std::string path;
    std::filesystem::path temporary;
    std::string size;
  };

  std::set<std::filesystem::path> announced_;
  std::vector<Written> written_;
  std::filesystem::path made_folder_;
};

}  // namespace zuqel::tools

#endif  // ZUQEL_TOOLS_OUTPUT_FILES_H_
