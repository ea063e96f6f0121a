// Photos on the command line: depth from inside, any size, many at once.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <string>

#include "image_samples.h"
#include "photo/auto_focus.h"
#include "photo/image_file.h"
#include "photo_samples.h"
#include "program_run.h"

namespace zuqel::tools {
namespace {

using testing::HasSubstr;

// The photo shows another picture than the one from before the blur.
class PhotoCommands : public CommandLine {
 protected:
  PhotoCommands() {
    Map<uint8_t> depth(32, 24);
    for (int i = 0; i < 32 * 24; ++i) {
      depth.At(i % 32, i / 32) = static_cast<uint8_t>(i % 32 < 16 ? 0 : 250);
    }
    depth.At(0, 0) = 20;
    const Bytes original = Png(NoisePicture(63, 47));
    WriteBytes(
        File("photo.jpg"),
        JpegWithXmp(Packet(GDepth("RangeInverse", Png(depth), original))));
    WritePicture(NoisePicture(64, 48), File("flat.PNG"));
    WriteBytes(File("broken.jpg"), {0xff, 0xd8, 0xff});
  }

  [[nodiscard]] bool Exists(const std::string& name) const {
    return std::filesystem::exists(File(name));
  }
};

TEST_F(PhotoCommands, DepthInsideMakesThePictureThatItMakesOutside) {
  const Outcome depth = Run("depth photo.jpg -o map.png --picture picture.png");
  EXPECT_EQ(depth.exit_code, 0) << depth.err;
  EXPECT_THAT(depth.out,
              HasSubstr("picture: 63x47, from before the phone blurred it\n"
                        "depth: GDepth, RangeInverse, 32x24, disparity, larger "
                        "is nearer\nrange: 0.284314 to 2 1/m\nknown: 100.0 %"));
  EXPECT_EQ(ReadPicture(File("picture.png")).rgb, NoisePicture(63, 47).rgb);
  EXPECT_EQ(ReadDisparity(File("map.png")).At(1, 0), 1000);

  const std::string to = " --renderer cpu --focus 9,9 -o ";
  EXPECT_EQ(Run("render photo.jpg" + to + "inside.png").err, "");
  EXPECT_EQ(Run("render picture.png --disparity map.png" + to + "out.png").err,
            "");
  const Picture inside = ReadPicture(File("inside.png"));
  EXPECT_EQ(SizeOf(inside), (Size{63, 47}));
  EXPECT_EQ(inside.rgb, ReadPicture(File("out.png")).rgb);
  EXPECT_NE(inside.rgb, NoisePicture(63, 47).rgb);

  const std::string refocus =
      "refocus-map --generator disparity-base-cpu --focus 9,9 -o ";
  EXPECT_EQ(Run(refocus + "r1.png --image photo.jpg", kGl).err, "");
  EXPECT_EQ(
      Run(refocus + "r2.png --image picture.png --disparity map.png", kGl).err,
      "");
  EXPECT_EQ(ReadBytes(File("r1.png")), ReadBytes(File("r2.png")));
}

// What is past the edge of an odd picture repeats it, and is cut off again.
TEST_F(PhotoCommands, OddPicturesAreRenderedWhole) {
  Picture odd(63, 47), even(64, 48);
  for (int y = 0; y < 48; ++y) {
    for (int x = 0; x < 64; ++x) {
      const auto value = static_cast<uint8_t>(3 * std::min(x, 62) + y / 47);
      std::fill_n(even.Pixel(x, y), 3, value);
      if (x < 63 && y < 47) std::fill_n(odd.Pixel(x, y), 3, value);
    }
  }
  std::copy_n(even.Pixel(0, 46), 3 * 64, even.Pixel(0, 47));
  WritePicture(odd, File("odd.png"));
  WritePicture(even, File("even.png"));
  WriteDisparity(DisparityMap(64, 48), File("d.png"));
  const std::string rest =
      " --disparity d.png --renderer cpu --focus 9,9 -o out_";
  EXPECT_EQ(Run("render odd.png" + rest + "odd.png").exit_code, 0);
  EXPECT_EQ(Run("render even.png" + rest + "even.png").exit_code, 0);
  const Picture out = ReadPicture(File("out_odd.png")),
                whole = ReadPicture(File("out_even.png"));
  ASSERT_EQ(SizeOf(out), SizeOf(odd));
  for (int y = 0; y < 47; ++y) {
    ASSERT_TRUE(
        std::equal(out.Pixel(0, y), out.Pixel(62, y) + 3, whole.Pixel(0, y)))
        << "row " << y;
  }
}

TEST_F(PhotoCommands, SeveralAtOnceDoNotStopEachOther) {
  const std::string to = " --renderer cpu --focus auto --jobs 2 -o many/";
  const Outcome some = Run("render broken.jpg photo.jpg flat.PNG" + to);
  EXPECT_EQ(some.exit_code, 1);
  EXPECT_THAT(some.out, HasSubstr("wrote many/photo.jpg (63x47)\n"));
  EXPECT_THAT(some.err, HasSubstr("zuqel: broken.jpg: is truncated\n"));
  EXPECT_THAT(some.err, HasSubstr("zuqel: flat.PNG: has no depth inside; "));
  EXPECT_THAT(some.err, HasSubstr("zuqel: 2 of 3 photos failed\n"));
  EXPECT_TRUE(Exists("many/photo.jpg"));
  EXPECT_FALSE(Exists("many/broken.jpg") || Exists("many/flat.png"));

  const Outcome all = Run("render photo.jpg" + to);
  EXPECT_EQ(all.exit_code, 0) << all.err;
  ExpectRefused({
      {"render photo.jpg ./photo.jpg" + to, "is given for two outputs"},
      {"render photo.jpg flat.PNG --focus 1,1 -o one.jpg",
       "--output: several photos need a folder, as in one.jpg/"},
      {"render photo.jpg flat.PNG --disparity d.png" + to,
       "--disparity: is for one photo"},
      {"depth flat.PNG",
       "flat.PNG: has no depth inside; zuqel render takes "
       "depth by --disparity, --depth or --weights"},
      {"depth photo.jpg -o map.gif", "--output: map.gif: has to end in "},
      {"depth photo.jpg -o map.jpg", "--output: map.jpg: has to end in .png"},
      {"refocus-map --focus 1,1 --generator gpu -o map.png",
       "give --disparity, --depth or an --image with depth"},
  });
  EXPECT_FALSE(Exists("none"));
}

TEST(AutoFocus, FindsTheMiddleOfTheNearestLargeSurface) {
  constexpr Size kPicture = {640, 480};
  DisparityMap map(160, 120);
  std::fill(map.values.begin(), map.values.end(), uint16_t{100});
  const auto fill = [&](FocusPoint from, Size size, uint16_t value) {
    for (int y = from.y; y < from.y + size.height; ++y) {
      std::fill_n(&map.At(from.x, y), size.width, value);
    }
  };
  const auto expect = [&](FocusPoint at, int slack, const char* what) {
    const auto found = FindNearestSurface(map, kPicture);
    ASSERT_TRUE(found.has_value()) << what;
    EXPECT_NEAR(found->x, at.x, slack) << what;
    EXPECT_NEAR(found->y, at.y, slack) << what;
  };
  expect({320, 240}, 8, "all of it");
  fill({100, 40}, {40, 40}, 500);
  expect({480, 240}, 8, "a square");
  fill({0, 0}, {12, 12}, 900);
  expect({480, 240}, 8, "with a speck before it");
  fill({20, 100}, {60, 20}, 1000);
  fill({50, 110}, {1, 10}, kUnknownDisparity);
  expect({140, 440}, 40, "with a strip before it, and a crack");
  fill({0, 0}, {160, 120}, kUnknownDisparity);
  EXPECT_FALSE(FindNearestSurface(map, kPicture).has_value());
}

}  // namespace
}  // namespace zuqel::tools
