// A recursive filter: what is kept has been smoothed.
#include "cpu_bokeh/mask_history.h"

#include <algorithm>

namespace zuqel {

bool MaskHistory::Reserve(std::optional<size_t> bytes) {
  return std::all_of(maskHistory_.begin(), maskHistory_.end(),
                     [&](Buffer& slot) { return slot.Reserve(bytes); });
}

void MaskHistory::Smooth(int32_t counter, Plane<uint8_t> mask) {
  // Also of a counter that has run over into negative numbers.
  const auto slot = static_cast<size_t>((counter % 3 + 3) % 3);
  if (counter > 2) {
    const uint8_t* previous = maskHistory_[(slot + 2) % 3].bytes();
    const uint8_t* older = maskHistory_[(slot + 1) % 3].bytes();
    for (size_t i = 0; i < mask.size(); ++i) {
      const uint32_t sum = mask.data[i] + 2U * previous[i] + older[i];
      mask.data[i] = static_cast<uint8_t>(sum >> 2);
    }
  }
  std::copy_n(mask.data, mask.size(), maskHistory_[slot].bytes());
}

}  // namespace zuqel
