// Writes frame dumps.
#include "gl/frame_dump.h"

#include <sys/system_properties.h>

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
  struct Close {
    void operator()(std::FILE* file) const {
      static_cast<void>(std::fclose(file));
    }
  };
  const std::unique_ptr<std::FILE, Close> file(
      std::fopen(PathOf(image, name).data(), "wb"));
  if (file == nullptr) {
    ZUQEL_LOG("*VX* WriteRAW Image Failed!!!");
    return;
  }
  // A short write is the tuner's to notice; the frame goes on.
  static_cast<void>(std::fwrite(image.pixels, 1, image.byte_count, file.get()));
}

}  // namespace zuqel
