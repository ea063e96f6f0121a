// Compares checksums of what the kernels make of fixed inputs with a list that
// every processor's build shares: equal lists are equal bits. After a wanted
// change of results, remake the list with
//   build/release/bin/kernel_checksums --print > tests/kernel_checksums.txt
#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <iomanip>
#include <iostream>
#include <limits>
#include <map>
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
  int32_t width = 0;
  int32_t height = 0;
};

// Odd, even, whole blocks of four, and tails of every vector length.
constexpr std::array<Size, 5> kSizes = {
    {{1, 1}, {5, 3}, {34, 18}, {64, 48}, {127, 65}}};

size_t Area(Size size) {
  return static_cast<size_t>(size.width) * static_cast<size_t>(size.height);
}

// SplitMix64.
class Numbers {
 public:
  uint32_t Next() {
    state_ += 0x9E3779B97F4A7C15;
    uint64_t z = state_;
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EB;
    return static_cast<uint32_t>(z >> 32);
  }
  uint32_t Below(uint32_t limit) { return Next() % limit; }

 private:
  uint64_t state_ = 0;
};

// FNV-1a over the values' bytes, low byte first.
class Checksum {
 public:
  template <typename T>
  void Add(T value) {
    for (size_t byte = 0; byte < sizeof(T); ++byte) {
      const auto bits = static_cast<uint64_t>(value) >> (8 * byte);
      state_ = (state_ ^ (bits & 0xFF)) * 0x100000001B3;
    }
  }
  template <typename Values>
  void AddAll(const Values& values) {
    for (const auto value : values) Add(value);
  }
  [[nodiscard]] uint64_t value() const { return state_; }

 private:
  uint64_t state_ = 0xCBF29CE484222325;
};

template <typename T>
std::vector<T> Noise(size_t count, Numbers& numbers) {
  std::vector<T> values(count);
  for (T& value : values) value = static_cast<T>(numbers.Next());
  return values;
}

template <typename T>
Plane<T> View(std::vector<T>& values, Size size) {
  return {values.data(), size.width, size.height};
}

void SumPackWeights(Size size, Numbers& numbers, Checksum& sum) {
  auto weights = Noise<uint8_t>(Area(size), numbers);
  std::vector<uint32_t> rgba(Area(size));
  PackWeights(View(weights, size), rgba);
  sum.AddAll(rgba);
}

void SumPackDepth(Size size, Numbers& numbers, Checksum& sum) {
  auto depth = Noise<uint16_t>(Area(size), numbers);
  std::vector<uint32_t> rgba(Area(size));
  PackDepth(View(depth, size), rgba);
  sum.AddAll(rgba);
}

size_t ChromaBytes(Size size) {
  return Area({size.width, size.height / 2});
}

void SumPackFrame(Size size, Numbers& numbers, Checksum& sum) {
  auto luma = Noise<uint8_t>(Area(size), numbers);
  auto chroma = Noise<uint8_t>(ChromaBytes(size), numbers);
  std::vector<uint32_t> rgba(Area(size));
  PackFrame({View(luma, size), chroma}, rgba);
  sum.AddAll(rgba);
}

template <int32_t kFormat>
void SumUnpackFrame(Size size, Numbers& numbers, Checksum& sum) {
  const auto rgba = Noise<uint32_t>(Area(size), numbers);
  auto luma = Noise<uint8_t>(Area(size), numbers);
  auto chroma = Noise<uint8_t>(ChromaBytes(size), numbers);
  UnpackFrame(rgba, kFormat, {View(luma, size), chroma});
  sum.AddAll(luma);
  sum.AddAll(chroma);
}

void SumFocusDot(Size size, Numbers& numbers, Checksum& sum) {
  auto luma = Noise<uint8_t>(Area(size), numbers);
  const std::array<FocusPoint, 4> points = {{{0, 0},
                                             {size.width / 2, size.height / 2},
                                             {size.width - 1, size.height - 1},
                                             {-7, size.height + 9}}};
  for (const FocusPoint point : points) {
    DrawFocusDot(View(luma, size), point);
    sum.AddAll(luma);
  }
}

