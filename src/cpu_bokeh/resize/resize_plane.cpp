// Chooses the kernels that resize a plane.
#include "cpu_bokeh/resize/resize_plane.h"

#include <algorithm>
#include <cstddef>

#include "cpu_bokeh/resize/enlarge_rows.h"
#include "cpu_bokeh/resize/reduce_blocks.h"

namespace zuqel {
namespace {

// A factor in up to three steps, in their order; 0 is no step.
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
template <size_t kCount>
const Chain* FindChain(const std::array<Chain, kCount>& chains, ImageSize small,
                       ImageSize large) {
  const auto* found =
      std::find_if(chains.begin(), chains.end(), [&](const Chain& chain) {
        return int64_t{small.width} * chain.factor == large.width &&
               int64_t{small.height} * chain.factor == large.height;
      });
  return found == chains.end() ? nullptr : found;
}

// A factor of 0 is any ratio.
struct Step {
  int32_t factor;
  ImageSize to;
};
struct Path {
  bool is_enlarging = false;
  size_t length = 0;
  std::array<Step, 3> steps = {};
};

template <typename Sample>
Path FindPath(ImageSize from, ImageSize to) {
  Path path = {.is_enlarging = to.pixel_count() >= from.pixel_count()};
  const Chain* chain = nullptr;
  if (!path.is_enlarging) {
    chain = FindChain(kReducingChains, to, from);
  } else if (sizeof(Sample) == 1) {
    chain = FindChain(kEnlargingChains, from, to);
  }
  if (chain == nullptr) {
    path.steps[path.length++] = {0, to};
    return path;
  }
  for (const int32_t factor : chain->steps) {
    if (factor == 0) break;
    from = path.is_enlarging
               ? ImageSize{from.width * factor, from.height * factor}
               : ImageSize{from.width / factor, from.height / factor};
    path.steps[path.length++] = {factor, from};
  }
  return path;
}

// The fixed weights of an enlarging step; null for a walk.
template <typename Sample>
RowFunction<Sample> FixedWeights(int32_t factor, ImageSize from, ImageSize to) {
  if constexpr (sizeof(Sample) == 1) {
    if (factor == 3) return EnlargeRowBy3;
    if (factor == 6) return EnlargeRowBy6;
    return factor == 2 ? EnlargeRowBy2 : nullptr;
  } else {
    const bool is_3_halves =
        from == ImageSize{1280, 720} && to == ImageSize{1920, 1080};
    return is_3_halves ? EnlargeRowBy3Halves : nullptr;
  }
}

template <typename Sample>
bool Resize(Plane<const Sample> in, ResizeScratch& scratch, Plane<Sample> out) {
  if (in.size() == 0 || out.size() == 0) {
    std::fill_n(out.data, out.size(), Sample{0});
    return true;
  }
  if (in.extent() == out.extent()) {
    std::copy_n(in.data, in.size(), out.data);
    return true;
  }
  // All of it before the first step is written.
  if (!ReserveResize<Sample>(in.extent(), out.extent(), scratch)) return false;
  const Path path = FindPath<Sample>(in.extent(), out.extent());
  for (size_t i = 0; i < path.length; ++i) {
    const auto [factor, to] = path.steps[i];
    Plane<Sample> made = out;
    if (i + 1 < path.length) {
      made = {reinterpret_cast<Sample*>(scratch.between[i].bytes()), to.width,
              to.height};
    }
    if (factor != 0 && !path.is_enlarging) {
      ReduceBlocks(factor, in, made);
    } else {
      ResizeByTaps(in, FixedWeights<Sample>(factor, in.extent(), to),
                   scratch.taps, made);
    }
    in = made;
  }
  return true;
}

}  // namespace

template <typename Sample>
bool ReserveResize(ImageSize from, ImageSize to, ResizeScratch& scratch) {
  if (from.pixel_count() == 0 || to.pixel_count() == 0 || from == to) {
    return true;
  }
  const Path path = FindPath<Sample>(from, to);
  for (size_t i = 0; i < path.length; ++i) {
    const Step& step = path.steps[i];
    const bool is_between = i + 1 < path.length;
    const bool is_general = path.is_enlarging || step.factor == 0;
    if ((is_between &&
         !scratch.between[i].Reserve(ByteCount(step.to, sizeof(Sample)))) ||
        (is_general && !ReserveTaps<Sample>(from, step.to, scratch.taps))) {
      return false;
    }
    from = step.to;
  }
  return true;
}

template bool ReserveResize<uint8_t>(ImageSize, ImageSize, ResizeScratch&);
template bool ReserveResize<uint16_t>(ImageSize, ImageSize, ResizeScratch&);

bool ResizePlane(Plane<const uint8_t> in, ResizeScratch& scratch,
                 Plane<uint8_t> out) {
  return Resize(in, scratch, out);
}

bool ResizePlane(Plane<const uint16_t> in, ResizeScratch& scratch,
                 Plane<uint16_t> out) {
  return Resize(in, scratch, out);
}

}  // namespace zuqel
