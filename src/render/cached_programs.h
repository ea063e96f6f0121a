// The frame renderer's programs from and to the caller's program cache.
#ifndef ZUQEL_RENDER_CACHED_PROGRAMS_H_
#define ZUQEL_RENDER_CACHED_PROGRAMS_H_

#include <cstdint>

#include "gl/program_cache.h"
#include "render/shader_catalogue.h"

namespace zuqel {

// Takes the programs from `cache`, 262144 bytes of the caller's, where it is
// usable; else rebuilds it for the next start and compiles all programs. A null
// cache compiles all programs and writes nothing. The cache counts as usable
// when a single one of its programs loads; the others then stay unlinked. The
// session's copy has been reserved.
void PreparePrograms(uint8_t* cache, ProgramCache& session_cache,
                     ProgramTable& programs);

// Makes the programs of the refocus maps: from the session's copy of a usable
// cache, else compiled. A copy of which not one of the three programs that the
// map on the GPU needs loads has them compiled; AllInFocusWeightProgram is not
// made beside a cache.
void PrepareRefocusMapPrograms(const ProgramCache& session_cache,
                               ProgramTable& programs);

}  // namespace zuqel

#endif  // ZUQEL_RENDER_CACHED_PROGRAMS_H_
