// HEIC and AVIF files for tests, put together from encoded pictures.
#ifndef ZUQEL_TESTS_HEIF_SAMPLES_H_
#define ZUQEL_TESTS_HEIF_SAMPLES_H_

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

#include "files/file_bytes.h"
#include "image.h"

namespace zuqel::tools {

struct HeifSample {
  Picture picture;  // sides, also of the depth: multiples of 16, at least 64
  bool is_avif = false;

  // An auxiliary image of the picture, if it has a size.
  Map<uint16_t> depth = {};
  int depth_bits = 8;
  std::string depth_type = "urn:mpeg:hevc:2015:auxid:2";
  std::string depth_subtypes = {};  // see DepthRepresentation

  // Rotations, counterclockwise by 90 degrees each, and mirrorings, in the
  // order of the string: "r1", "r3m0".
  std::string turns = {}, depth_turns = {};
  Bytes icc = {}, exif = {};  // the latter as an item holds it
};

Bytes Heif(const HeifSample& sample);

// How depth is represented, with limits where they are given.
struct Limits {
  std::optional<double> z_near = {}, z_far = {}, d_min = {}, d_max = {};
};
std::string DepthRepresentation(size_t type, const Limits& limits);

}  // namespace zuqel::tools

#endif  // ZUQEL_TESTS_HEIF_SAMPLES_H_
