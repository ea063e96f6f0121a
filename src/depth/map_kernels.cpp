// Loops over the rows of maps, in lanes of 16 bits.
#include "depth/map_kernels.h"

#include "base/kernel_set.h"

namespace zuqel {
namespace {

constexpr uint16_t kLargestQuantised = 1023;

// Factors for the quotient of 255 * distance / whole: distances below the whole
// use all 16 bits when multiplied by `scale`, and the upper half of their
// product with `factor` is the quotient or one less, which the remainder tells.
struct Quotient {
  uint16_t scale;
  uint16_t factor;
};

inline Quotient QuotientBy(uint16_t whole) {
  if (whole == 0) return {0, 0};
  int bits = 0;
  while (whole >> bits != 0) ++bits;
  return {static_cast<uint16_t>(65536U >> bits),
          static_cast<uint16_t>((255U << bits) / whole)};
}

inline uint8_t MaskByte(uint16_t distance, const MaskRamp& ramp,
                        const Quotient& by) {
  const auto scaled = static_cast<uint16_t>(distance * by.scale);
  const auto low = static_cast<uint16_t>(uint32_t{scaled} * by.factor >> 16);
  const auto remainder =
      static_cast<uint16_t>(distance * 255U - low * uint32_t{ramp.whole});
  const auto quotient =
      static_cast<uint16_t>(low + (remainder >= ramp.whole ? 1 : 0));
  const auto in_ramp = static_cast<uint16_t>(255U - quotient);
  const uint16_t past_sharp = distance > ramp.ramp_to ? 255 : in_ramp;
  return static_cast<uint8_t>(distance > ramp.sharp_to ? past_sharp : 0);
}

void RampAbove(const uint16_t* values, size_t count, const MaskRamp& given,
               uint8_t* __restrict mask) {
  const MaskRamp ramp = given;
  const Quotient by = QuotientBy(ramp.whole);
  for (size_t i = 0; i < count; ++i) {
    const uint16_t value = values[i];
    const uint16_t nearer = value > ramp.focus ? value : ramp.focus;
    mask[i] = MaskByte(static_cast<uint16_t>(nearer - ramp.focus), ramp, by);
  }
}

void RampBelow(const uint16_t* values, size_t count, const MaskRamp& given,
               uint8_t* __restrict mask) {
  const MaskRamp ramp = given;
  const Quotient by = QuotientBy(ramp.whole);
  for (size_t i = 0; i < count; ++i) {
    const uint16_t value = values[i];
    const uint16_t farther = value < ramp.focus ? value : ramp.focus;
    mask[i] = MaskByte(static_cast<uint16_t>(ramp.focus - farther), ramp, by);
  }
}

uint16_t Smallest(const uint16_t* values, size_t count) {
  uint16_t smallest = UINT16_MAX;
  for (size_t i = 0; i < count; ++i) {
    smallest = values[i] < smallest ? values[i] : smallest;
  }
  return smallest;
}

void Quantise(const uint16_t* values, size_t count, uint16_t smallest,
              uint16_t* __restrict quantised) {
  for (size_t i = 0; i < count; ++i) {
    const auto beyond = static_cast<uint16_t>(values[i] - smallest);
    const auto quarter = static_cast<uint16_t>(beyond >> 2);
    quantised[i] = quarter < kLargestQuantised ? quarter : kLargestQuantised;
  }
}

void Classify(const uint16_t* values, size_t count, uint16_t open_from,
              uint16_t seed_from, uint8_t* __restrict states) {
  for (size_t i = 0; i < count; ++i) {
    const uint16_t value = values[i];
    const uint16_t state = value >= open_from ? kOpen : 0;
    states[i] = static_cast<uint8_t>(value >= seed_from ? kSeed : state);
  }
}

void MaskReached(const uint8_t* states, size_t count,
                 uint8_t* __restrict mask) {
  for (size_t i = 0; i < count; ++i) {
    mask[i] = (states[i] & (kSeed | kReached)) != 0 ? 255 : 0;
  }
}

constexpr MapKernels kKernels = {RampAbove, RampBelow, Smallest,
                                 Quantise,  Classify,  MaskReached};

}  // namespace

template <>
const MapKernels& KernelsOf<MapKernels, kCompiledSet>() {
  return kKernels;
}

}  // namespace zuqel
