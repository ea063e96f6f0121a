// Fills holes from their neighbours in two scans. `Holes` tells those of one
// kind of map.
#include "depth/hole_filling.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstring>

#include "depth/statistics.h"

namespace zuqel {
namespace {

// Four values in a word, and the highest bits of those among them that are
// holes.
constexpr uint64_t kEach = 0x0001000100010001;
constexpr uint64_t kHighest = kEach << 15;

struct InvalidDisparities {
  static bool Has(uint16_t value) { return value >= kInvalidDisparity; }
  static uint64_t Among(uint64_t four) {
    constexpr uint64_t kUpToHighest = (0x8000 - kInvalidDisparity) * kEach;
    return (((four & ~kHighest) + kUpToHighest) | four) & kHighest;
  }
};
struct NoDistances {
  static bool Has(uint16_t value) { return value == 0; }
  static uint64_t Among(uint64_t four) {
    return ~(((four & ~kHighest) + (kHighest - kEach)) | four) & kHighest;
  }
};

// Most pixels are valid: this many are tested for holes at once. With a
// constant count the test is a few vector instructions without a branch.
constexpr int32_t kBlock = 32;

template <typename Holes>
bool HasHole(const uint16_t* values) {
  uint16_t found = 0;
  for (int32_t x = 0; x < kBlock; ++x) {
    found = static_cast<uint16_t>(found | (Holes::Has(values[x]) ? 1 : 0));
  }
  return found != 0;
}

// A bit for each of `count` values, at most kBlock, that is a hole.
template <typename Holes>
uint32_t HoleBits(const uint16_t* values, int32_t count) {
  // Brings the highest bits of four values, shifted down, together.
  constexpr uint64_t kGather = 1ULL << 48 | 1ULL << 33 | 1ULL << 18 | 1ULL << 3;
  uint32_t bits = 0;
  int32_t x = 0;
  for (; x + 4 <= count; x += 4) {
    uint64_t four = 0;
    std::memcpy(&four, values + x, sizeof(four));
    const uint64_t holes = (Holes::Among(four) >> 15) * kGather >> 48;
    bits |= static_cast<uint32_t>(holes) << x;
  }
  for (; x < count; ++x) bits |= uint32_t{Holes::Has(values[x])} << x;
  return bits;
}

// Sums of up to eight values, and above them how many.
constexpr int kCountShift = 20;

// A value's part in such a sum, 0 of a hole. Without a branch: where the holes
// are is not to be foreseen.
template <typename Holes>
uint32_t Term(uint16_t value) {
  const uint32_t mask = uint32_t{Holes::Has(value)} - 1;
  return (value + (1U << kCountShift)) & mask;
}

// 2^22 / count, rounded up: exact for the sums of so many values.
constexpr int kQuotientBits = 22;
constexpr std::array<uint64_t, 9> kReciprocals = [] {
  std::array<uint64_t, 9> reciprocals = {};
  for (uint64_t count = 1; count < reciprocals.size(); ++count) {
    reciprocals[count] = ((1U << kQuotientBits) + count - 1) / count;
  }
  return reciprocals;
}();

uint16_t Mean(uint32_t terms) {
  const uint64_t sum = terms & ((1U << kCountShift) - 1);
  const uint64_t mean = sum * kReciprocals[terms >> kCountShift];
  return static_cast<uint16_t>(mean >> kQuotientBits);
}

// One scan over all pixels, in raster order or in the reverse of it. A hole
// that gets a value is a valid neighbour from then on, so scanning in place
// visits the same holes with the same values as a list made beforehand.
template <typename Holes, bool kReverse>
class Scan {
 public:
  explicit Scan(Plane<uint16_t> plane) : plane_(plane) {}

  // True when no hole is left.
  bool Run() {
    const int32_t blocks = (plane_.width + kBlock - 1) / kBlock;
    for (int32_t i = 0; i < plane_.height; ++i) {
      StartRow(kReverse ? plane_.height - 1 - i : i);
      for (int32_t j = 0; j < blocks; ++j) {
        FillBlock(kBlock * (kReverse ? blocks - 1 - j : j));
      }
    }
    return filled_;
  }

 private:
  void StartRow(int32_t y) {
    row_ = plane_.row(y);
    above_ = y > 0 ? row_ - plane_.width : nullptr;
    below_ = y + 1 < plane_.height ? row_ + plane_.width : nullptr;
  }

  void FillBlock(int32_t begin) {
    const int32_t count = std::min(kBlock, plane_.width - begin);
    const uint16_t* values = row_ + begin;
    if (count == kBlock && !HasHole<Holes>(values)) return;
    uint32_t bits = HoleBits<Holes>(values, count);
    // The order of runs makes no difference.
    while (bits != 0) {
      const int first = std::countr_zero(bits);
      const int length = std::countr_one(bits >> first);
      FillRun(begin + first + (kReverse ? length - 1 : 0), length);
      bits &= static_cast<uint32_t>(~uint64_t{0} << (first + length));
    }
  }

  // Fills holes from `x` on in the direction of the scan.
  void FillRun(int32_t x, int length) {
    constexpr int32_t kStep = kReverse ? -1 : 1;
    uint32_t behind = Column(x - kStep) + Beside(x - kStep);
    uint32_t here = Column(x);
    for (; length > 0; --length) {
      const uint32_t ahead = Column(x + kStep);
      const uint32_t terms = behind + here + ahead + Beside(x + kStep);
      const uint16_t value = terms == 0 ? row_[x] : Mean(terms);
      row_[x] = value;
      filled_ &= terms != 0;
      behind = here + Term<Holes>(value);
      here = ahead;
      x += kStep;
    }
  }

  [[nodiscard]] bool IsInside(int32_t x) const {
    return x >= 0 && x < plane_.width;
  }
  [[nodiscard]] uint32_t Beside(int32_t x) const {
    return IsInside(x) ? Term<Holes>(row_[x]) : 0;
  }
  // Above and below.
  [[nodiscard]] uint32_t Column(int32_t x) const {
    if (!IsInside(x)) return 0;
    return (above_ != nullptr ? Term<Holes>(above_[x]) : 0) +
           (below_ != nullptr ? Term<Holes>(below_[x]) : 0);
  }

  Plane<uint16_t> plane_;
  uint16_t* row_ = nullptr;
  const uint16_t* above_ = nullptr;
  const uint16_t* below_ = nullptr;
  bool filled_ = true;
};

template <typename Holes>
void FillHoles(Plane<uint16_t> plane) {
  if (!Scan<Holes, false>(plane).Run()) Scan<Holes, true>(plane).Run();
}

}  // namespace

void FillDisparityHoles(Plane<uint16_t> disparity) {
  FillHoles<InvalidDisparities>(disparity);
}

void FillDistanceHoles(Plane<uint16_t> distance) {
  FillHoles<NoDistances>(distance);
}

}  // namespace zuqel
