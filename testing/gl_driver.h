// The GL drivers that the tests know, and what they have to know about them.
#ifndef ZUQEL_TESTING_GL_DRIVER_H_
#define ZUQEL_TESTING_GL_DRIVER_H_

#include <GLES2/gl2.h>
#include <GLES2/gl2ext.h>

#include <array>
#include <string_view>

namespace zuqel {

struct GlDriver {
  std::string_view name;
  std::string_view renderer;  // part of its GL_RENDERER
  // How far from its place a driver may take a filtered sample, as a share of
  // the image's width and height.
  double place_error;
  // What it may lose of a filtered value from 0 to 1.
  double value_error;
  // Frames take a second.
  bool is_slow;
};

// SwiftShader filters in 16 bits: it cuts texture coordinates, the half texel
// that it subtracts from them, and the four products that it adds. The others
// filter in floating point.
inline constexpr auto kGlDrivers = std::to_array<GlDriver>({
    {"angle", "SwiftShader", 1.0 / 65536, 4.0 / 65536, false},
    {"softpipe", "softpipe", 0, 0, true},
    {"llvmpipe", "llvmpipe", 0, 0, false},
});
// Graphics processors have eight bits for the place between two texels: as much
// in an image of 128.
inline constexpr GlDriver kHardware = {"hardware", "", 1.0 / 65536, 4.0 / 65536,
                                       false};

// Of the current context.
inline const GlDriver& CurrentGlDriver() {
  const auto* text = reinterpret_cast<const char*>(glGetString(GL_RENDERER));
  const std::string_view renderer = text == nullptr ? "" : text;
  for (const GlDriver& driver : kGlDrivers) {
    if (renderer.find(driver.renderer) != std::string_view::npos) return driver;
  }
  return kHardware;
}

// True if the current context's driver hands out program binaries.
inline bool KeepsPrograms() {
  GLint formats = 0;
  glGetIntegerv(GL_NUM_PROGRAM_BINARY_FORMATS_OES, &formats);
  return formats != 0;
}

}  // namespace zuqel

#endif  // ZUQEL_TESTING_GL_DRIVER_H_
