// Finds the kernels that a change of size is made of.
#include "cpu_bokeh/resize_plane.h"

#include <algorithm>
#include <cstddef>

#include "cpu_bokeh/enlarge_rows.h"
#include "cpu_bokeh/reduce_blocks.h"

namespace zuqel {
namespace {

// A factor in up to three steps, the first first; 0 is no step.
struct Chain {
  int32_t factor;
  std::array<int32_t, 3> steps;
};
// In the order in which they are tried.
constexpr auto kEnlargingChains = std::to_array<Chain>(
    {{3, {3}}, {2, {2}}, {6, {6}}, {9, {3, 3}}, {8, {2, 2, 2}}, {12, {2, 6}}});
constexpr auto kReducingChains = std::to_array<Chain>({{2, {2}},
                                                       {3, {3}},
                                                       {4, {4}},
                                                       {6, {6}},
                                                       {8, {2, 2, 2}},
                                                       {9, {3, 3}},
                                                       {12, {6, 2}}});

// The chain that makes `large` out of `small` on both axes; null for none.
template <size_t kCount, typename T, typename U>
const Chain* FindChain(const std::array<Chain, kCount>& chains, Plane<T> small,
                       Plane<U> large) {
  const auto* found =
      std::find_if(chains.begin(), chains.end(), [&](const Chain& chain) {
        return int64_t{small.width} * chain.factor == large.width &&
               int64_t{small.height} * chain.factor == large.height;
      });
  return found == chains.end() ? nullptr : found;
}

RowFunction<uint8_t> RowOfFactor(int32_t factor) {
  if (factor == 3) return EnlargeRowBy3;
  return factor == 6 ? EnlargeRowBy6 : EnlargeRowBy2;
}

bool EnlargeStep(int32_t factor, Plane<const uint8_t> in,
                 ResizeScratch& scratch, Plane<uint8_t> out) {
  return ResizeGeneral(in, RowOfFactor(factor), scratch.general, out);
}

template <typename Sample>
bool ReduceStep(int32_t factor, Plane<const Sample> in,
                ResizeScratch& /*scratch*/, Plane<Sample> out) {
  ReduceBlocks(factor, in, out);
  return true;
}

// Runs the steps from plane to plane; `resized` gives the size after one.
template <typename Sample, typename Step, typename Resized>
bool RunChain(const Chain& chain, Plane<const Sample> in,
              ResizeScratch& scratch, Plane<Sample> out, Step step,
              Resized resized) {
  for (size_t i = 0; i < chain.steps.size(); ++i) {
    const int32_t factor = chain.steps[i];
    if (i + 1 == chain.steps.size() || chain.steps[i + 1] == 0) {
      return step(factor, in, scratch, out);
    }
    Buffer& buffer = scratch.between[i];
    const int32_t width = resized(in.width, factor);
    const int32_t height = resized(in.height, factor);
    if (!buffer.Reserve(ByteCount(width, height, sizeof(Sample)))) return false;
    const Plane<Sample> between = {reinterpret_cast<Sample*>(buffer.bytes()),
                                   width, height};
    if (!step(factor, in, scratch, between)) return false;
    in = between;
  }
  return true;
}

template <typename Sample>
bool Reduce(Plane<const Sample> in, ResizeScratch& scratch, Plane<Sample> out) {
  const Chain* chain = FindChain(kReducingChains, out, in);
  if (chain == nullptr) {
    return ResizeGeneral<Sample>(in, nullptr, scratch.general, out);
  }
  return RunChain(
      *chain, in, scratch, out, ReduceStep<Sample>,
      [](int32_t length, int32_t factor) { return length / factor; });
}

bool Enlarge(Plane<const uint8_t> in, ResizeScratch& scratch,
             Plane<uint8_t> out) {
  const Chain* chain = FindChain(kEnlargingChains, in, out);
  if (chain == nullptr) {
    return ResizeGeneral<uint8_t>(in, nullptr, scratch.general, out);
  }
  return RunChain(
      *chain, in, scratch, out, EnlargeStep,
      [](int32_t length, int32_t factor) { return length * factor; });
}

bool Enlarge(Plane<const uint16_t> in, ResizeScratch& scratch,
             Plane<uint16_t> out) {
  const bool is_3_halves = in.width == 1280 && in.height == 720 &&
                           out.width == 1920 && out.height == 1080;
  return ResizeGeneral(in, is_3_halves ? &EnlargeRowBy3Halves : nullptr,
                       scratch.general, out);
}

template <typename Sample>
bool Resize(Plane<const Sample> in, ResizeScratch& scratch, Plane<Sample> out) {
  if (in.size() == 0 || out.size() == 0) {
    std::fill_n(out.data, out.size(), Sample{0});
    return true;
  }
  if (in.width == out.width && in.height == out.height) {
    std::copy_n(in.data, in.size(), out.data);
    return true;
  }
  return out.size() >= in.size() ? Enlarge(in, scratch, out)
                                 : Reduce(in, scratch, out);
}

}  // namespace

bool ResizePlane(Plane<const uint8_t> in, ResizeScratch& scratch,
                 Plane<uint8_t> out) {
  return Resize(in, scratch, out);
}

bool ResizePlane(Plane<const uint16_t> in, ResizeScratch& scratch,
                 Plane<uint16_t> out) {
  return Resize(in, scratch, out);
}

}  // namespace zuqel
