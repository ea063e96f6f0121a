// Refocus maps from the command line, and pictures rendered from them.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "image_samples.h"
#include "photo/image_file.h"
#include "program_run.h"
#include "rendering/refocus_map.h"

namespace zuqel::tools {
namespace {

class RefocusMapCommand : public CommandLine {
 protected:
  // The left half is near, the right half far; each has a hole.
  void SetUp() override {
    WritePicture(photo_, File("photo.png"));
    DisparityMap disparity(80, 60);
    for (int i = 0; i < 80 * 60; ++i) {
      const bool hole = i % 40 == 9 && i / 80 == 9;
      disparity.At(i % 80, i / 80) = hole ? 1023 : i % 80 < 40 ? 900 : 99;
    }
    WriteDisparity(disparity, File("d.png"));
    const std::string words = Make("gpu --disparity d.png --focus 1,1").err;
    if (words.find("no OpenGL ES") != std::string::npos) GTEST_SKIP() << words;
  }

  [[nodiscard]] Outcome Make(const std::string& arguments) const {
    return Run("refocus-map -o map.png --generator " + arguments, kGl);
  }

  const Picture photo_ = NoisePicture(320, 240);
};

TEST_F(RefocusMapCommand, IsSharpAtTheFocusAndPrintsItsOwnLinesOnly) {
  struct Case {
    std::string arguments;
    const char* log;  // a line that the library prints or logs
    bool near;
    const char* size = "80x60";
  };
  const std::string disparity = " --disparity d.png --focus ";
  const std::string cpu = "disparity-base-cpu" + disparity;
  // The step is at column 40 of the maps, 160 of the picture.
  std::vector<Case> cases = {
      {"gpu" + disparity + "39,9", "RefocusMap -\n", true},
      {"gpu" + disparity + "40,9", "RefocusMap -\n", false},
      {"gpu --size 160x30" + disparity + "9,9", "", true, "160x30"},
      {"disparity-base" + disparity + "39,9", "DispartyBase take", true},
      {cpu + "39,9", "\nFocus at FG!\n", true},
      {cpu + "159,36 --image photo.png", "\nFocus at FG!\n", true},
      {cpu + "160,36 --image photo.png", "Focus at BG!\n", false},
      {"distance" + disparity + "39,9", "\nExtremeMinDist=291\n", true},
      {"distance --distance d.png --focus 40,9", "\nExtremeMinDist=99\n",
       false},
  };
  for (const Generator& generator : Generators()) {
    cases.push_back({generator.name + disparity + "20,20", "", true});
  }
  for (const auto& [arguments, log, near, size] : cases) {
    SCOPED_TRACE(arguments);
    std::string own = std::string("wrote map.png (") + size + ")\n";
    if (!GeneratorNamed(arguments.substr(0, arguments.find(' ')))
             ->takes_distance) {
      own += "disparity: minimum 99, maximum 900, focus ";
      own += near ? "900\n" : "99\n";
    }
    const Outcome quiet = Make(arguments);
    EXPECT_EQ(quiet.out + quiet.err, own);
    const Outcome verbose = Make(arguments + " --verbose");
    EXPECT_EQ(verbose.out, own);
    EXPECT_THAT(verbose.err, testing::HasSubstr(log));
    const WeightMap map = ReadWeights(File("map.png"));
    EXPECT_EQ(map.At(map.width / 4, 9), near ? 0 : 255);
    EXPECT_EQ(map.At(3 * map.width / 4, 9), near ? 255 : 0);
  }
}

TEST_F(RefocusMapCommand, TakesLengthsForEachGenerator) {
  // As lengths, the left half of 900 is far.
  for (const Generator& generator : Generators()) {
    const Outcome outcome =
        Make(generator.name +
             std::string(" --focus 60,20 --depth d.png --scale 9e4"));
    EXPECT_THAT(outcome.err, testing::StartsWith("d.png: 16-bit depth"));
    const WeightMap map = ReadWeights(File("map.png"));
    EXPECT_EQ(map.At(map.width / 4, 9), 255) << generator.name;
    EXPECT_EQ(map.At(3 * map.width / 4, 9), 0) << generator.name;
  }
}

TEST_F(RefocusMapCommand, RenderTakesAMapOfEachGenerator) {
  const std::string image = "--image photo.png --focus 90,70";
  const std::string one = "render -o 1.png --panel p1.png --map-from ";
  const std::string two = "render -o 2.png --panel p2.png --weights map.png ";
  for (const Generator& generator : Generators()) {
    for (const std::string map : {" --depth d.png ", " --disparity d.png "}) {
      const std::string from = generator.name + (map + image);
      SCOPED_TRACE(from);
      // Of what was assumed, both tell the same.
      EXPECT_EQ(Make(from + " --panel m.png").err, Run(one + from, kGl).err);
      EXPECT_EQ(Run(two + image, kGl).err, "");
      EXPECT_EQ(ReadBytes(File("1.png")), ReadBytes(File("2.png")));
      EXPECT_EQ(ReadBytes(File("p1.png")), ReadBytes(File("p2.png")));
    }
    // What is sharp keeps its colours in the panel's last tile.
    const Picture panel = ReadPicture(File("m.png"));
    EXPECT_TRUE(std::equal(photo_.Pixel(40, 9), photo_.Pixel(120, 9),
                           panel.Pixel(656 + 40, 9)))
        << generator.name;
  }
}

}  // namespace
}  // namespace zuqel::tools
