// Output files that appear all together and complete, or not at all.
#ifndef ZUQEL_TOOLS_PHOTO_OUTPUT_FILES_H_
#define ZUQEL_TOOLS_PHOTO_OUTPUT_FILES_H_

#include <cstdint>
#include <filesystem>
#include <list>
#include <optional>
#include <set>
#include <string>
#include <utility>

#include "files/file_bytes.h"
#include "files/pending_file.h"
#include "files/temporary_path.h"
#include "image.h"
#include "photo/metadata.h"
#include "photo/picture_writer.h"

namespace zuqel::tools {

// Files are written next to their targets under temporary names, and renamed in
// Commit. Without Commit they are removed. One output may be "-", standard
// output, which has its bytes as they are written.
class OutputFiles {
 public:
  struct Written {
    Written(const std::string& path, std::string text)
        : file(path), size(std::move(text)) {}

    PendingFile file;
    std::string size;  // which Commit prints
  };

  // Creates the folder if it does not exist. WorkError if that fails.
  void CreateFolder(const std::string& path);

  // Declares, before any work, that `path` will be written. WorkError if no
  // file can be made in its folder or it is something other than a file;
  // InputError if it was announced before or is one of the inputs, whether
  // these are read before or after. See ReserveStandardOutput for "-".
  void Announce(const std::string& path);

  // Writes a file for the announced `path`: a picture as its name says, see
  // photo/picture_writer.h, and maps as PNG.
  void Write(const std::string& path, const Picture& picture,
             const Metadata& metadata = {}, int quality = kDefaultQuality);
  void Write(const std::string& path, const Map<uint8_t>& grey);
  void Write(const std::string& path, const DisparityMap& map);
  void Write(const std::string& path, const Bytes& bytes);

  // Begins the file for the announced `path`, for the caller to write until
  // Commit; `size` is what Commit prints about it, which is silent about a file
  // without.
  Written& Begin(const std::string& path, const std::string& size);

  // Renames every written file to its target and prints a line for each.
  void Commit();

 private:
  void RequireNew(const std::string& path, const std::filesystem::path& whole);

  std::set<std::filesystem::path> announced_, folders_;
  std::optional<TemporaryPath> created_folder_;  // outlives the files in it
  std::list<Written> written_;
};

}  // namespace zuqel::tools

#endif  // ZUQEL_TOOLS_PHOTO_OUTPUT_FILES_H_
