// Reads maps, one value a pixel, from the files that people keep them in.
#ifndef ZUQEL_TOOLS_PHOTO_MAP_FILE_H_
#define ZUQEL_TOOLS_PHOTO_MAP_FILE_H_

#include <cstdint>
#include <span>
#include <string>

#include "image.h"

namespace zuqel::tools {

// What a file stores for a value.
enum class MapDepth { k8Bits, k16Bits, kFloat };

// Values as the file holds them: whole numbers, or of kFloat any, infinity and
// NaN included. Rows from the top.
struct MapFile : Map<float> {
  using Map<float>::Map;

  MapDepth depth = MapDepth::k8Bits;
};

// A PNG or JPEG file without colours, or PFM of one channel. A colour picture
// is taken if it is grey but for what compression leaves. Throws InputError,
// which names the file and its fault.
MapFile ReadMapFile(const std::string& path);

// The same from a file in memory; `name` is what errors call it.
MapFile DecodeMapFile(const std::string& name, std::span<const uint8_t> bytes);

}  // namespace zuqel::tools

#endif  // ZUQEL_TOOLS_PHOTO_MAP_FILE_H_
