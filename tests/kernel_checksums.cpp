// Compares checksums of what the kernels make of fixed inputs with a list that
// every processor's build shares: equal lists are equal bits. After a wanted
// change of results, remake the list with
//   build/release/bin/kernel_checksums --print > tests/kernel_checksums.txt
#include <gtest/gtest.h>

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <iomanip>
#include <iostream>
#include <span>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "base/plane.h"
#include "calib/calibration.h"
#include "depth/disparity_holes.h"
#include "depth/disparity_range.h"
#include "render/focus_dot.h"
#include "render/plane_conversion.h"

namespace zuqel {
namespace {

struct Size {
  int32_t width, height;
};

size_t Area(Size size) {
  return static_cast<size_t>(size.width) * static_cast<size_t>(size.height);
}

// SplitMix64 makes the inputs; FNV-1a sums the results, low byte first.
class Trial {
 public:
  uint32_t Below(uint64_t limit) {
    random_ += 0x9E3779B97F4A7C15;
    uint64_t z = random_;
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EB;
    return static_cast<uint32_t>((z >> 32) % limit);
  }
  template <typename T>
  std::vector<T> Noise(size_t count) {
    std::vector<T> values(count);
    for (T& value : values) value = static_cast<T>(Below(uint64_t{1} << 32));
    return values;
  }
  template <typename Values>
  void Add(const Values& values) {
    for (const auto value : values) {
      for (size_t byte = 0; byte < sizeof(value); ++byte) {
        const auto bits = static_cast<uint64_t>(value) >> (8 * byte);
        sum_ = (sum_ ^ (bits & 0xFF)) * 0x100000001B3;
      }
    }
  }
  [[nodiscard]] uint64_t sum() const { return sum_; }

