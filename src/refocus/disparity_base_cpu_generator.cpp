// All of the foreground or of the background sharp, on the CPU.
#include "base/clock.h"
#include "base/log.h"
#include "depth/focus_mask.h"
#include "refocus/generator_steps.h"

namespace zuqel {
namespace {

constexpr int32_t kTrimPercent = 5;

void Generate(const MapCall& call, const MapWork& work) {
  const uint32_t start = MillisecondClock();
  const auto& [setup, maps, scratch] = work;
  if (maps.buffers.ReserveBoundaryBlur(setup) &&
      scratch.mask.Reserve(ByteCount(setup.depth, 1)) &&
      ReserveOpening(setup.depth, scratch)) {
    const DisparityStatistics statistics =
        TakeDisparity(call, setup, kTrimPercent);
    const auto [min, max] = statistics.range;
    const auto disparity = PlaneOf<const uint16_t>(call.depth, setup.depth);
    const uint16_t focus = ValueAt(disparity, call.x, call.y);
    ZUQEL_LOG(
        "FocusDisp = %d, focusDisparity = %d, minDepth = %d, maxDepth = %d\n",
        focus, statistics.focus, min, max);
    const auto mask = PlaneOf(scratch.mask.bytes(), setup.depth);
    FocusMaskDisparity(disparity, {max, min, focus}, mask);
    OpenMask(
        mask,
        PlaneOf(maps.buffers.pucRfocusMapBoundaryBlur.bytes(), setup.depth),
        call.map, scratch);
    WriteStatistics(statistics, call);
  }
  ZUQEL_LOG("GenRefocusMap_ZU4410_DispartyBase take %d ms",
            ElapsedSince(start));
}

}  // namespace

const Generator kDisparityBaseCpuGenerator = {nullptr, Generate};

}  // namespace zuqel
