// How a HEIF file has its pictures turned.
#ifndef ZUQEL_TOOLS_PHOTO_HEIF_TURNS_H_
#define ZUQEL_TOOLS_PHOTO_HEIF_TURNS_H_

#include <cstdint>
#include <span>
#include <vector>

namespace zuqel::tools {

// What libheif does to the item: its rotations and mirrorings one after the
// other, as EXIF numbers orientations. Damage ends the list.
std::vector<int> ReadHeifTurns(std::span<const uint8_t> file, uint32_t item);

}  // namespace zuqel::tools

#endif  // ZUQEL_TOOLS_PHOTO_HEIF_TURNS_H_
