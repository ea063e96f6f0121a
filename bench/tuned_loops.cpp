// Plain loops for the compiler to vectorise. No template and no inline function
// of others: the linker might take this file's form of it for all of the
// program.
#include "tuned_loops.h"

namespace zuqel::bench {

void BoxOf3(const uint8_t* in, int32_t width, int32_t height, uint16_t* sums,
            uint8_t* out) {
  for (int32_t y = 0; y < height; ++y) {
    const ptrdiff_t row = ptrdiff_t{y} * width;
    const uint8_t* middle = in + row;
    const uint8_t* above = y > 0 ? middle - width : middle + width;
    const uint8_t* below = y < height - 1 ? middle + width : middle - width;
    uint16_t* __restrict columns = sums + 1;
    for (int32_t x = 0; x < width; ++x) {
      columns[x] = static_cast<uint16_t>(above[x] + middle[x] + below[x]);
    }
    columns[-1] = columns[1];
    columns[width] = columns[width - 2];
    uint8_t* __restrict means = out + row;
    for (int32_t x = 0; x < width; ++x) {
      const auto sum =
          static_cast<uint16_t>(sums[x] + sums[x + 1] + sums[x + 2] + 4);
      means[x] = static_cast<uint8_t>((sum * 7282U) >> 16);  // by 9, exactly
    }
  }
}

void CountAreas(const int32_t* labels, size_t count, int32_t* areas) {
  for (size_t i = 0; i < count;) {
    const size_t start = i;
    while (i < count && labels[i] == labels[start]) ++i;
    areas[labels[start]] += static_cast<int32_t>(i - start);
  }
}

void LookUp(const int32_t* labels, size_t count, const uint8_t* table,
            uint8_t* out) {
  for (size_t i = 0; i < count; ++i) out[i] = table[labels[i]];
}

}  // namespace zuqel::bench
