// Pairs the embedded shaders into programs.
#include "render/shader_catalogue.h"

#include "render/quad.h"
#include "shader_sources.h"

namespace zuqel {
namespace {

constexpr std::array<ProgramSource, kProgramCount> kSources = {{
    {shaders::kBlurHorizontalVert, shaders::kGaussian5Frag},
    {shaders::kBlurVerticalVert, shaders::kGaussian5Frag},
    {shaders::kPassThroughVert, shaders::kCopyFrag},
    {shaders::kPassThroughVert, shaders::kDepthWeightFrag},
    {shaders::kPassThroughVert, shaders::kLayerMixFrag},
    {shaders::kPassThroughVert, shaders::kNv21ToRgbFrag},
    {shaders::kPassThroughVert, shaders::kNv21PackFrag},
    {shaders::kPassThroughVert, shaders::kPlanarYuvPackFrag},
    {shaders::kNeighbourhood3x3Vert, shaders::kMax3x3Frag},
    {shaders::kNeighbourhood3x3Vert, shaders::kMin3x3Frag},
    {shaders::kPassThroughVert, shaders::kAllInFocusWeightFrag},
}};

}  // namespace

const ProgramSource& SourceOf(ProgramRole role) {
  return kSources[static_cast<size_t>(role)];
}

void ProgramTable::Build(ProgramRole role) {
  Set(role, BuildProgram(SourceOf(role), kQuadAttributes));
}

void ProgramTable::BuildAll() {
  for (size_t i = 0; i < kProgramCount; ++i) {
    Build(static_cast<ProgramRole>(i));
  }
}

void ProgramTable::DeleteAll() {
  for (Program& program : programs_) program.Delete();
}

void ProgramTable::Forget() {
  for (Program& program : programs_) program.Forget();
}

}  // namespace zuqel
