// Refocus maps from the library's generators.
#ifndef ZUQEL_TOOLS_RENDERING_REFOCUS_MAP_H_
#define ZUQEL_TOOLS_RENDERING_REFOCUS_MAP_H_

#include <cstdint>
#include <optional>
#include <span>
#include <string>

#include "image.h"

namespace zuqel::tools {

// What a generator reports about disparities; `min` and `max` ignore a few
// percent of the pixels at either end.
struct DisparityRange {
  uint32_t min = 0, max = 0, focus = 0;
};

struct Generator {
  const char* name;     // on the command line
  const char* call;     // the library's function
  const char* summary;  // what it does, one line
  bool takes_distance;  // else disparity
  bool takes_size;      // of the map; the others keep the depth's
  uint32_t (*make)(uint8_t* map, uint16_t* depth, FocusPoint focus,
                   DisparityRange& range);
};

std::span<const Generator> Generators();

// Null if no generator has this name.
const Generator* GeneratorNamed(const std::string& name);

// Of all generators.
std::string GeneratorNames(const std::string& separator);

// What is wrong with an option's value; empty if nothing is.
std::string CheckGeneratorName(const std::string& name);

struct RefocusMap {
  WeightMap weights;
  std::optional<DisparityRange> range;  // not from distances
  double time_ms = 0;                   // of the library's call
};

// A point in pixels of a frame with the same field of view as the depth; the
// sizes may differ.
struct FramedFocus {
  FocusPoint point;
  Size frame;
};

// A generator and its resources in the session that is open. Members throw
// WorkError.
class MapMaker {
 public:
  explicit MapMaker(const Generator& generator);
  ~MapMaker();
  MapMaker(const MapMaker&) = delete;
  MapMaker& operator=(const MapMaker&) = delete;

  // `depth` is what the generator takes, of the session's depth size. The map
  // has the session's work size, `size`.
  [[nodiscard]] RefocusMap Make(Map<uint16_t> depth, const FramedFocus& focus,
                                Size size) const;

 private:
  const Generator& generator_;
};

// The same in a session of its own, so none may be open. The map has the
// depth's size, or `size` if the generator takes one. Throws WorkError like
// BokehSession.
RefocusMap MakeRefocusMap(const Generator& generator, Map<uint16_t> depth,
                          const FramedFocus& focus,
                          std::optional<Size> size = std::nullopt);

// Converts a disparity map to what the generator takes.
Map<uint16_t> DepthFor(const Generator& generator,
                       const DisparityMap& disparity);

}  // namespace zuqel::tools

#endif  // ZUQEL_TOOLS_RENDERING_REFOCUS_MAP_H_