// Runs of like values and runs of holes.
std::vector<uint16_t> Disparity(Size size, uint32_t hole_percent,
                                Numbers& numbers) {
  std::vector<uint16_t> map(Area(size));
  for (size_t i = 0; i < map.size();) {
    const size_t end = i + 1 + numbers.Below(20);
    const bool is_hole = numbers.Below(100) < hole_percent;
    const uint32_t base = is_hole ? kInvalidDisparity : numbers.Below(1000);
    const uint32_t span = is_hole ? numbers.Below(2) * 64000 + 1 : 23;
    for (; i < map.size() && i < end; ++i) {
      map[i] = static_cast<uint16_t>(base + numbers.Below(span));
    }
  }
  return map;
}

template <uint32_t kHolePercent>
void SumDispRange(Size size, Numbers& numbers, Checksum& sum) {
  auto map = Disparity(size, kHolePercent, numbers);
  for (const int32_t percent : {0, 1, 5, 40, 100, -1, INT32_MAX}) {
    const DisparityRange range = GetDispRange(View(map, size), percent);
    sum.Add(range.min);
    sum.Add(range.max);
  }
}

template <uint32_t kHolePercent>
void SumFilledHoles(Size size, Numbers& numbers, Checksum& sum) {
  auto map = Disparity(size, kHolePercent, numbers);
  FillDisparityHoles(View(map, size));
  sum.AddAll(map);
}

// A container of several records and where each record's optical values lie.
struct Container {
  size_t length, records, first, stride;
};
constexpr Container kKind1 = {1403, 3, 7 + 320, 466};
constexpr Container kKind1Long = {2801, 6, 7 + 320, 466};
constexpr Container kKind3 = {1547, 3, 7 + 340, 514};

void AddRecord(const std::vector<uint8_t>& block,
               calib::CalibrationInput choice, Checksum& sum) {
  choice.block_a = block.data();
  choice.block_a_size = static_cast<uint32_t>(block.size());
  calib::CalibrationRecord record;
  sum.Add(calib::DecodeCalibration(choice, record));
  sum.Add(record.index);
  sum.AddAll(record.bytes);
}

// An eighth of `least` or a little more, or one time in `exotic` a value that
// no module has.
float OpticalValue(uint32_t least, uint32_t span, uint32_t exotic,
                   Numbers& numbers) {
  constexpr float kInfinity = std::numeric_limits<float>::infinity();
  constexpr std::array<float, 6> kExotic = {
      0,         1e30F,      -1e30F,
      kInfinity, -kInfinity, std::numeric_limits<float>::quiet_NaN()};
  if (exotic != 0 && numbers.Below(exotic) == 0) {
    return kExotic[numbers.Below(kExotic.size())];
  }
  return static_cast<float>(least + numbers.Below(span)) / 8;
}

// Plausible modules, then ones with more and more exotic values.
template <const Container& kContainer>
void SumRecordChoice(Numbers& numbers, Checksum& sum) {
  constexpr std::array<uint32_t, 3> kExoticEvery = {0, 9, 3};
  for (uint32_t module = 0; module < 48; ++module) {
    auto block = Noise<uint8_t>(kContainer.length, numbers);
    for (size_t k = 0; k < kContainer.records; ++k) {
      const auto any = [&](uint32_t least, uint32_t span) {
        return OpticalValue(least, span, kExoticEvery[module / 16], numbers);
      };
      // third, divisor, slope, offset, focal length, distance
      const std::array<float, 6> optics = {any(8, 8),      any(8, 8),
                                           any(800, 8000), any(0, 1600),
                                           any(20, 20),    any(400, 20000)};
      std::memcpy(&block[kContainer.first + k * kContainer.stride],
                  optics.data(), sizeof(optics));
    }
    for (int32_t position = -100; position < 1100; position += 25) {
      AddRecord(
          block,
          {.lens_position = position, .forced_index = calib::kByLensPosition},
          sum);
    }
  }
}

