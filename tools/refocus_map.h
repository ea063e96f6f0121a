// Refocus maps by each of the library's generators.
#ifndef ZUQEL_TOOLS_REFOCUS_MAP_H_
#define ZUQEL_TOOLS_REFOCUS_MAP_H_

#include <cstdint>
#include <optional>
#include <span>
#include <string>

#include "image.h"

namespace zuqel::tools {

// What a generator tells of its disparities; `min` and `max` leave a few
// percent of the pixels out at either end.
struct DisparityRange {
  uint32_t min = 0, max = 0, focus = 0;
};

struct Generator {
  const char* name;     // as people write it
  const char* call;     // as the library calls it
  const char* summary;  // what it does, one line
  bool takes_distance;  // else disparity
  bool takes_size;      // of the map; the others keep the depth's
  uint32_t (*make)(uint8_t* map, uint16_t* depth, FocusPoint focus,
                   DisparityRange& range);
};

std::span<const Generator> Generators();

// Null when there is none of this name.
const Generator* GeneratorNamed(const std::string& name);

// Says what is wrong with an option's value; empty when nothing is.
std::string CheckGeneratorName(const std::string& name);

struct RefocusMap {
  WeightMap weights;
  std::optional<DisparityRange> range;  // not of distances
};

// Pixels are those of a frame that shows what the depth shows; its size may be
// another.
struct FramedFocus {
  FocusPoint point;
  Size frame;
};

// In a session of its own; none may run. `depth` is what the generator takes.
// The map has the depth's size, or that of `size` where the generator can.
// WorkError as from BokehSession. What the library prints is turned aside.
RefocusMap MakeRefocusMap(const Generator& generator, Map<uint16_t> depth,
                          const FramedFocus& focus,
                          std::optional<Size> size = std::nullopt);

// What the generator takes, of a disparity map.
Map<uint16_t> DepthFor(const Generator& generator,
                       const DisparityMap& disparity);

}  // namespace zuqel::tools

#endif  // ZUQEL_TOOLS_REFOCUS_MAP_H_
