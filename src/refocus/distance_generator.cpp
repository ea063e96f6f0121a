// All of the foreground or of the background sharp, on the CPU from distances.
#include <cstdio>

#include "base/clock.h"
#include "base/log.h"
#include "depth/focus_mask.h"
#include "depth/hole_filling.h"
#include "depth/statistics.h"
#include "refocus/generator_steps.h"

namespace zuqel {
namespace {

constexpr int32_t kTrimPercent = 5;

// Reduces the filled distances to 10 bits, from which the mask is made.
void MaskDistance(const MapCall& call, Plane<const uint16_t> distance,
                  Plane<uint16_t> quantised, Plane<uint8_t> mask) {
  const uint16_t ExtremeMinDist = SmallestDistance(distance);
  static_cast<void>(std::printf("ExtremeMinDist=%d\n", ExtremeMinDist));
  QuantiseDistance(distance, ExtremeMinDist, quantised);
  const auto [uwMinQuanDist, uwMaxQuanDist] =
      GetQuanDistRange(quantised, kTrimPercent);
  ZUQEL_LOG("uwMaxQuanDist = %d\n", uwMaxQuanDist);
  ZUQEL_LOG("uwMinQuanDist = %d\n", uwMinQuanDist);
  const uint16_t FocusQuanDist = ValueAt(quantised, call.x, call.y);
  ZUQEL_LOG("FocusQuanDist = %d\n", FocusQuanDist);
  FocusMaskDist(quantised, {uwMaxQuanDist, uwMinQuanDist, FocusQuanDist}, mask);
}

void Generate(const MapCall& call, const MapWork& work) {
  const uint32_t start = MillisecondClock();
  const ImageSize size = work.setup.depth;
  GeneratorScratch& scratch = work.scratch;
  if (scratch.mask.Reserve(ByteCount(size, 1)) &&
      scratch.quantised.Reserve(ByteCount(size, 2)) &&
      ReserveOpening(size, scratch)) {
    const Plane<uint16_t> distance = PlaneOf(call.depth, size);
    FillDistanceHoles(distance);
    const auto mask = PlaneOf(scratch.mask.bytes(), size);
    MaskDistance(
        call, distance,
        PlaneOf(reinterpret_cast<uint16_t*>(scratch.quantised.bytes()), size),
        mask);
    OpenMask(mask, mask, call.map, scratch);
  }
  ZUQEL_LOG("Gen refocus by distance done, take %d ms", ElapsedSince(start));
}

}  // namespace

const Generator kDistanceGenerator = {nullptr, Generate};

}  // namespace zuqel
