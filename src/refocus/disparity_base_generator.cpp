// All of the foreground or of the background sharp: the mask is drawn on the
// GPU.
#include "base/clock.h"
#include "base/log.h"
#include "refocus/generator_steps.h"

namespace zuqel {
namespace {

constexpr int32_t kTrimPercent = 5;

void Generate(const MapCall& call, const MapWork& work) {
  const uint32_t start = MillisecondClock();
  const auto& [setup, maps, scratch] = work;
  if (maps.buffers.ReserveForGpu(setup) &&
      maps.buffers.ReserveBoundaryBlur(setup) &&
      ReserveOpening(setup.map, scratch)) {
    const DisparityStatistics statistics =
        TakeDisparity(call, setup, kTrimPercent);
    const uint16_t focus = ValueAt(
        PlaneOf<const uint16_t>(call.depth, setup.depth), call.x, call.y);
    const Plane<uint8_t> weights =
        PlaneOf(maps.buffers.WeightMap_buffer_char_RM.bytes(), setup.map);
    MapDrawing drawing(work);
    drawing.DrawWeights(call, ProgramRole::AllInFocusWeightProgram,
                        statistics.range, focus);
    drawing.Read(weights.data, 1);
    OpenMask(weights,
             PlaneOf(maps.buffers.pucRfocusMapBoundaryBlur.bytes(), setup.map),
             call.map, scratch);
    WriteStatistics(statistics, call);
  }
  ZUQEL_LOG("GenRefocusMap_ZU4410_DispartyBase take test %d ms",
            ElapsedSince(start));
}

}  // namespace

const Generator kDisparityBaseGenerator = {nullptr, Generate};

}  // namespace zuqel
