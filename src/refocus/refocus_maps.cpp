// Sizes and log lines of the refocus maps' buffers, and their start.
#include "refocus/refocus_maps.h"

#include <algorithm>
#include <utility>

#include "base/log.h"
#include "gl/context.h"

namespace zuqel {
namespace {

std::optional<size_t> PlusOne(std::optional<size_t> bytes, size_t pixel) {
  if (!bytes) return std::nullopt;
  return *bytes + pixel;
}

void LogPointer(const char* event, const char* name, const Buffer& buffer) {
  ZUQEL_LOG("%s %s = 0x%x", event, name, Low32(buffer.bytes()));
}

}  // namespace

bool RefocusBuffers::ReserveForGpu(const MapSetup& setup) {
  return pucInputDepthRGBA_RM.Reserve(ByteCount(setup.depth, 4)) &&
         WeightMap_buffer_RM.Reserve(PlusOne(ByteCount(setup.map, 4), 4)) &&
         WeightMap_buffer_char_RM.Reserve(PlusOne(ByteCount(setup.map, 1), 1));
}

bool RefocusBuffers::ReserveBoundaryBlur(const MapSetup& setup) {
  const auto map_bytes = ByteCount(setup.map, 1);
  const auto depth_bytes = ByteCount(setup.depth, 1);
  return map_bytes && depth_bytes &&
         pucRfocusMapBoundaryBlur.Reserve(std::max(*map_bytes, *depth_bytes));
}

void RefocusBuffers::Log(const char* event) const {
  LogPointer(event, "pucInputDepthRGBA_RM", pucInputDepthRGBA_RM);
  LogPointer(event, "WeightMap_buffer_RM", WeightMap_buffer_RM);
  LogPointer(event, "WeightMap_buffer_char_RM", WeightMap_buffer_char_RM);
  LogBoundaryBlur(event);
  LogPointer(event, "gLastDepth", Buffer());
}

void RefocusBuffers::LogBoundaryBlur(const char* event) const {
  LogPointer(event, "pucRfocusMapBoundaryBlur", pucRfocusMapBoundaryBlur);
}

void RefocusBuffers::LogInitialised(const char* event) const {
  LogPointer(event, "pucInputDepthRGBA_RM", pucInputDepthRGBA_RM);
  LogPointer(event, "WeightMap_buffer_RM", WeightMap_buffer_RM);
  LogPointer(event, "WeightMap_buffer_char_RM", WeightMap_buffer_char_RM);
  LogPointer(event, "gLastDepth", Buffer());
}

void RefocusBuffers::EndInitialised() {
  RefocusBuffers fresh;
  fresh.pucRfocusMapBoundaryBlur = std::move(pucRfocusMapBoundaryBlur);
  *this = std::move(fresh);
}

void StartRefocusMaps(const MapSetup& setup, const ProgramCache& program_cache,
                      RefocusMaps& maps) {
  maps.gl.Forget();
  maps.buffers.pucRfocusMapBoundaryBlur = {};
  if (HasContext()) maps.gl = MakeRefocusMapState(setup.map, program_cache);
  // Without memory now, the maps try again.
  static_cast<void>(maps.buffers.ReserveBoundaryBlur(setup));
}

}  // namespace zuqel
