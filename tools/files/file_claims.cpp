// Keeps a command from writing over a file that it reads.
#include "files/file_claims.h"

#include <sys/stat.h>
#include <unistd.h>

#include <map>
#include <optional>
#include <set>
#include <utility>

#include "files/standard_streams.h"
#include "tool_error.h"

namespace zuqel::tools {
namespace {

using FileId = std::pair<dev_t, ino_t>;

// `stream` is what "-" stands for. Devices and pipes are no one's: many use the
// same one.
std::optional<FileId> Identify(const std::string& path, int stream) {
  struct stat status = {};
  const int failed = IsStandardStream(path) ? fstat(stream, &status)
                                            : stat(path.c_str(), &status);
  if (failed != 0 || !S_ISREG(status.st_mode)) return std::nullopt;
  return FileId{status.st_dev, status.st_ino};
}

struct Claims {
  std::set<FileId> inputs;
  std::map<FileId, std::string> outputs;  // with the path as given
};

Claims& State() {
  static Claims claims;
  return claims;
}

[[noreturn]] void Refuse(const std::string& output) {
  throw InputError(output + ": is one of the inputs");
}

}  // namespace

void ClaimInput(const std::string& path) {
  const std::optional<FileId> id = Identify(path, STDIN_FILENO);
  if (!id) return;
  const auto output = State().outputs.find(*id);
  if (output != State().outputs.end()) Refuse(output->second);
  State().inputs.insert(*id);
}

void ClaimOutput(const std::string& path) {
  const std::optional<FileId> id = Identify(path, STDOUT_FILENO);
  if (!id) return;
  if (State().inputs.contains(*id)) Refuse(path);
  State().outputs.emplace(*id, path);
}

}  // namespace zuqel::tools
