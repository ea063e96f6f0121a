// Loops of the compositions, compiled for processors with AVX2 like those that
// the libraries choose when they run.
#ifndef ZUQEL_BENCH_TUNED_LOOPS_H_
#define ZUQEL_BENCH_TUNED_LOOPS_H_

#include <cstddef>
#include <cstdint>

namespace zuqel::bench {

// The rounded mean of 3 x 3 pixels; the border is mirrored without its outer
// pixel. `sums` has room for two more than the width.
void BoxOf3(const uint8_t* in, int32_t width, int32_t height, uint16_t* sums,
            uint8_t* out);

// Adds up the pixels of each label.
void CountAreas(const int32_t* labels, size_t count, int32_t* areas);

void LookUp(const int32_t* labels, size_t count, const uint8_t* table,
            uint8_t* out);

}  // namespace zuqel::bench

#endif  // ZUQEL_BENCH_TUNED_LOOPS_H_
