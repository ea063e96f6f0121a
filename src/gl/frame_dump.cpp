// Writes frame dumps.
#include "gl/frame_dump.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/system_properties.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <memory>

#include "base/log.h"
#include "base/property.h"
#include "base/version.h"

namespace zuqel {
namespace {

// The name alone has fewer than 256 characters: a short tag and numbers.
using DumpPath = std::array<char, PROP_VALUE_MAX + 256>;

DumpPath PathOf(const DumpImage& image, const DumpName& name) {
  std::array<char, PROP_VALUE_MAX> directory = {};
  __system_property_get("persist.zu.LVGLbokeh.fileDir", directory.data());
  DumpPath path = {};
  static_cast<void>(std::snprintf(
      path.data(), path.size(), "%sGL%s_%dx%d_v%s_%04d_%d_%d.raw",
      directory.data(), image.tag, image.width, image.height, kVersion.data(),
      static_cast<int>(name.sequence_number), name.focus_x, name.focus_y));
  return path;
}

struct CloseFile {
  void operator()(std::FILE* file) const {
    static_cast<void>(std::fclose(file));
  }
};
using DumpFile = std::unique_ptr<std::FILE, CloseFile>;

// Null if it cannot be opened. Others may write to the folder: neither does a
// link there lead elsewhere, nor does a pipe stop the frame.
DumpFile OpenDump(const DumpPath& path) {
  constexpr mode_t kAll =
      S_IRUSR | S_IWUSR | S_IRGRP | S_IWGRP | S_IROTH | S_IWOTH;
  const int file = open(
      path.data(),
      O_WRONLY | O_CREAT | O_TRUNC | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC, kAll);
  if (file < 0) return nullptr;
  struct stat status = {};
  DumpFile stream;
  if (fstat(file, &status) == 0 && S_ISREG(status.st_mode)) {
    stream.reset(fdopen(file, "wb"));
  }
  if (stream == nullptr) close(file);
  return stream;
}

}  // namespace

bool DumpsAreOn() {
  return ReadIntProperty("persist.zu.VLGLbokeh.readfile") != 0;
}

void DumpFrame(const DumpImage& image, const DumpName& name) {
  if (image.pixels == nullptr) {
    ZUQEL_LOG("pointer is NULL in FrameDump");
    return;
  }
  if (!DumpsAreOn()) return;
  const DumpFile file = OpenDump(PathOf(image, name));
  if (file == nullptr) {
    ZUQEL_LOG("*VX* WriteRAW Image Failed!!!");
    return;
  }
  // A short write is the tuner's to notice; the frame goes on.
  static_cast<void>(std::fwrite(image.pixels, 1, image.byte_count, file.get()));
}

}  // namespace zuqel
