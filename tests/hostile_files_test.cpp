// The command-line program among files that others have made: links, pipes and
// devices in the place of files, endless input, full and read-only disks.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/types.h>

#include <cstdint>
#include <cstring>
#include <filesystem>
#include <string>
#include <vector>

#include "files/pending_file.h"
#include "image_samples.h"
#include "program_run.h"
#include "random.h"

// Random numbers that a neighbour has guessed: 0, 1, 2 and so on in each byte.
extern "C" ssize_t getrandom(void* buffer, size_t size, unsigned /*flags*/) {
  static uint8_t next = 0;
  std::memset(buffer, next++, size);
  return static_cast<ssize_t>(size);
}

namespace zuqel::tools {
namespace {

namespace fs = std::filesystem;
using testing::EndsWith;

TEST(PendingFile, TakesNoNameThatExists) {
  const TemporaryFolder folder;
  WriteBytes(folder / "victim", {'k', 'e', 'p', 't'});
  const std::string name = ".zuqel-";
  fs::create_symlink("victim", folder / (name + "0000000000000000"));
  fs::create_symlink("new", folder / (name + "0101010101010101"));
  fs::create_hard_link(folder / "victim", folder / (name + "0202020202020202"));
  PendingFile file(folder / "o");
  file.Write("whole");
  file.Close();
  file.Commit();
  EXPECT_EQ(ReadText(folder / "o"), "whole");
  EXPECT_EQ(ReadText(folder / "victim"), "kept");
  EXPECT_FALSE(fs::exists(folder / "new"));
}

// Commands up to their output, with inputs that exist, and then the output. A
// name ends with 1, .png or .y4m.
class HostileFiles : public CommandLine {
 protected:
  HostileFiles() {
    WritePicture(NoisePicture(128, 96), File("in1"));
    fs::copy_file(File("in1"), File("in2"));
    WriteDisparity(DisparityMap(32, 24), File("d1"));
    fs::copy_file(File("d1"), File("d2"));
    WriteBytes(File("dump.raw"), Random(1).Values<uint8_t>(4096));
    WriteBytes(File("plain.bin"), Bytes(464));
    WriteBytes(File("key.bin"), Bytes(32));
    WriteBytes(File("victim"), {'k', 'e', 'p', 't'});
    fs::create_directory(File("box"));
  }

  void ExpectFailing(const Cases& scripts, int exit_code) const {
    ExpectRefused(scripts, exit_code, &HostileFiles::Shell);
  }

