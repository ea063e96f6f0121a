// The frame renderer's programs from and to the caller's program cache.
#ifndef ZUQEL_RENDER_CACHED_PROGRAMS_H_
#define ZUQEL_RENDER_CACHED_PROGRAMS_H_

#include <cstdint>

#include "gl/program_cache.h"
#include "render/shader_catalogue.h"

namespace zuqel {

// Loads the programs from `cache`, the caller's 262144 bytes, if it is usable;
// otherwise rebuilds it for the next start and compiles all programs. With a
// null cache, compiles all programs and writes nothing. A cache is usable when
// at least one of its programs loads; the others then stay unlinked. The
// session's copy has been reserved.
void PreparePrograms(uint8_t* cache, ProgramCache& session_cache,
                     ProgramTable& programs);

// Makes the programs of the refocus maps. With the session's copy of a usable
// cache, loads the three that the GPU map needs, or compiles them when none of
// them loads; AllInFocusWeightProgram is not made then. Without it, compiles
// all four.
void PrepareRefocusMapPrograms(const ProgramCache& session_cache,
                               ProgramTable& programs);

}  // namespace zuqel

#endif  // ZUQEL_RENDER_CACHED_PROGRAMS_H_
