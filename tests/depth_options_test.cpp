// Depth maps on the command line: what every kind of file becomes, and which
// are refused.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "image_samples.h"
#include "program_run.h"

namespace zuqel::tools {
namespace {

// The left half of the scene is near, in every map.
class DepthOptionsTest : public CommandLine {
 protected:
  DepthOptionsTest() {
    DisparityMap chip(80, 60), wide = chip, far = chip;
    Picture bytes(80, 60);
    std::string pfm = "Pf 80 60 -1 ";
    for (int i = 0; i < 80 * 60; ++i) {
      const int x = i % 80, y = i / 80;
      const bool is_near = x < 40;
      chip.At(x, y) = is_near ? 900 : 100;
      wide.At(x, y) = is_near ? 9000 : 1000;
      far.At(x, y) = is_near ? 250 : 4000;
      std::fill_n(bytes.Pixel(x, y), 3, is_near ? 0 : 200);
      pfm += {0, 0, is_near ? '\x80' : '\0', 0x3f};  // 1 and 0.5
    }
    WriteDisparity(chip, File("chip.png"));
    WriteDisparity(wide, File("wide.png"));
    WriteDisparity(far, File("far.png"));
    WriteBytes(File("bytes.jpg"), Jpeg(bytes));
    WriteBytes(File("d.pfm"), {pfm.begin(), pfm.end()});
    WriteDisparity(DisparityMap(81, 60), File("81x60.png"));
    WriteDisparity(DisparityMap(81, 59), File("81x59.png"));
    WritePicture(NoisePicture(320, 240), File("photo.png"));
  }

  const std::string render_ =
      "render --renderer cpu --image photo.png --focus 20,100 -o ";
};

TEST_F(DepthOptionsTest, EveryKindOfMapMakesTheSamePicture) {
  const std::string span = " scaled to 1..1000\n";
  EXPECT_EQ(Run(render_ + "o.png --disparity chip.png --scale auto").err,
            "chip.png: 16-bit disparity, 1023 unknown, 100..900" + span);
  for (const auto& [arguments, note] : Cases{
           {"--disparity wide.png", "wide.png: 16-bit disparity, 1000..9000"},
           {"--distance far.png",
            "far.png: 16-bit depth, 0 unknown, inverse of 250..4000"},
           {"--depth bytes.jpg", ""},
           {"--depth bytes.jpg --near 1 --far 2", ""},
           {"--disparity bytes.jpg --invert", ""},
           {"--disparity d.pfm --unknown -1", ""},
           {"--disparity d.pfm --verbose", "d.pfm: PFM disparity, 0.5..1"},
       }) {
    const Outcome outcome = Run(render_ + "p.png " + arguments);
    EXPECT_THAT(outcome.err,
                testing::HasSubstr(note.empty() ? note : note + span));
    EXPECT_EQ(outcome.err.empty(), note.empty()) << arguments << outcome.err;
    EXPECT_EQ(ReadBytes(File("o.png")), ReadBytes(File("p.png"))) << arguments;
  }
  for (const char* other : {"81x60.png", "81x59.png --stretch", "chip.png"}) {
    EXPECT_EQ(Run(render_ + "p.png --disparity " + other).err, "");
  }
}

TEST_F(DepthOptionsTest, RefusesContradictionsAndMapsOfAnotherView) {
  const std::string render = render_ + "kept.png",
                    weights =
                        "render photo.png --focus 20,100 -o kept.png "
                        "--weights chip.png";
  ExpectRefused({
      {render,
       "photo.png: has no depth inside; zuqel render takes depth by "
       "--disparity, --depth or --weights"},
      {weights + " --disparity chip.png",
       "give one of --disparity, --depth and --weights"},
      {render + " --disparity chip.png --depth chip.png",
       "give one of --disparity and --depth"},
      {render + " --unknown 0", "--unknown: needs --disparity or --depth"},
      {weights + " --scale auto", "--scale: needs --disparity or --depth"},
      {render + " --disparity chip.png --scale 0",
       "--scale: 0 is not none, auto or above 0"},
      {render + " --depth bytes.jpg --near 2", "--near requires --far"},
      {render + " --depth bytes.jpg --near 2 --far 2",
       "--near: is not above 0"},
      {render + " --depth far.png --near 1 --far 2", "far.png: holds lengths"},
      {render + " --depth far.png --scale none",
       "far.png: all of it becomes a disparity of 0: 16-bit depth"},
      {render + " --disparity photo.png", "photo.png: is in colour"},
      {render + " --disparity 81x59.png",
       "81x59.png: is 81x59, the picture 320x240; if both show the same view"},
      {"refocus-map --generator gpu --image photo.png --focus 9,9 -o kept.png "
       "--depth 81x59.png --scale 9 --stretch",
       "81x59.png: nothing in it is known"},
  });
}

}  // namespace
}  // namespace zuqel::tools
