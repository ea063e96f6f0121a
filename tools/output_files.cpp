// Output files that appear all together and complete, or not at all.
#include "output_files.h"

#include <unistd.h>

#include <cstdio>
#include <system_error>

#include "coordinates.h"
#include "file_claims.h"
#include "image_file.h"
#include "tool_error.h"

namespace zuqel::tools {
namespace {

namespace fs = std::filesystem;

bool IsFolder(const fs::path& path) {
  std::error_code ignored;
  return fs::is_directory(path, ignored);
}

fs::path FolderOf(const fs::path& path) {
  return path.has_parent_path() ? path.parent_path() : fs::path(".");
}

}  // namespace

OutputFiles::~OutputFiles() {
  std::error_code ignored;
  for (const Written& file : written_) fs::remove(file.temporary, ignored);
  if (!created_folder_.empty()) fs::remove(created_folder_, ignored);
}

void OutputFiles::CreateFolder(const std::string& path) {
  if (IsFolder(path)) return;
  std::error_code error;
  if (!fs::create_directory(path, error)) {
    throw InputError(path + ": the folder cannot be created: " +
                     (error ? error.message() : "a file has this name"));
  }
  created_folder_ = path;
}

void OutputFiles::Announce(const std::string& path) {
  const fs::path folder = FolderOf(path);
  if (!IsFolder(folder)) {
    throw InputError(path + ": the folder " + folder.string() +
                     " does not exist");
  }
  if (access(folder.c_str(), W_OK) != 0) {
    throw InputError(path + ": the folder " + folder.string() +
                     " is not writable");
  }
  if (IsFolder(path)) throw InputError(path + ": is a folder");
  // A device must not be replaced by a file.
  if (fs::exists(path) && !fs::is_regular_file(path)) {
    throw InputError(path + ": is not a regular file");
  }
  const fs::path full = fs::canonical(folder) / fs::path(path).filename();
  if (!announced_.insert(full).second) {
    throw InputError(path + ": is given for two outputs");
  }
  ClaimOutput(path);
}

void OutputFiles::Write(const std::string& path, const Picture& picture) {
  WritePicture(picture, Begin(path, ToText(SizeOf(picture))));
}

void OutputFiles::Write(const std::string& path, const Map<uint8_t>& grey) {
  WriteGrey(grey, Begin(path, ToText(SizeOf(grey))));
}

void OutputFiles::Write(const std::string& path, const DisparityMap& map) {
  WriteDisparity(map, Begin(path, ToText(SizeOf(map))));
}

void OutputFiles::Write(const std::string& path, const Bytes& bytes) {
  WriteFile(bytes, Begin(path, std::to_string(bytes.size()) + " bytes"));
}

fs::path OutputFiles::Begin(const std::string& path, const std::string& size) {
  const fs::path target = path;
  std::string name = ".";
  name += target.filename().string() + "." + std::to_string(getpid());
  written_.push_back({path, FolderOf(target) / name, size});
  return written_.back().temporary;
}

void OutputFiles::Commit() {
  for (const Written& file : written_) {
    std::error_code error;
    fs::rename(file.temporary, file.path, error);
    if (error) {
      throw WorkError(file.path + ": cannot be written: " + error.message());
    }
    created_folder_.clear();
  }
  for (const Written& file : written_) {
    std::printf("wrote %s (%s)\n", file.path.c_str(), file.size.c_str());
  }
  written_.clear();
}

}  // namespace zuqel::tools
