// The command-line program in pipes, and the video that it reads and writes.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <filesystem>
#include <string>
#include <utility>

#include "image_samples.h"
#include "photo/image_file.h"
#include "photo_samples.h"
#include "program_run.h"

namespace zuqel::tools {
namespace {

using testing::HasSubstr;

// Frames of 64 x 48, whose left half is near, and a photo with depth inside.
class Pipes : public CommandLine {
 protected:
  Pipes() {
    DisparityMap near_left(32, 24);
    for (int i = 0; i < 32 * 24; ++i) {
      near_left.At(i % 32, i / 32) = i % 32 < 16 ? 900 : 100;
    }
    WriteDisparity(near_left, File("d.png"));
    near_left.At(20, 20) = 900;
    WriteDisparity(near_left, File("d1"));
    WriteDisparity(near_left, File("d2"));
    WriteGrey(WeightMap(32, 24), File("sharp.png"));
    WriteBytes(File("photo.jpg"),
               JpegWithXmp(Packet(GDepth("RangeInverse", DepthPng(),
                                         Png(NoisePicture(64, 48))))));
    const Picture noise = NoisePicture(64, 48);
    WritePicture(noise, File("in1"));
    WritePicture(noise, File("in2"));
    WriteBytes(File("dump"), {noise.rgb.begin(), noise.rgb.begin() + 3072});
    Video("two.y4m", header_, 2);
    std::filesystem::create_directory(File("box"));
  }

  void Video(const std::string& name, const std::string& header,
             int frames) const {
    std::string file = header;
    for (int i = 0; i < frames; ++i) {
      file.append(i % 2 == 0 ? "FRAME\n" : "FRAME Ip XA=B\n");
      for (int j = 0; j < kFrame; ++j) file += static_cast<char>(j * 7 + i);
    }
    WriteBytes(File(name), {file.begin(), file.end()});
  }

  void ExpectFailing(const Cases& scripts, int exit_code) const {
    ExpectRefused(scripts, exit_code, &Pipes::Shell);
  }

