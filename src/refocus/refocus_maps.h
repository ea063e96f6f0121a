// What refocus maps are made with, and how long it lives.
#ifndef ZUQEL_REFOCUS_REFOCUS_MAPS_H_
#define ZUQEL_REFOCUS_REFOCUS_MAPS_H_

#include "base/buffer.h"
#include "base/image_size.h"
#include "depth/refocus_refinement.h"
#include "gl/in_context.h"
#include "gl/program_cache.h"
#include "refocus/refocus_map_renderer.h"

namespace zuqel {

// Fixed by the latest initialisation.
struct MapSetup {
  ImageSize map;    // of the maps made on the GPU
  ImageSize depth;  // of disparity and distance
  float focal_length = 0;
};

// Buffers by the names that the log shows.
struct RefocusBuffers {
  Buffer pucInputDepthRGBA_RM;
  // These two with one pixel more: the disparity-base map reads that far.
  Buffer WeightMap_buffer_RM;
  Buffer WeightMap_buffer_char_RM;
  // Room for a mask of the map's or of the depth's size.
  Buffer pucRfocusMapBoundaryBlur;

  // Makes those that are missing or too small; false when there is no memory.
  // Initialisation makes the first three.
  [[nodiscard]] bool ReserveForGpu(const MapSetup& setup);
  [[nodiscard]] bool ReserveBoundaryBlur(const MapSetup& setup);

  // Logs where each is, after the name of what happens to it. gLastDepth, which
  // the log has always shown, is never made.
  void Log(const char* event) const;
  void LogBoundaryBlur(const char* event) const;
  // Of those that initialisation makes, and gLastDepth.
  void LogInitialised(const char* event) const;
  void EndInitialised();
};

// From initialisation to the end of the refocus maps; close does not end it.
struct RefocusMaps {
  RefocusBuffers buffers;
  InContext<RefocusMapState> gl;
};

// What generators make when they first need it. The end of the session ends it,
// and so does that of the refocus maps: either may come last.
struct GeneratorScratch {
  RefinementScratch refinement;
  Buffer mask;
  Buffer quantised;
  Buffer filter;
};

// Begins refocus maps in the current context; without one, with nothing to draw
// with. GL objects of an earlier start that was not ended are left to their
// context.
void StartRefocusMaps(const MapSetup& setup, const ProgramCache& program_cache,
                      RefocusMaps& maps);

}  // namespace zuqel

#endif  // ZUQEL_REFOCUS_REFOCUS_MAPS_H_
