// Steps that generators have in common.
#ifndef ZUQEL_REFOCUS_GENERATOR_STEPS_H_
#define ZUQEL_REFOCUS_GENERATOR_STEPS_H_

#include <cstdint>
#include <optional>
#include <span>

#include "base/plane.h"
#include "depth/statistics.h"
#include "refocus/generators.h"
#include "render/pass_draws.h"

namespace zuqel {

struct DisparityStatistics {
  ValueRange range;
  uint16_t focus = 0;  // the most frequent around the focus point
};

template <typename T>
Plane<T> PlaneOf(T* data, ImageSize size) {
  return {data, size.width, size.height};
}

// Fills the holes of the call's disparity and looks at it, `percent` of its
// pixels trimmed at either end.
DisparityStatistics TakeDisparity(const MapCall& call, const MapSetup& setup,
                                  int32_t percent);

// Hands the statistics to the caller.
void WriteStatistics(const DisparityStatistics& statistics,
                     const MapCall& call);

// Removes narrow regions of 255 from a mask and writes it to the call's map.
// `eroded` may be the mask itself. The reservation is the first one's.
[[nodiscard]] bool ReserveOpening(ImageSize size, GeneratorScratch& scratch);
void OpenMask(Plane<const uint8_t> mask, Plane<uint8_t> eroded, uint8_t* map,
              GeneratorScratch& scratch);

// Draws on the GPU for the length of a call. Where the GL objects do not live
// in this thread's context there is nothing to draw with, and maps are zeros.
class MapDrawing {
 public:
  explicit MapDrawing(const MapWork& work);

  // Weights of the call's disparity. `focus` is the disparity in focus.
  void DrawWeights(const MapCall& call, ProgramRole program,
                   const ValueRange& range, uint16_t focus);
  // The map blurred by one texel.
  void DrawSoftened(Plane<const uint8_t> map);

  // What was drawn: the red of each pixel and of `more` past the last.
  void Read(uint8_t* map, size_t more = 0) const;

 private:
  // The map's pixels as words.
  [[nodiscard]] std::span<uint32_t> Words() const;

  const MapWork& work_;
  RefocusMapState* state_;
  std::optional<Drawing> drawing_;
};

}  // namespace zuqel

#endif  // ZUQEL_REFOCUS_GENERATOR_STEPS_H_