  static constexpr int kFrame = 64 * 48 * 3 / 2;
  const std::string header_ =
      "YUV4MPEG2 W64 H48 F30000:1001 Ip A4:3 C420mpeg2\n";
  // All with the CPU, so that no driver is needed.
  const std::string render_ = "zuqel render --renderer cpu --focus 9,9 ";
  const std::string sequence_ = "zuqel sequence --renderer cpu --focus 9,9 ";
  const std::string video_ = sequence_ + "--disparities d.png --images ";
};

TEST_F(Pipes, AreOnePerDirectionAndNoTerminals) {
  const std::string render = render_ + "--disparity d.png --image in1 -o ";
  ExpectFailing(
      {{render_ + "--image - --disparity - -o o.png <in1",
        "-: is given for two inputs"},
       {sequence_ + "--images - --disparities - -o - <two.y4m",
        "-: is given for two inputs"},
       {render + "- --panel - >/dev/null", "-: is given for two outputs"},
       {"zuqel demo -o -", "--output: takes a folder"},
       {render_ + "- -o box/ <photo.jpg", "--output: the photo has no name"},
       {render_ + "- photo.jpg -o .", "-: is for one photo"},
       {render_ + "in1 photo.jpg -o -", "several photos need a folder"},
       {"zuqel raw --kind luma --size 64x48 - -o o.png <d.png", "-: has "},
       {"zuqel raw --kind luma --size 64x48 - -o dump <dump",
        "dump: is one of the inputs"},
       {video_ + "two.y4m -o - >>two.y4m", "-: is one of the inputs"},
       {"script -qec '" + render +
            "- 2>e' /dev/null; c=$?; cat e >&2; rm e; "
            "exit $c",
        "-: is a terminal"}},
      2);
  ExpectFailing(
      {{render + "- >/dev/full", "-: cannot be written: No space"},
       {video_ + "two.y4m -o - >/dev/full", "-: cannot be written: No space"},
       {render + "- >&-", "-: is closed"}},
      1);
}

TEST_F(Pipes, EndQuietlyWhenNobodyReads) {
  Video("many.y4m", header_, 40);
  const Cases commands = {
      // and who reads what they write
      {"sleep 0.2; zuqel depth photo.jpg -o o.png --picture -", ":"},
      {video_ + "many.y4m -o -", "head -c 100 >/dev/null"},
  };
  for (const char* const ignore : {"", "trap '' PIPE; "}) {
    for (const auto& [command, reader] : commands) {
      const Outcome outcome = Shell(Concat(
          {"ls -A >box/before; (", ignore, command, "; echo code $? >&2) | ",
           reader, "; ls -A | cmp - box/before"}));
      EXPECT_EQ(outcome.err, "code 141\n") << ignore << command;
    }
  }
}

// The second frame is written after the first result has been read.
TEST_F(Pipes, PassOnEachFrameAtOnce) {
  const std::string head = std::to_string(header_.size() + 6 + kFrame);
  const Outcome outcome =
      Shell("mkfifo to from; timeout 60 " + video_ +
            "- -o - <to >from & exec 3>to 4<from; head -c " + head +
            " two.y4m >&3; timeout 20 head -c " + head +
            " <&4 | wc -c; tail -c +" + std::to_string(std::stoi(head) + 1) +
            " two.y4m >&3; exec 3>&-; cat <&4 | wc -c; wait $!; echo $?");
  EXPECT_EQ(outcome.out, head + "\n" + std::to_string(6 + kFrame) + "\n0\n")
      << outcome.err;
}

TEST_F(Pipes, RefuseBrokenVideo) {
  struct Case {
    std::string header, message;
    int frames = 1;
    int cut = 0;  // bytes at the end
  };
  const std::string whole = "YUV4MPEG2 W64 H48 C420\n";
  Cases cases = {
      {video_ + "in1 -o o.y4m", "in1: is not a y4m video"},
      {video_ + "/dev/null -o o.y4m", "/dev/null: is not a y4m video"},
      {video_ + "two.y4m --count 3 -o o%d",
       "two.y4m: has 2 frames; --count is 3"},
      {video_ + "two.y4m --focus-to 1,1 -o o%d", "--focus-to needs --count"}};
  for (const auto& [header, message, frames, cut] : {
           Case{"YUV4MPEG W64 H48\n", "is not a y4m video"},
           Case{"YUV4MPEG2 C420\n", "is damaged: its header has no size"},
           Case{"YUV4MPEG2 W64 H4_\n", "is damaged: its size is"},
           Case{"YUV4MPEG2 W-64 H48\n", "is damaged: its size is"},
           Case{"YUV4MPEG2 W64 H9999999999\n", "is damaged: its size is"},
           Case{"YUV4MPEG2 W64\n", "is 64 x 0 pixels; "},
           Case{"YUV4MPEG2 W65536 H65536\n",
                "is 65536 x 65536 pixels; at most"},
           Case{"YUV4MPEG2 W63 H48\n", "is 63 x 48 pixels; an even"},
           Case{"YUV4MPEG2 W64 H47\n", "is 64 x 47 pixels; an even"},
           Case{"YUV4MPEG2 W64 H48 C420p10\n", "is C420p10; 8-bit 4:2:0"},
           Case{"YUV4MPEG2 W64 H48 C444\n", "is C444; 8-bit 4:2:0"},
           Case{"YUV4MPEG2 W64 H48 C\x1b[2J\n", "is of another kind; "},
           Case{"YUV4MPEG2 W64 H48 It\n", "is interlaced; "},
           Case{"YUV4MPEG2 W64 H48 F25\n", "is damaged: a ratio"},
           Case{"YUV4MPEG2 W64 H48 F25:0\n", "is damaged: a ratio"},
           Case{"YUV4MPEG2 W64 H48 X" + std::string(2000, 'x') + "\n",
                "is damaged: a line of it is too long"},
           Case{whole, "has no frames", 0},
           Case{whole, "is truncated: frame 2 is not whole", 2, 1},
           Case{whole, "is truncated: frame 1 is not whole", 1, kFrame},
           Case{whole + "F", "is damaged after 0 frames"},
           Case{whole + "FRAME " + std::string(2000, 'x'),
                "is damaged: a line of it is too long"},
       }) {
    const std::string name = std::to_string(cases.size()) + ".y4m";
    Video(name, header, frames);
    Bytes bytes = ReadBytes(File(name));
    bytes.resize(bytes.size() - static_cast<size_t>(cut));
    WriteBytes(File(name), bytes);
    cases.emplace_back(Concat({video_, name, " -o o.y4m"}),
                       Concat({name, ": ", message}));
  }
  ExpectFailing(cases, 2);
}

// Limited range, as ffmpeg and most others write it.
TEST_F(Pipes, ShowTheColoursOfAVideo) {
  const Outcome outcome = Shell(
      "ffmpeg -v error -f lavfi -i color=c=0x4080C0:s=64x48 -frames:v 2 "
      "-pix_fmt yuv420p -f yuv4mpegpipe - | " +
      video_ + "- -o o%d");
  EXPECT_EQ(outcome.out, "wrote o0 (64x48)\nwrote o1 (64x48)\n");
  const Picture picture = ReadPicture(File("o1"));
  for (size_t i = 0; i < picture.rgb.size(); ++i) {
    ASSERT_NEAR(picture.rgb[i], (std::array{0x40, 0x80, 0xc0}.at(i % 3)), 3);
  }
}

class PipesWithGl : public Pipes {
 protected:
  void SetUp() override {
    const std::string words =
        Run("render in1 --weights sharp.png --focus 9,9 -o o.png", kGl).err;
    if (words.find("no OpenGL ES") != std::string::npos) GTEST_SKIP() << words;
  }
};

TEST_F(PipesWithGl, CarryTheBytesOfFilesAndNothingElse) {
  struct Case {
    std::string command, input, output = "o.png";
  };
  for (const auto& [command, input, output] : {
           Case{render_ + "--disparity d.png --image ", "in1"},
           Case{render_ + "--image in1 --disparity ", "d.png"},
           Case{render_ + "--stretch ", "photo.jpg"},
           Case{"zuqel depth ", "photo.jpg"},
           Case{"zuqel refocus-map --focus 9,9 --disparity d.png --generator "
                "disparity-base-cpu --image ",
                "in1"},
           Case{"zuqel raw --kind luma --size 64x48 ", "dump"},
           Case{video_, "two.y4m", "o.y4m"},
           Case{sequence_ + "--images two.y4m --disparities ", "d.png",
                "o.y4m"},
       }) {
    const Outcome outcome = Shell(
        Concat({command, input, " -o ", output, " >printed && cat ", input,
                " | ", command, "- -o - --verbose | cat >piped; cmp piped ",
                output, " && cat printed && rm printed piped ", output}),
        kGl);
    EXPECT_THAT(outcome.out, HasSubstr("wrote " + output)) << outcome.err;
  }
}

// Where nothing is blurred, frames are what they were, and so is all that the
// header says.
TEST_F(PipesWithGl, KeepVideoThatStaysSharp) {
  const Outcome outcome = Shell(
      "set -e; v='ffmpeg -v error'\n"
      "for f in yuv420p yuvj420p; do\n"
      "$v -f lavfi -i testsrc=s=64x48:r=30000/1001,setsar=4/3 -frames:v 5 "
      "-pix_fmt $f -y in.y4m\n"
      "zuqel sequence --images in.y4m --weights sharp.png --focus 9,9 -o - | "
      "tee out.y4m | $v -i - -f framemd5 - >out\n"
      "$v -i in.y4m -f framemd5 - | cmp - out; grep -vc '^#' out\n"
      "zuqel sequence --images in.y4m --weights sharp.png --focus 9,9 "
      "-o file.y4m; cmp file.y4m out.y4m\n"
      "zuqel sequence --images - --count 2 --weights sharp.png --focus 9,9 "
      "--fps 9 -o - <in.y4m | $v -i - -f framemd5 - | grep -c '1/9$'\n"
      "done",
      kGl);
  const std::string each = "5\nwrote file.y4m (64x48, 5 frames)\n1\n";
  EXPECT_EQ(outcome.out, each + each) << outcome.err;
}

// Each frame of a session is the picture that render makes.
TEST_F(PipesWithGl, SequenceHasWhatRenderHas) {
  const Cases options = {
      // of the sequence, and of the second picture
      {"--disparities d%d", "--disparity d2"},
      {"--disparities d%d --f-number 4", "--disparity d2 --f-number 4"},
      {"--disparities d.png --map-from gpu",
       "--disparity d.png --map-from gpu"},
      {"--disparities d%d --map-from distance",
       "--disparity d2 --map-from distance"},
      {"--weights sharp.png", "--weights sharp.png"},
  };
  for (const auto& [series, single] : options) {
    const Outcome outcome = Shell(
        Concat({"zuqel sequence --images in%d --first 1 --count 2 --focus 9,9 ",
                series, " -o o%d && zuqel render in2 --focus 9,9 ", single,
                " -o o.png && cmp o2 o.png"}),
        kGl);
    EXPECT_EQ(outcome.exit_code, 0) << series << outcome.err;
  }
  ExpectRefused({{"sequence --demo --renderer cpu --map-from gpu -o o.y4m",
                  "--map-from: does not work with --renderer cpu"},
                 {"sequence --images in%d --weights sharp.png --disparities "
                  "d%d --count 1 --focus 9,9 -o o.y4m",
                  "--disparities"},
                 {"sequence --images two.y4m --focus 9,9 -o o.y4m",
                  "--images needs --disparities or --weights"}});
}

}  // namespace
}  // namespace zuqel::tools
