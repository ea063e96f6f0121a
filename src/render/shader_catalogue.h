// The programs of frames and refocus maps, and the shaders each is made of.
#ifndef ZUQEL_RENDER_SHADER_CATALOGUE_H_
#define ZUQEL_RENDER_SHADER_CATALOGUE_H_

#include <array>
#include <cstddef>
#include <utility>

#include "gl/program.h"

namespace zuqel {

// In the order in which they are compiled.
enum class ProgramRole {
  BlurHProgram,
  BlurVProgram,
  CopyProgram,
  DepthWeightProgram,
  CompositeProgram,
  Nv21ToRgbProgram,
  Nv21PackProgram,
  PlanarYuvPackProgram,
  Max3x3Program,
  Min3x3Program,
  AllInFocusWeightProgram,
};
inline constexpr size_t kProgramCount = 11;

const ProgramSource& SourceOf(ProgramRole role);

// One program per role.
class ProgramTable {
 public:
  void BuildAll();
  void Build(ProgramRole role);
  void Set(ProgramRole role, Program program) {
    programs_[static_cast<size_t>(role)] = std::move(program);
  }
  void DeleteAll();
  // Lets go of names that died with their context.
  void Forget();

  [[nodiscard]] GLuint operator[](ProgramRole role) const {
    return programs_[static_cast<size_t>(role)].get();
  }

 private:
  std::array<Program, kProgramCount> programs_;
};

}  // namespace zuqel

#endif  // ZUQEL_RENDER_SHADER_CATALOGUE_H_
