// Loads, accepts and rebuilds the program cache.
#include "render/cached_programs.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>
#include <span>
#include <utility>

#include "base/log.h"
#include "render/quad.h"

namespace zuqel {
namespace {

using enum ProgramRole;

constexpr std::array<ProgramRole, kProgramCacheEntries> kRoleOfEntry = {
    BlurHProgram,        BlurVProgram,
    CopyProgram,         DepthWeightProgram,
    CompositeProgram,    Nv21PackProgram,
    Nv21ToRgbProgram,    Min3x3Program,
    Max3x3Program,       AllInFocusWeightProgram,
    PlanarYuvPackProgram};

constexpr std::array<size_t, kProgramCacheEntries> kLoadOrder = {
    0, 1, 2, 3, 4, 6, 5, 7, 8, 9, 10};

struct BuildStep {
  ProgramRole role;
  size_t entry;
};

// The conversion to RGB is built twice: its first binary's entry goes to the
// repacking program afterwards, and its bytes stay unreferenced. Readers of old
// caches rely on where everything lies.
constexpr std::array<BuildStep, 12> kBuildSteps = {{
    {BlurHProgram, 0},
    {BlurVProgram, 1},
    {CopyProgram, 2},
    {DepthWeightProgram, 3},
    {CompositeProgram, 4},
    {Nv21ToRgbProgram, 5},
    {Nv21ToRgbProgram, 6},
    {Nv21PackProgram, 5},
    {Min3x3Program, 7},
    {Max3x3Program, 8},
    {AllInFocusWeightProgram, 9},
    {PlanarYuvPackProgram, 10},
}};

// The cache's entries of the programs that the map on the GPU needs.
constexpr std::array<size_t, 3> kRefocusMapLoadOrder = {3, 0, 1};
static_assert(kRoleOfEntry[3] == DepthWeightProgram &&
              kRoleOfEntry[0] == BlurHProgram &&
              kRoleOfEntry[1] == BlurVProgram);

// True when a single one loads.
bool Load(ProgramCacheBytes cache, const BinaryInfo& info,
          std::span<const size_t> entries, ProgramTable& programs) {
  GLint loaded = 0;
  for (const size_t entry : entries) {
    Program program;
    loaded |= LoadProgramBinary(cache, info.entries[entry], program);
    programs.Set(kRoleOfEntry[entry], std::move(program));
  }
  return loaded == GL_TRUE;
}

void Rebuild(std::span<uint8_t, kProgramCacheBytes> cache) {
  std::array<CacheStep, kBuildSteps.size()> steps;
  std::transform(kBuildSteps.begin(), kBuildSteps.end(), steps.begin(),
                 [](const BuildStep& step) {
                   return CacheStep{&SourceOf(step.role), step.entry};
                 });
  BuildProgramCache(steps, kQuadAttributes, cache);
}

}  // namespace

void PreparePrograms(uint8_t* cache, ProgramCache& session_cache,
                     ProgramTable& programs) {
  if (cache == nullptr) {
    programs.BuildAll();
    return;
  }
  const std::span<uint8_t, kProgramCacheBytes> bytes(cache, kProgramCacheBytes);
  BinaryInfo& info = session_cache.binaryInfo;
  std::memcpy(&info, cache, sizeof(info));
  std::memcpy(session_cache.copy.bytes(), cache, kProgramCacheBytes);
  ZUQEL_LOG("binaryInfo isValid = %d", info.isValid);
  if (info.isValid == 1 && Load(bytes, info, kLoadOrder, programs)) return;

  std::memset(session_cache.copy.bytes(), 0, kProgramCacheBytes);
  info = {};
  Rebuild(bytes);
  programs.BuildAll();
}

void PrepareRefocusMapPrograms(const ProgramCache& session_cache,
                               ProgramTable& programs) {
  const BinaryInfo& info = session_cache.binaryInfo;
  ZUQEL_LOG("gbinaryInfo.isValid  = %d", info.isValid);
  const bool has_cache = info.isValid == 1 && session_cache.copy.exists();
  if (has_cache) {
    const ProgramCacheBytes bytes(session_cache.copy.bytes(),
                                  kProgramCacheBytes);
    if (Load(bytes, info, kRefocusMapLoadOrder, programs)) return;
    ZUQEL_LOG("load binary fail");
  } else {
    ZUQEL_LOG("create binary");
    programs.Build(AllInFocusWeightProgram);
  }
  programs.Build(DepthWeightProgram);
  programs.Build(BlurHProgram);
  programs.Build(BlurVProgram);
}

}  // namespace zuqel
