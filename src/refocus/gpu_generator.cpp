// Weights by the distance from the focus, drawn on the GPU and cleaned on the
// CPU in between.
#include "base/clock.h"
#include "base/log.h"
#include "refocus/generator_steps.h"

namespace zuqel {
namespace {

constexpr int32_t kTrimPercent = 1;

// The focus point in pixels of the map.
MaskPoint ScaleToMap(const MapCall& call, const MapSetup& setup) {
  return {ScaleCoordinate(static_cast<uint32_t>(call.x), setup.depth.width,
                          setup.map.width),
          ScaleCoordinate(static_cast<int32_t>(call.y), setup.depth.height,
                          setup.map.height)};
}

void Generate(const MapCall& call, const MapWork& work) {
  const auto& [setup, maps, scratch] = work;
  if (maps.buffers.ReserveForGpu(setup) &&
      scratch.refinement.Reserve(setup.map)) {
    const DisparityStatistics statistics =
        TakeDisparity(call, setup, kTrimPercent);
    MapDrawing drawing(work);
    drawing.DrawWeights(call, ProgramRole::DepthWeightProgram, statistics.range,
                        statistics.focus);

    const uint32_t read_start = MillisecondClock();
    const Plane<uint8_t> weights =
        PlaneOf(maps.buffers.WeightMap_buffer_char_RM.bytes(), setup.map);
    drawing.Read(weights.data);
    ZUQEL_LOG("glReadPixel takes %d ms", ElapsedSince(read_start));

    const uint32_t clean_up_start = MillisecondClock();
    const Plane<uint8_t> map = PlaneOf(call.map, setup.map);
    // Reserved: it does not fail.
    static_cast<void>(RefineRefocusMap(weights, ScaleToMap(call, setup),
                                       scratch.refinement, map));
    ZUQEL_LOG("CCL takes %d ms", ElapsedSince(clean_up_start));

    drawing.DrawSoftened(map);
    drawing.Read(map.data);
    WriteStatistics(statistics, call);
  }
  ZUQEL_LOG("zuQelRT_GenRefocusMap -");
}

}  // namespace

const Generator kGpuGenerator = {"zuQelRT_GenRefocusMap +", Generate};

}  // namespace zuqel
