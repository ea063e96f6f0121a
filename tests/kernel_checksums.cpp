// Compares checksums of what the kernels make of fixed inputs with a list that
// every processor's build shares: equal lists are equal bits. After a wanted
// change of results, the failed test shows the new list.
#include <gtest/gtest.h>

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <iomanip>
#include <span>
#include <sstream>
#include <utility>
#include <vector>

#include "base/plane.h"
#include "calib/calibration.h"
#include "cpu_bokeh/box_blur.h"
#include "cpu_bokeh/expansion.h"
#include "cpu_bokeh/resize/resize_plane.h"
#include "depth/focus_mask.h"
#include "depth/hole_filling.h"
#include "depth/morphology.h"
#include "depth/refocus_refinement.h"
#include "depth/statistics.h"
#include "frame/focus.h"
#include "random.h"
#include "render/plane_conversion.h"

namespace zuqel {
namespace {

using Size = Plane<uint8_t>;  // without data

// FNV-1a sums the results, low byte first.
struct Trial {
  Random random = Random(0);
  uint64_t sum = 0xCBF29CE484222325;

  void Add(const auto& values) {
    for (const uint64_t value : values) {
      for (size_t bit = 0; bit < 8 * sizeof(values[0]); bit += 8) {
        sum = (sum ^ ((value >> bit) & 0xFF)) * 0x100000001B3;
      }
    }
  }
};

template <typename T>
Plane<T> View(std::vector<T>& values, Size size) {
  return {values.data(), size.width, size.height};
}

template <typename T, void (*kPack)(Plane<const T>, std::span<uint32_t>)>
void SumPack(Size size, Trial& trial) {
  auto plane = trial.random.Values<T>(size.size());
  std::vector<uint32_t> rgba(size.size());
  kPack(View(plane, size), rgba);
  trial.Add(rgba);
}

// With a format, unpacks; else packs.
template <int32_t... kFormat>
void SumFrame(Size size, Trial& trial) {
  auto luma = trial.random.Values<uint8_t>(size.size());
  auto chroma = trial.random.Values<uint8_t>(
      Size{nullptr, size.width, size.height / 2}.size());
  auto rgba = trial.random.Values<uint32_t>(size.size());
  const Frame frame = {View(luma, size), chroma};
  if constexpr (sizeof...(kFormat) == 0) PackFrame(frame, rgba);
  (UnpackFrame(rgba, kFormat, frame), ...);
  trial.Add(rgba);
  trial.Add(luma);
  trial.Add(chroma);
}

void SumFocusDot(Size size, Trial& trial) {
  auto luma = trial.random.Values<uint8_t>(size.size());
  for (const FocusPoint point :
       {FocusPoint{0, 0}, FocusPoint{size.width / 2, size.height / 2},
        FocusPoint{size.width - 1, size.height - 1},
        FocusPoint{-7, size.height + 9}}) {
    DrawFocusDot(View(luma, size), point);
    trial.Add(luma);
  }
}

using DepthMap = Plane<uint16_t>;

void Sum(void (*fill)(DepthMap), DepthMap map, Trial& trial) {
  fill(map);
  trial.Add(std::span(map.data, map.size()));
}

void Sum(ValueRange (*range_of)(Plane<const uint16_t>, int32_t), DepthMap map,
         Trial& trial) {
  for (const int32_t percent : {0, 1, 5, 40, 100, -1, INT32_MAX}) {
    const ValueRange range = range_of(map, percent);
    trial.Add(std::array{range.min, range.max});
  }
}

void Sum(decltype(&GetFocusDisp) focus_of, DepthMap map, Trial& trial) {
  for (uint16_t at = 0; at < 66; ++at) {
    trial.Add(std::array{focus_of(map, at, at)});
  }
}

void Sum(decltype(&FocusMaskDist) make, DepthMap map, Trial& trial) {
  std::vector<uint8_t> mask(map.size());
  for (const uint16_t focus : std::array<uint16_t, 4>{0, 60, 400, 700}) {
    make(map, {999, 40, focus}, {mask.data(), map.width, map.height});
    trial.Add(mask);
  }
}

// The low bytes of a map are a picture, or a map that is to be refined.
void Grow(Plane<const uint16_t> map, const FocusRange& range,
          Plane<uint8_t> mask) {
  const std::vector<uint8_t> low(map.data, map.data + map.size());
  Buffer scratch;
  EXPECT_TRUE(FocusMaskExpansion(map, {low.data(), low.data(), low.data()},
                                 range, scratch, mask));
}
void Refine(Plane<const uint16_t> map, const FocusRange& range,
            Plane<uint8_t> mask) {
  const std::vector<uint8_t> low(map.data, map.data + map.size());
  RefinementScratch scratch;
  EXPECT_TRUE(RefineRefocusMap({low.data(), map.width, map.height},
                               {range.focus, 0}, scratch, mask));
}

// Of maps with runs of like values and runs of holes.
template <auto kKernel>
void SumDisparity(Size size, Trial& trial) {
  for (const uint32_t hole_percent : {10U, 90U}) {
    std::vector<uint16_t> map(size.size());
    for (size_t i = 0; i < map.size();) {
      const size_t end = i + 1 + trial.random.Below(20);
      const bool is_hole = trial.random.Below(100) < hole_percent;
      const uint32_t base =
          is_hole ? kInvalidDisparity : trial.random.Below(1000);
      const uint32_t span = is_hole ? trial.random.Below(2) * 64000 + 1 : 23;
      for (; i < map.size() && i < end; ++i) {
        map[i] = static_cast<uint16_t>(base + trial.random.Below(span));
      }
    }
    Sum(kKernel, View(map, size), trial);
  }
}

bool Box(Plane<const uint8_t> in, uint8_t radius, Buffer& scratch,
         Plane<uint8_t> out) {
  return BoxBlur(in, radius, scratch, out);
}

template <auto kFilter>
void SumFilter(Size size, Trial& trial) {
  auto plane = trial.random.Values<uint8_t>(size.size());
  Buffer scratch;
  EXPECT_TRUE(kFilter(View(plane, size), 4, scratch, View(plane, size)));
  trial.Add(plane);
}

void SumResizePlane(Size size, Trial& trial) {
  ResizeScratch scratch;
  auto plane = trial.random.Values<uint8_t>(size.size());
  for (const int32_t percent : {15, 25, 34, 50, 75, 130, 200, 300, 600}) {
    const Size to = {nullptr, size.width * percent / 100,
                     size.height * percent / 100};
    std::vector<uint8_t> out(to.size());
    EXPECT_TRUE(ResizePlane(View(plane, size), scratch, View(out, to)));
    trial.Add(out);
  }
}

void SumRenderExpansion(Size size, Trial& trial) {
  ExpansionBuffers buffers;
  int32_t counter = 0;
  const Size chroma_size = {nullptr, size.width, size.height / 2};
  const Size small = {nullptr, (size.width + 1) / 2, (size.height + 2) / 3};
  auto luma = trial.random.Values<uint8_t>(size.size());
  auto chroma = trial.random.Values<uint8_t>(chroma_size.size());
  for (int32_t x = 0; x < 5; ++x) {
    auto map = trial.random.Values<uint16_t>(small.size());
    EXPECT_TRUE(RenderExpansion(
        {View(luma, size), chroma, View(map, small), x, x}, buffers, counter));
    trial.Add(luma);
    trial.Add(chroma);
  }
}

// Records chosen by their optical values, in float arithmetic. The size of a
// picture says how many modules there are.
void SumDecodeCalibration(Size size, Trial& trial) {
  // Any bits, or the number of eighths that a module may have.
  const auto optical = [&trial](uint32_t least, uint32_t span) {
    return trial.random.Below(9) == 0
               ? std::bit_cast<float>(trial.random.Bits())
               : static_cast<float>(least + trial.random.Below(span)) / 8;
  };
  // Length, records, the place of the first one's values, bytes to the next.
  constexpr std::array<std::array<size_t, 4>, 4> kContainers = {
      {{1403, 3, 327, 466},
       {2801, 6, 327, 466},
       {1547, 3, 347, 514},
       {1488, 1, 340, 0}}};
  for (const auto& [length, records, place, stride] : kContainers) {
    for (int32_t position = 0; position < 8 * size.width; position += 2) {
      auto block = trial.random.Values<uint8_t>(length);
      for (size_t k = 0; k < records; ++k) {
        const float slope = optical(800, 8000), offset = optical(0, 1600),
                    focal_length = optical(20, 20),
                    distance = optical(400, 20000);
        const std::array values = {0.0F,   0.0F,         slope,
                                   offset, focal_length, distance};
        std::memcpy(&block[place + k * stride], values.data(), sizeof(values));
      }
      calib::CalibrationRecord record;
      const uint32_t status = calib::DecodeCalibration(
          {.block_a = block.data(),
           .block_a_size = static_cast<uint32_t>(block.size()),
           .selector = position % 4,
           .lens_position = position,
           .forced_index = calib::kByLensPosition},
          record);
      trial.Add(std::array{status, record.index});
      trial.Add(record.bytes);
    }
  }
}

using Kernel = std::pair<const char*, void (*)(Size, Trial&)>;
constexpr auto kKernels = std::to_array<Kernel>({
    {"PackWeights", SumPack<uint8_t, PackWeights>},
    {"PackDepth", SumPack<uint16_t, PackDepth>},
    {"PackFrame", SumFrame<>},
    {"UnpackFrame nv21", SumFrame<kFormatNv21>},
    {"UnpackFrame planar", SumFrame<kFormatPlanar>},
    {"UnpackFrame packed", SumFrame<kFormatPacked>},
    {"UnpackFrame other", SumFrame<1>},
    {"DrawFocusDot", SumFocusDot},
    {"GetDispRange", SumDisparity<GetDispRange>},
    {"FillDisparityHoles", SumDisparity<FillDisparityHoles>},
    {"GetFocusDisp", SumDisparity<GetFocusDisp>},
    {"GetQuanDistRange", SumDisparity<GetQuanDistRange>},
    {"FillDistanceHoles", SumDisparity<FillDistanceHoles>},
    {"FocusMaskDisparity", SumDisparity<FocusMaskDisparity>},
    {"FocusMaskDist", SumDisparity<FocusMaskDist>},
    {"FocusMaskExpansion", SumDisparity<Grow>},
    {"RefineRefocusMap", SumDisparity<Refine>},
    {"ErodeMin", SumFilter<ErodeMin>},
    {"DilateMax", SumFilter<DilateMax>},
    {"BoxBlur", SumFilter<Box>},
    {"ResizePlane", SumResizePlane},
    {"RenderExpansion", SumRenderExpansion},
    {"DecodeCalibration", SumDecodeCalibration},
});

TEST(KernelChecksums, EqualTheList) {
  // Odd, even, whole blocks of four, and tails of every vector length.
  constexpr std::array<std::pair<int32_t, int32_t>, 5> kSizes = {
      {{1, 1}, {5, 3}, {34, 18}, {64, 48}, {127, 65}}};
  std::ostringstream list, listed;
  for (const auto& [name, run] : kKernels) {
    Trial trial;
    for (const auto& [width, height] : kSizes) {
      run({nullptr, width, height}, trial);
    }
    list << std::hex << std::setw(16) << std::setfill('0') << trial.sum << "  "
         << name << "\n";
  }
  listed << std::ifstream(ZUQEL_CHECKSUM_LIST).rdbuf();
  EXPECT_EQ(list.str(), listed.str());
}

}  // namespace
}  // namespace zuqel
