// Pairs the embedded shaders into programs.
#include "render/shader_catalogue.h"

#include <algorithm>

#include "gl/program_cache.h"
#include "shader_sources.h"

namespace zuqel {

#define ZUQEL_ROW(role, vertex, fragment, entry) \
  ProgramRow{                                    \
      ProgramRole::role, {shaders::k##vertex, shaders::k##fragment}, entry},
constexpr std::array<ProgramRow, kProgramCount> kPrograms = {
    ZUQEL_PROGRAMS(ZUQEL_ROW)};
#undef ZUQEL_ROW

namespace {

constexpr bool EachEntryHasOneProgram() {
  for (size_t entry = 0; entry < kProgramCacheEntries; ++entry) {
    const auto is_entry = [=](const ProgramRow& row) {
      return row.cache_entry == entry;
    };
    const auto rows =
        std::count_if(std::begin(kPrograms), std::end(kPrograms), is_entry);
    if (rows != 1) return false;
  }
  return true;
}
static_assert(EachEntryHasOneProgram());

}  // namespace

void ProgramTable::Build(ProgramRole role) {
  Set(role, BuildProgram(RowOf(role).source, kAttributeNames));
}

void ProgramTable::BuildAll() {
  for (const ProgramRow& row : kPrograms) Build(row.role);
}

}  // namespace zuqel