 private:
  uint64_t random_ = 0, sum_ = 0xCBF29CE484222325;
};

template <typename T>
Plane<T> View(std::vector<T>& values, Size size) {
  return {values.data(), size.width, size.height};
}

template <typename T, void (*kPack)(Plane<const T>, std::span<uint32_t>)>
void SumPack(Size size, Trial& trial) {
  auto plane = trial.Noise<T>(Area(size));
  std::vector<uint32_t> rgba(Area(size));
  kPack(View(plane, size), rgba);
  trial.Add(rgba);
}

// With a format, unpacks; else packs.
template <int32_t... kFormat>
void SumFrame(Size size, Trial& trial) {
  auto luma = trial.Noise<uint8_t>(Area(size));
  auto chroma = trial.Noise<uint8_t>(Area({size.width, size.height / 2}));
  auto rgba = trial.Noise<uint32_t>(Area(size));
  const Frame frame = {View(luma, size), chroma};
  if constexpr (sizeof...(kFormat) == 0) PackFrame(frame, rgba);
  (UnpackFrame(rgba, kFormat, frame), ...);
  trial.Add(rgba);
  trial.Add(luma);
  trial.Add(chroma);
}

void SumFocusDot(Size size, Trial& trial) {
  auto luma = trial.Noise<uint8_t>(Area(size));
  const std::array<FocusPoint, 4> points = {{{0, 0},
                                             {size.width / 2, size.height / 2},
                                             {size.width - 1, size.height - 1},
                                             {-7, size.height + 9}}};
  for (const FocusPoint point : points) {
    DrawFocusDot(View(luma, size), point);
    trial.Add(luma);
  }
}

// Runs of like values and runs of holes.
std::vector<uint16_t> Disparity(Size size, uint32_t hole_percent,
                                Trial& trial) {
  std::vector<uint16_t> map(Area(size));
  for (size_t i = 0; i < map.size();) {
    const size_t end = i + 1 + trial.Below(20);
    const bool is_hole = trial.Below(100) < hole_percent;
    const uint32_t base = is_hole ? kInvalidDisparity : trial.Below(1000);
    const uint32_t span = is_hole ? trial.Below(2) * 64000 + 1 : 23;
    for (; i < map.size() && i < end; ++i) {
      map[i] = static_cast<uint16_t>(base + trial.Below(span));
    }
  }
  return map;
}

void SumDispRange(Size size, Trial& trial) {
  for (const uint32_t hole_percent : {10U, 90U}) {
    auto map = Disparity(size, hole_percent, trial);
    for (const int32_t percent : {0, 1, 5, 40, 100, -1, INT32_MAX}) {
      const DisparityRange range = GetDispRange(View(map, size), percent);
      trial.Add(std::array{range.min, range.max});
    }
  }
}

void SumFilledHoles(Size size, Trial& trial) {
  for (const uint32_t hole_percent : {10U, 90U}) {
    auto map = Disparity(size, hole_percent, trial);
    FillDisparityHoles(View(map, size));
    trial.Add(map);
  }
}

// Any bits, or the number of eighths that a module may have.
float OpticalValue(uint32_t least, uint32_t span, Trial& trial) {
  if (trial.Below(9) == 0) {
    return std::bit_cast<float>(trial.Below(uint64_t{1} << 32));
  }
  return static_cast<float>(least + trial.Below(span)) / 8;
}

// Records chosen by their optical values, in float arithmetic. The size of a
// picture says how many modules there are.
void SumDecodeCalibration(Size size, Trial& trial) {
  struct Container {
    size_t length, records, optics, stride;
  };
  for (const Container& row :
       {Container{1403, 3, 327, 466}, Container{2801, 6, 327, 466},
        Container{1547, 3, 347, 514}, Container{1488, 1, 340, 0}}) {
    for (int32_t position = 0; position < 8 * size.width; position += 2) {
      auto block = trial.Noise<uint8_t>(row.length);
      for (size_t k = 0; k < row.records; ++k) {
        // third, divisor, slope, offset, focal length, distance
        const std::array<float, 6> optics = {0,
                                             0,
                                             OpticalValue(800, 8000, trial),
                                             OpticalValue(0, 1600, trial),
                                             OpticalValue(20, 20, trial),
                                             OpticalValue(400, 20000, trial)};
        std::memcpy(&block[row.optics + k * row.stride], optics.data(),
                    sizeof(optics));
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

// One row of the list: a kernel with every size.
struct Kernel {
  const char* name;
  void (*run)(Size, Trial&);
};
constexpr auto kKernels = std::to_array<Kernel>({
    {"PackWeights", SumPack<uint8_t, PackWeights>},
    {"PackDepth", SumPack<uint16_t, PackDepth>},
    {"PackFrame", SumFrame<>},
    {"UnpackFrame nv21", SumFrame<kFormatNv21>},
    {"UnpackFrame planar", SumFrame<kFormatPlanar>},
    {"UnpackFrame packed", SumFrame<kFormatPacked>},
    {"UnpackFrame other", SumFrame<1>},
    {"DrawFocusDot", SumFocusDot},
    {"GetDispRange", SumDispRange},
    {"FillDisparityHoles", SumFilledHoles},
    {"DecodeCalibration", SumDecodeCalibration},
});

std::string MakeList() {
  // Odd, even, whole blocks of four, and tails of every vector length.
  constexpr std::array<Size, 5> kSizes = {
      {{1, 1}, {5, 3}, {34, 18}, {64, 48}, {127, 65}}};
  std::ostringstream list;
  for (const Kernel& kernel : kKernels) {
    Trial trial;
    for (const Size size : kSizes) kernel.run(size, trial);
    list << std::hex << std::setw(16) << std::setfill('0') << trial.sum()
         << "  " << kernel.name << "\n";
  }
  return list.str();
}

TEST(KernelChecksums, EqualTheList) {
  std::ostringstream listed;
  listed << std::ifstream(ZUQEL_CHECKSUM_LIST).rdbuf();
  EXPECT_EQ(MakeList(), listed.str());
}

}  // namespace
}  // namespace zuqel

int main(int argc, char** argv) {
  if (argc == 2 && std::string_view(argv[1]) == "--print") {
    std::cout << zuqel::MakeList();
    return 0;
  }
  testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}
