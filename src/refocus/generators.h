// The refocus-map generators.
#ifndef ZUQEL_REFOCUS_GENERATORS_H_
#define ZUQEL_REFOCUS_GENERATORS_H_

#include <zuQelRT_generators.h>

#include <cstdint>

#include "refocus/refocus_maps.h"

namespace zuqel {

// Arguments of a call. `y` has a sign in some calls and none in another; 64
// bits hold both.
struct MapCall {
  uint8_t* map = nullptr;
  uint16_t* depth = nullptr;  // disparity or distance, its holes are filled
  int64_t x = 0;              // focus point in depth pixels
  int64_t y = 0;
  // Null, or where statistics of a disparity go.
  uint32_t* min = nullptr;
  uint32_t* max = nullptr;
  uint32_t* focus = nullptr;
};

// What a generator works with.
struct MapWork {
  const MapSetup& setup;
  RefocusMaps& maps;
  GeneratorScratch& scratch;
};

struct Generator {
  // Logged before the arguments are checked; null for nothing.
  const char* began;
  // Makes the map and logs its end. Reserves its memory first: without, nothing
  // of the caller's is touched.
  void (*generate)(const MapCall& call, const MapWork& work);
};

// One for each row of the table, kGpuGenerator and so on, each in a file of its
// own.
#define ZUQEL_GENERATOR(id, name, call, y_type, input, map_size, summary) \
  extern const Generator k##id##Generator;
ZUQEL_REFOCUS_GENERATORS(ZUQEL_GENERATOR)
#undef ZUQEL_GENERATOR

}  // namespace zuqel

#endif  // ZUQEL_REFOCUS_GENERATORS_H_
