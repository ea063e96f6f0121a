// Sums by column.
#include "depth/boundary_kernels.h"

#include "base/kernel_set.h"

namespace zuqel {
namespace {

template <bool kAdds>
void Change(const uint8_t* __restrict values, const uint8_t* __restrict marks,
            size_t count, uint16_t* __restrict sums,
            uint8_t* __restrict numbers) {
  for (size_t x = 0; x < count; ++x) {
    const uint8_t kept = marks[x] == 255 ? 0 : 255;
    const auto value = static_cast<uint8_t>(values[x] & kept);
    const auto number = static_cast<uint8_t>(kept & 1);
    sums[x] = static_cast<uint16_t>(kAdds ? sums[x] + value : sums[x] - value);
    numbers[x] =
        static_cast<uint8_t>(kAdds ? numbers[x] + number : numbers[x] - number);
  }
}

constexpr BoundaryKernels kKernels = {Change<true>, Change<false>};

}  // namespace

template <>
const BoundaryKernels& KernelsOf<BoundaryKernels, kCompiledSet>() {
  return kKernels;
}

}  // namespace zuqel
