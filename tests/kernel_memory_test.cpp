// Kernels that find no memory leave what they are given as it is, and those
// whose scratch was reserved need no more.
#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <vector>

#include "cpu_bokeh/box_blur.h"
#include "cpu_bokeh/expansion.h"
#include "cpu_bokeh/resize/resize_plane.h"
#include "cpu_bokeh/two_level_blur.h"
#include "depth/component_cleanup.h"
#include "depth/focus_mask.h"
#include "depth/morphology.h"
#include "depth/refocus_refinement.h"
#include "library_allocations.h"
#include "plane_image.h"

namespace zuqel {
namespace {

// A mask that the clean-ups change.
Image<uint8_t> Speck() {
  Image<uint8_t> mask = {12, 9};
  *mask.At(8, 5) = 255;
  return mask;
}

// What a caller hands in.
struct Planes {
  Image<uint8_t> luma = NoiseImage<uint8_t>(96, 72, 1);
  std::vector<uint8_t> chroma = Random(2).Values<uint8_t>(size_t{96} * 36);
  Image<uint8_t> mask = Speck();
  Image<uint16_t> disparity = NoiseImage<uint16_t>(12, 9, 4);

  bool operator==(const Planes&) const = default;
};

struct Scratch {
  Buffer buffer;
  CleanupScratch cleanup;
  RefinementScratch refinement;
  BlurScratch blur;
  ExpansionBuffers expansion;
};

constexpr ImageSize kFrame = {96, 72};
constexpr ImageSize kMap = {12, 9};
constexpr int32_t kGrowingBoxes = 8;  // radii of 2, 2 and 3
constexpr FocusRange kNearFocus = {.max = 1000, .min = 10, .focus = 900};

struct KernelCase {
  const char* name;
  bool (*reserve)(Scratch&);
  bool (*run)(Planes&, Scratch&);
};

constexpr auto kCases = std::to_array<KernelCase>({
    {"clean-up", [](auto& s) { return s.cleanup.Reserve(kMap); },
     [](auto& p, auto& s) {
       return RemoveSpecks(p.mask.View(), 900, s.cleanup, p.mask.View());
     }},
    {"refinement", [](auto& s) { return s.refinement.Reserve(kMap); },
     [](auto& p, auto& s) {
       return RefineRefocusMap(p.mask.View(), {3, 3}, s.refinement,
                               p.mask.View());
     }},
    {"square filter",
     [](auto& s) { return ReserveSquareFilter(kFrame, 4, s.buffer); },
     [](auto& p, auto& s) {
       return ErodeMin(p.luma.View(), 4, s.buffer, p.luma.View());
     }},
    {"region growing",
     [](auto& s) { return ReserveRegionGrowing(kMap, s.buffer); },
     [](auto& p, auto& s) {
       const uint8_t* plane = p.luma.values.data();
       return FocusMaskExpansion(p.disparity.View(), {plane, plane, plane},
                                 kNearFocus, s.buffer, p.mask.View());
     }},
    {"boxes that grow",
     [](auto& s) {
       return ReserveBoxGaussianBlur(kFrame, kGrowingBoxes, s.buffer);
     },
     [](auto& p, auto& s) {
       return BoxGaussianBlur(p.luma.View(), kGrowingBoxes, s.buffer,
                              p.luma.View());
     }},
    {"enlarging in three steps",
     [](auto& s) {
       return ReserveResize<uint8_t>(kMap, kFrame, s.blur.resize);
     },
     [](auto& p, auto& s) {
       return ResizePlane(p.mask.View(), s.blur.resize, p.luma.View());
     }},
    {"reducing by any ratio",
     [](auto& s) {
       return ReserveResize<uint16_t>(kMap, {5, 4}, s.blur.resize);
     },
     [](auto& p, auto& s) {
       const Image<uint16_t> in = p.disparity;
       return ResizePlane(in.View(), s.blur.resize,
                          {p.disparity.values.data(), 5, 4});
     }},
    {"two-level blur",
     [](auto& s) {
       return ReserveTwoLevelBlur(kFrame, 3, kGrowingBoxes, s.blur);
     },
     [](auto& p, auto& s) {
       return TwoLevelBlur(p.luma.View(), 3, kGrowingBoxes, s.blur,
                           p.luma.View());
     }},
    {"the whole frame, which reserves for itself", nullptr,
     [](auto& p, auto& s) {
       int32_t counter = 0;
       return RenderExpansion(
           {p.luma.View(), p.chroma, p.disparity.View(), 50, 30}, s.expansion,
           counter);
     }},
});

TEST(KernelMemory, NothingChangesWithoutAnyOneBlock) {
  const Planes given;
  for (const KernelCase& kernel : kCases) {
    Planes planes;
    int blocks = -library_allocations::Count();
    {
      Scratch scratch;
      EXPECT_TRUE(kernel.run(planes, scratch)) << kernel.name;
    }
    blocks += library_allocations::Count();
    EXPECT_GT(blocks, 0) << kernel.name;
    EXPECT_FALSE(planes == given) << kernel.name;
    for (int number = 1; number <= blocks; ++number) {
      planes = given;
      Scratch scratch;
      const library_allocations::FailingBlock failing(number);
      EXPECT_FALSE(kernel.run(planes, scratch)) << kernel.name;
      EXPECT_TRUE(planes == given)
          << kernel.name << " without block " << number << " of " << blocks;
    }
  }
}

TEST(KernelMemory, ReservedScratchSuffices) {
  for (const KernelCase& kernel : kCases) {
    if (kernel.reserve == nullptr) continue;
    Planes planes;
    Scratch scratch;
    EXPECT_TRUE(kernel.reserve(scratch)) << kernel.name;
    const int blocks = library_allocations::Count();
    EXPECT_TRUE(kernel.run(planes, scratch)) << kernel.name;
    EXPECT_EQ(library_allocations::Count(), blocks) << kernel.name;
  }
}

}  // namespace
}  // namespace zuqel
