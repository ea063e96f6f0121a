// Output files that appear all together and complete, or not at all.
#include "photo/output_files.h"

#include <cstdio>
#include <system_error>

#include "coordinates.h"
#include "files/file_claims.h"
#include "files/standard_streams.h"
#include "photo/image_file.h"
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

// WorkError if something other than a file has this name, or nothing can.
void RequireFileName(const std::string& path) {
  std::error_code error;
  if (fs::symlink_status(path, error).type() == fs::file_type::none) {
    throw WorkError(path + ": cannot be written: " + error.message());
  }
  // A device must not be replaced by a file.
  const fs::file_status status = fs::status(path, error);
  if (fs::is_directory(status)) throw WorkError(path + ": is a folder");
  if (fs::exists(status) && !fs::is_regular_file(status)) {
    throw WorkError(path + ": is not a regular file");
  }
}

}  // namespace

void OutputFiles::CreateFolder(const std::string& path) {
  if (IsFolder(path)) return;
  std::error_code error;
  if (!fs::create_directory(path, error)) {
    throw WorkError(path + ": the folder cannot be created: " +
                    (error ? error.message() : "a file has this name"));
  }
  created_folder_.emplace(path);
}

void OutputFiles::Announce(const std::string& path) {
  if (path.empty()) throw InputError("the name of an output is empty");
  if (IsStandardStream(path)) {
    RequireNew(path, path);
    ClaimOutput(path);
    ReserveStandardOutput();
    return;
  }
  const fs::path folder = FolderOf(path);
  if (!IsFolder(folder)) {
    throw WorkError(path + ": the folder " + folder.string() +
                    " does not exist");
  }
  RequireFileName(path);
  const fs::path full_folder = fs::canonical(folder);
  RequireNew(path, full_folder / fs::path(path).filename());
  ClaimOutput(path);
  // Permissions do not tell whether a file can be made, so one is, and removed.
  if (folders_.insert(full_folder).second) PendingFile{path};
}

void OutputFiles::RequireNew(const std::string& path, const fs::path& whole) {
  if (!announced_.insert(whole).second) {
    throw InputError(path + ": is given for two outputs");
  }
}

void OutputFiles::Write(const std::string& path, const Picture& picture,
                        const Metadata& metadata, int quality) {
  PendingFile& file = Begin(path, ToText(SizeOf(picture))).file;
  WritePicture(picture, metadata, quality, file);
  file.Close();
}

void OutputFiles::Write(const std::string& path, const Map<uint8_t>& grey) {
  PendingFile& file = Begin(path, ToText(SizeOf(grey))).file;
  WriteGrey(grey, file);
  file.Close();
}

void OutputFiles::Write(const std::string& path, const DisparityMap& map) {
  PendingFile& file = Begin(path, ToText(SizeOf(map))).file;
  WriteDisparity(map, file);
  file.Close();
}

void OutputFiles::Write(const std::string& path, const Bytes& bytes) {
  PendingFile& file = Begin(path, std::to_string(bytes.size()) + " bytes").file;
  file.Write(bytes);
  file.Close();
}

OutputFiles::Written& OutputFiles::Begin(const std::string& path,
                                         const std::string& size) {
  return written_.emplace_back(path, size);
}

void OutputFiles::Commit() {
  for (Written& written : written_) written.file.Close();
  for (Written& written : written_) {
    written.file.Commit();
    if (created_folder_) created_folder_->Keep();
  }
  for (const Written& written : written_) {
    if (IsStandardStream(written.file.target()) || written.size.empty())
      continue;
    std::printf("wrote %s (%s)\n", written.file.target().c_str(),
                written.size.c_str());
  }
  written_.clear();
}

}  // namespace zuqel::tools
