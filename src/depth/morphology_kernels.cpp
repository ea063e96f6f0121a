// Vectors by name keep what a strip of columns has come to in registers, which
// compilers do not with arrays; a vector at the end of a row overlaps the one
// before.
#include "depth/morphology_kernels.h"

#include "base/kernel_set.h"

namespace zuqel {
namespace {

#ifdef __AVX2__
constexpr size_t kVector = 32;
#else
constexpr size_t kVector = 16;
#endif
using Pixels [[gnu::vector_size(kVector)]] = uint8_t;

inline Pixels Load(const uint8_t* from) {
  Pixels pixels;
  __builtin_memcpy(&pixels, from, kVector);
  return pixels;
}
inline void Store(Pixels pixels, uint8_t* to) {
  __builtin_memcpy(to, &pixels, kVector);
}

struct Union {
  static constexpr uint8_t kNeutral = 0;
  static Pixels Of(Pixels a, Pixels b) { return a | b; }
};
struct Minimum {
  static constexpr uint8_t kNeutral = 255;
  static Pixels Of(Pixels a, Pixels b) { return a < b ? a : b; }
};
struct Maximum {
  static constexpr uint8_t kNeutral = 0;
  static Pixels Of(Pixels a, Pixels b) { return a > b ? a : b; }
};

template <typename Op>
void CombineColumns(const uint8_t* const* rows, size_t block, size_t width,
                    uint8_t* ends, size_t out_rows, size_t out_stride,
                    uint8_t* out) {
  constexpr size_t kStrip = 2 * kVector;
  struct Strip {
    Pixels left = Pixels{} + Op::kNeutral, right = left;

    void Add(const uint8_t* row) {
      left = Op::Of(left, Load(row));
      right = Op::Of(right, Load(row + kVector));
    }
    void StoreTo(uint8_t* to) const {
      Store(left, to);
      Store(right, to + kVector);
    }
  };
  for (size_t column = 0; column < width; column += kStrip) {
    const size_t x = column + kStrip <= width ? column : width - kStrip;
    Strip beginning;
    for (size_t i = 0; i < out_rows; ++i) {
      Strip window = beginning;
      window.Add(ends + i * kStrip);
      window.StoreTo(out + i * out_stride + x);
      beginning.Add(rows[i] + x);
    }
    Strip end;
    for (size_t i = block; i-- > 0;) {
      end.Add(rows[i] + x);
      end.StoreTo(ends + i * kStrip);
    }
    ends += block * kStrip;
  }
}

template <typename Op>
void CombineAlong(const uint8_t* row, size_t second, size_t third, size_t count,
                  uint8_t* out) {
  const auto combine = [=](size_t x) {
    Store(Op::Of(Op::Of(Load(row + x), Load(row + x + second)),
                 Load(row + x + third)),
          out + x);
  };
  for (size_t x = 0; x + kVector <= count; x += kVector) combine(x);
  if (count % kVector != 0) combine(count - kVector);
}

template <typename Op>
constexpr SquareFilterSteps kSteps = {CombineColumns<Op>, CombineAlong<Op>,
                                      Op::kNeutral};
constexpr SquareFilterKernels kKernels = {kSteps<Union>, kSteps<Minimum>,
                                          kSteps<Maximum>};

}  // namespace

template <>
const SquareFilterKernels& KernelsOf<SquareFilterKernels, kCompiledSet>() {
  return kKernels;
}

}  // namespace zuqel
