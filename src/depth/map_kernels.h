// Rows of disparity and distance maps, and of what is made of them.
#ifndef ZUQEL_DEPTH_MAP_KERNELS_H_
#define ZUQEL_DEPTH_MAP_KERNELS_H_

#include <cstddef>
#include <cstdint>

namespace zuqel {

// A mask byte by how far a value is from the focus on one side: 0 up to
// `sharp_to`, 255 beyond `ramp_to`, and 255 - 255 * distance / whole,
// truncated, between the two. Both ends are below `whole`, which has 10 bits.
struct MaskRamp {
  uint16_t focus = 0;
  uint16_t sharp_to = 0;
  uint16_t ramp_to = 0;
  uint16_t whole = 0;
};

// What is known of a pixel while a region grows.
inline constexpr uint8_t kOpen = 1;  // may be reached
inline constexpr uint8_t kSeed = 2;
inline constexpr uint8_t kReached = 4;  // from a seed

struct MapKernels {
  // Mask bytes of values above the focus, or of those below it; 0 on the other
  // side.
  void (*ramp_above)(const uint16_t* values, size_t count, const MaskRamp& ramp,
                     uint8_t* mask);
  void (*ramp_below)(const uint16_t* values, size_t count, const MaskRamp& ramp,
                     uint8_t* mask);
  // The smallest value; 65535 of none.
  uint16_t (*smallest)(const uint16_t* values, size_t count);
  // min((value - smallest) >> 2, 1023).
  void (*quantise)(const uint16_t* values, size_t count, uint16_t smallest,
                   uint16_t* quantised);
  // kSeed from `seed_from` on, kOpen from `open_from`, which is not larger.
  void (*classify)(const uint16_t* values, size_t count, uint16_t open_from,
                   uint16_t seed_from, uint8_t* states);
  // 255 for seeds and what was reached from them, otherwise 0.
  void (*mask_reached)(const uint8_t* states, size_t count, uint8_t* mask);
};

}  // namespace zuqel

#endif  // ZUQEL_DEPTH_MAP_KERNELS_H_