void SumForcedRecords(Numbers& numbers, Checksum& sum) {
  for (const size_t length : {464U, 1403U, 2801U, 512U, 1547U, 1488U}) {
    const auto block = Noise<uint8_t>(length, numbers);
    for (uint32_t index = 0; index < 7; ++index) {
      const auto selector = static_cast<int32_t>(index);
      AddRecord(block, {.selector = selector, .forced_index = index}, sum);
    }
  }
}

// One row of the list.
struct Kernel {
  const char* name;
  void (*run)(Numbers&, Checksum&);
};

constexpr auto kKernels = std::to_array<Kernel>({
    {"DecodeCalibration kind 1", SumRecordChoice<kKind1>},
    {"DecodeCalibration kind 1 of six", SumRecordChoice<kKind1Long>},
    {"DecodeCalibration kind 3", SumRecordChoice<kKind3>},
    {"DecodeCalibration forced", SumForcedRecords},
});

// One row of the list for each of `kSizes`.
struct SizedKernel {
  const char* name;
  void (*run)(Size, Numbers&, Checksum&);
};

constexpr auto kSizedKernels = std::to_array<SizedKernel>({
    {"PackWeights", SumPackWeights},
    {"PackDepth", SumPackDepth},
    {"PackFrame", SumPackFrame},
    {"UnpackFrame nv21", SumUnpackFrame<kFormatNv21>},
    {"UnpackFrame planar", SumUnpackFrame<kFormatPlanar>},
    {"UnpackFrame packed", SumUnpackFrame<kFormatPacked>},
    {"UnpackFrame other", SumUnpackFrame<1>},
    {"DrawFocusDot", SumFocusDot},
    {"GetDispRange few holes", SumDispRange<10>},
    {"GetDispRange many holes", SumDispRange<90>},
    {"FillDisparityHoles few", SumFilledHoles<10>},
    {"FillDisparityHoles many", SumFilledHoles<90>},
});

struct Row {
  std::string name, checksum;
};

template <typename Run>
Row MakeRow(const std::string& name, Run run) {
  Numbers numbers;
  Checksum sum;
  run(numbers, sum);
  std::ostringstream text;
  text << std::hex << std::setw(16) << std::setfill('0') << sum.value();
  return {name, text.str()};
}

std::vector<Row> MakeList() {
  std::vector<Row> list;
  list.reserve(kKernels.size() + kSizedKernels.size() * kSizes.size());
  for (const Kernel& kernel : kKernels) {
    list.push_back(MakeRow(kernel.name, kernel.run));
  }
  for (const SizedKernel& kernel : kSizedKernels) {
    for (const Size size : kSizes) {
      std::ostringstream name;
      name << kernel.name << " " << size.width << "x" << size.height;
      const auto run = [&](Numbers& numbers, Checksum& sum) {
        kernel.run(size, numbers, sum);
      };
      list.push_back(MakeRow(name.str(), run));
    }
  }
  return list;
}

TEST(KernelChecksums, EqualTheList) {
  std::map<std::string, std::string> listed;
  std::ifstream file(ZUQEL_CHECKSUM_LIST);
  for (Row row;
       file >> row.checksum && std::getline(file >> std::ws, row.name);) {
    listed[row.name] = row.checksum;
  }
  for (const Row& row : MakeList()) {
    EXPECT_EQ(row.checksum, listed[row.name]) << row.name;
    listed.erase(row.name);
  }
  for (const auto& [name, value] : listed) {
    ADD_FAILURE() << name << " is listed, but there is no such kernel";
  }
}

}  // namespace
}  // namespace zuqel

int main(int argc, char** argv) {
  if (argc == 2 && std::string_view(argv[1]) == "--print") {
    for (const zuqel::Row& row : zuqel::MakeList()) {
      std::cout << row.checksum << "  " << row.name << "\n";
    }
    return 0;
  }
  testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}