  using Bytes = std::vector<uint8_t>;
  const std::string raw_ = "zuqel raw dump.raw --kind luma --size 64x64 -o ";
  const std::string seal_ =
      "zuqel calibration seal plain.bin --key key.bin -o ";
  const std::string render_ =
      "zuqel render --renderer cpu --image in1 --disparity d1 --focus 9,9 -o ";
  const std::string frames_ =
      "zuqel sequence --renderer cpu --images in%d --disparities d%d "
      "--focus 9,9 --first 1 ";
  const std::string series_ = frames_ + "--count 2 -o ";
};

// Found before any work: the inputs do not even exist.
TEST_F(HostileFiles, RefusesPlacesThatNoFileCanHave) {
  const std::string render =
      "zuqel render --image none --disparity none --focus 9,9 -o ";
  const std::string refocus =
      "zuqel refocus-map --disparity none --focus 9,9 --generator gpu -o ";
  const Cases outputs = {
      {render, ".png"},
      {render + "o.png --panel ", ".png"},
      {render + "o.png --compare ", ".png"},
      {refocus, "1"},
      {refocus + "o --panel ", ".png"},
      {"zuqel sequence --images none%d --disparities none%d --first 1 --count "
       "2 --focus 9,9 -o ",
       "%d"},
      {"zuqel sequence --demo -o ", ".y4m"},
      {"zuqel raw GLRM_2x2_v0.raw -o ", "1"},
      {"zuqel calibration seal none --key none -o ", "1"},
  };
  struct Place {
    const char *make, *refusal;
  };
  for (const auto& [make, refusal] : {
           Place{"mkfifo", ": is not a regular file\n"},
           Place{"mkdir", ": is a folder\n"},
           Place{"ln -s /dev/full", ": is not a regular file\n"},
           Place{"ln -s box", ": is a folder\n"},
       }) {
    const std::string script =
        Concat({"set -e; for p in p1 p.png p.y4m; do ", make, " $p; done"});
    ASSERT_EQ(Shell(script).exit_code, 0);
    Cases cases;
    for (const auto& [command, end] : outputs) {
      cases.emplace_back(Concat({"timeout 20 ", command, "p", end}), refusal);
    }
    ExpectFailing(cases, 1);
    ASSERT_EQ(Shell("rm -r p1 p.png p.y4m").exit_code, 0);
  }
  ExpectFailing({{raw_ + "/dev/full", "/dev/full: is not a regular file"},
                 {raw_ + "none/o", "none/o: the folder none does not exist"},
                 {raw_ + "$(printf %0300d)", "cannot be written: File name"},
                 {"zuqel demo -o in1", "in1: the folder cannot be created"},
                 {"zuqel demo -o none/o", "none/o: the folder cannot be"}},
                1);
  ExpectFailing({{raw_ + "''", "the name of an output is empty"}}, 2);
}

TEST_F(HostileFiles, LeavesNothingOnADiskThatItCannotFill) {
  struct Disk {
    std::string options, reason;
    std::vector<std::string> commands;
  };
  // Has no input to work on.
  const std::string idle = "zuqel raw GLRM_2x2_v0.raw -o ";
  const std::string full = "size=4k none box && head -c4096 in1 >box/full",
                    space = "cannot be written: No space left on device";
  const std::vector<Disk> disks = {
      {full,
       space,
       {raw_ + "box/o", seal_ + "box/o", render_ + "box/o.png",
        series_ + "box/%d", series_ + "box/o.y4m"}},
      // Enough for one picture, and for part of a frame.
      {"size=16k none box", space, {series_ + "box/o.y4m", series_ + "box/%d"}},
      {"nr_inodes=1 none box", space, {idle + "box/o"}},
      {"ro none box",
       "Read-only file system",
       {idle + "box/o", "zuqel demo -o box/o"}},
  };
  const std::string mount = "mount -t tmpfs -o ";
  const Outcome attempt = Shell("unshare -rm " + mount + "size=4k none box");
  if (attempt.exit_code != 0) GTEST_SKIP() << attempt.err;
  Cases cases;
  for (const auto& [options, reason, commands] : disks) {
    for (const std::string& command : commands) {
      cases.emplace_back(
          Concat({"unshare -rm sh -c '", mount, options, " && {\n", command,
                  "; code=$?; rm -f box/full; ls -A box\n", "exit $code; }'"}),
          reason);
    }
  }
  ExpectFailing(cases, 1);
  ExpectFailing({{"ulimit -f 1; " + render_ + "box/o.png", "File too large"}},
                1);
}

// What a script prints.
TEST_F(HostileFiles, ReplacesLinksAndKeepsPermissions) {
  const std::string show = "; test -L o || cat victim; ls -A box; rm -f o";
  const std::string mode = "; stat -c %a o; rm o";
  const Cases cases = {
      {"ln -s victim o; " + raw_ + "o" + show, "kept"},
      {"ln -s box/new o; " + seal_ + "o" + show, "kept"},
      {"ln victim o; " + raw_ + "o" + show, "kept"},
      {"ln -s victim o.y4m; " + series_ + "o.y4m; test -L o.y4m || cat victim",
       "kept"},
      {"mv key.bin key; ln -s key key.bin; " + seal_ + "o; rm o",
       "wrote o (496 bytes)\n"},
      {"umask 027; " + raw_ + "o >&2" + mode, "640\n"},
      {"umask 0; " + raw_ + "o >&2" + mode, "666\n"},
      {"touch o; chmod 4604 o; " + raw_ + "o >&2" + mode, "604\n"},
      {"touch o; chmod 444 o; umask 077; " + seal_ + "o >&2" + mode, "444\n"},
      // No file takes the place of a standard stream that is closed.
      {raw_ + "o >&- && echo done; rm o", "done\n"},
  };
  for (const auto& [script, end] : cases) {
    const Outcome outcome = Shell(script);
    EXPECT_THAT(outcome.out, EndsWith(end)) << script << outcome.err;
  }
}

TEST_F(HostileFiles, LeavesNothingWhenASignalEndsIt) {
  // The third frame never comes.
  ASSERT_EQ(Shell("mkfifo in3").exit_code, 0);
  for (const std::string target : {"box/o.y4m", "box/%d"}) {
    for (const std::string signal : {"HUP", "PIPE", "TERM", "XCPU"}) {
      const Outcome outcome =
          Shell(Concat({frames_, "--count 3 -o ", target,
                        " & until test \"$(ls -A box)\"; do sleep 0.01; done\n",
                        "sleep 0.1; kill -", signal,
                        " $!; wait $!; kill -l $?; ls -A box"}));
      EXPECT_EQ(outcome.out, signal + "\n") << target << outcome.err;
    }
  }
}

TEST_F(HostileFiles, ReadsWithinBounds) {
  const std::string raw = "zuqel raw -o o --kind luma --size 64x64 ",
                    seal = "zuqel calibration seal -o o ",
                    large = ": is larger than 512 MiB\n",
                    end = "; code=$?; rm -f f; exit $code";
  const Cases cases = {
      {"mkfifo f; cat /dev/zero >f & " + raw + "f" + end, "f" + large},
      {"truncate -s 536870913 f; " + raw + "f" + end, "f" + large},
      {raw + "box", "box: is a folder\n"},
      {raw + "/proc/self/mem", "/proc/self/mem: cannot be read: "},
      {seal + "plain.bin --key /dev/zero", "/dev/zero: is larger than 4 KiB\n"},
      {seal + "plain.bin --key dump.raw", "dump.raw: is not a key; "},
      {seal + "plain.bin --key box", "box: is a folder\n"},
  };
  ExpectFailing(cases, 2);
  ExpectFailing({{"zuqel calibration inspect plain.bin >/dev/full",
                  "standard output cannot be written: No space left"}},
                1);
}

}  // namespace
}  // namespace zuqel::tools
