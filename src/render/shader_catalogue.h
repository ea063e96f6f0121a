// The programs of frames and refocus maps, and the shaders of each.
#ifndef ZUQEL_RENDER_SHADER_CATALOGUE_H_
#define ZUQEL_RENDER_SHADER_CATALOGUE_H_

#include <array>
#include <cstddef>
#include <optional>
#include <utility>

#include "gl/program.h"
#include "render/program_inputs.h"

namespace zuqel {

// One row per program, in the order in which they are compiled: role, vertex
// shader, fragment shader, entry of the program cache (std::nullopt for none).
#define ZUQEL_PROGRAMS(ROW)                                         \
  ROW(BlurHProgram, BlurHorizontalVert, Gaussian5Frag, 0)           \
  ROW(BlurVProgram, BlurVerticalVert, Gaussian5Frag, 1)             \
  ROW(CopyProgram, PassThroughVert, CopyFrag, 2)                    \
  ROW(DepthWeightProgram, PassThroughVert, DepthWeightFrag, 3)      \
  ROW(CompositeProgram, PassThroughVert, LayerMixFrag, 4)           \
  ROW(Nv21ToRgbProgram, PassThroughVert, Nv21ToRgbFrag, 6)          \
  ROW(Nv21PackProgram, PassThroughVert, Nv21PackFrag, 5)            \
  ROW(PlanarYuvPackProgram, PassThroughVert, PlanarYuvPackFrag, 10) \
  ROW(Max3x3Program, Neighbourhood3x3Vert, Max3x3Frag, 8)           \
  ROW(Min3x3Program, Neighbourhood3x3Vert, Min3x3Frag, 7)           \
  ROW(AllInFocusWeightProgram, PassThroughVert, AllInFocusWeightFrag, 9)

enum class ProgramRole {
#define ZUQEL_ROLE(role, vertex, fragment, entry) role,
  ZUQEL_PROGRAMS(ZUQEL_ROLE)
#undef ZUQEL_ROLE
};

#define ZUQEL_ROLE(role, vertex, fragment, entry) ProgramRole::role,
inline constexpr size_t kProgramCount =
    std::to_array({ZUQEL_PROGRAMS(ZUQEL_ROLE)}).size();
#undef ZUQEL_ROLE

struct ProgramRow {
  ProgramRole role;
  ProgramSource source;
  std::optional<size_t> cache_entry;
};

// The rows, indexed by role.
extern const std::array<ProgramRow, kProgramCount> kPrograms;

inline const ProgramRow& RowOf(ProgramRole role) {
  return kPrograms[static_cast<size_t>(role)];
}

// One program per role.
class ProgramTable {
 public:
  void BuildAll();
  void Build(ProgramRole role);
  void Set(ProgramRole role, Program program) {
    programs_[static_cast<size_t>(role)] =
        LinkedProgram(std::move(program), kProgramInterface);
  }

  [[nodiscard]] LinkedProgram& operator[](ProgramRole role) {
    return programs_[static_cast<size_t>(role)];
  }

 private:
  std::array<LinkedProgram, kProgramCount> programs_;
};

}  // namespace zuqel

#endif  // ZUQEL_RENDER_SHADER_CATALOGUE_H_
