// Inputs of the programs by their names in the shaders: the vertex attributes
// of the quad and all uniforms.
#ifndef ZUQEL_RENDER_PROGRAM_INPUTS_H_
#define ZUQEL_RENDER_PROGRAM_INPUTS_H_

#include <array>
#include <cstddef>
#include <string_view>

#include "gl/program.h"

namespace zuqel {

// Programs are linked with these at locations 0 and 1, which PlainGlState
// restores.
inline constexpr std::array kAttributeNames = {"position",
                                               "inputTextureCoordinate"};
inline constexpr std::array kUniformNames = {
    "projection",
    // Sizes and distances in texels.
    "fWidth", "fHeight", "scale", "myscale",
    // Weights.
    "focusPlane", "mouseX", "mouseY", "F_number", "min_depth", "max_depth",
    "focal_length",
    // Samplers, and how many layers of blur there are.
    "inputYTexture", "inputUVTexture", "inputUTexture", "inputVTexture",
    "inputImageTexture", "depthTexture", "depthTexture2", "blurTexture1",
    "blurTexture4", "refocusTexture", "blurLayer"};
static_assert(kAttributeNames.size() <= kMaxAttributes);
static_assert(kUniformNames.size() <= kMaxUniforms);

inline constexpr ProgramInterface kProgramInterface = {kAttributeNames,
                                                       kUniformNames};

// A uniform by name. A name that is not in the list above does not compile.
class Uniform {
 public:
  // Implicit: a name stands for its uniform.
  consteval Uniform(const char* name) : index_(IndexOf(name)) {}

  [[nodiscard]] size_t index() const { return index_; }

 private:
  static consteval size_t IndexOf(std::string_view name) {
    size_t index = 0;
    while (kUniformNames.at(index) != name) ++index;
    return index;
  }

  size_t index_;
};

}  // namespace zuqel

#endif  // ZUQEL_RENDER_PROGRAM_INPUTS_H_
