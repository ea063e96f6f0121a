// Smoothing of masks over calls.
#ifndef ZUQEL_CPU_BOKEH_MASK_HISTORY_H_
#define ZUQEL_CPU_BOKEH_MASK_HISTORY_H_

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>

#include "base/buffer.h"
#include "base/plane.h"

namespace zuqel {

// The masks of the last three calls, in the slots of their numbers modulo 3.
class MaskHistory {
 public:
  // Makes room for masks of `bytes`; a slot that is too small begins anew with
  // zeros. False when there is no memory.
  [[nodiscard]] bool Reserve(std::optional<size_t> bytes);

  // From the fourth call on (`counter` 3), each byte becomes
  // (current + 2 * previous + the one before) / 4, truncated, of what earlier
  // calls have kept; the earlier ones leave the mask as it is. Then keeps it.
  void Smooth(int32_t counter, Plane<uint8_t> mask);

 private:
  std::array<Buffer, 3> maskHistory_;
};

}  // namespace zuqel

#endif  // ZUQEL_CPU_BOKEH_MASK_HISTORY_H_
