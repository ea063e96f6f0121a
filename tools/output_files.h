// Output files that appear all together and complete, or not at all.
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

// Files are written next to their targets under temporary names, and renamed in
// Commit. Without Commit the destructor removes them.
class OutputFiles {
 public:
  OutputFiles() = default;
  ~OutputFiles();
  OutputFiles(const OutputFiles&) = delete;
  OutputFiles& operator=(const OutputFiles&) = delete;

  // Creates the folder if it does not exist. InputError if that fails.
  void CreateFolder(const std::string& path);

  // Declares, before any work, that `path` will be written. InputError if its
  // folder is missing, it is a folder itself, it was announced before, or the
  // file is one of the inputs, whether these are read before or after.
  void Announce(const std::string& path);

  // Writes a file for the announced `path`; pictures as PNG.
  void Write(const std::string& path, const Picture& picture);
  void Write(const std::string& path, const Map<uint8_t>& grey);
  void Write(const std::string& path, const DisparityMap& map);
  void Write(const std::string& path, const Bytes& bytes);

  // Returns the temporary name under which the caller has to write the file for
  // the announced `path`; `size` is what Commit prints about it.
  std::filesystem::path Begin(const std::string& path, const std::string& size);

  // Renames every written file to its target and prints a line for each.
  void Commit();

 private:
  struct Written {
    std::string path;
    std::filesystem::path temporary;
    std::string size;
  };

  std::set<std::filesystem::path> announced_;
  std::vector<Written> written_;
  std::filesystem::path created_folder_;
};

}  // namespace zuqel::tools

#endif  // ZUQEL_TOOLS_OUTPUT_FILES_H_
