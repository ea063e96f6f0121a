// Seals and inspects calibration containers at the command line.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <string>
#include <vector>

#include "image_samples.h"
#include "program_run.h"

namespace zuqel::tools {
namespace {

using Bytes = std::vector<uint8_t>;
using testing::HasSubstr;
using testing::IsEmpty;

// A plain container and its encrypted one; records (for kind 4, halves) begin
// at first + k * stride, and their values lie `values` behind.
struct Form {
  size_t plain, sealed;
  int kind;
  size_t records, first, stride, values;
};
constexpr auto kForms = std::to_array<Form>({
    {464, 496, 1, 1, 0, 0, 320},
    {466, 496, 1, 1, 0, 0, 320},
    {1403, 1499, 1, 3, 7, 466, 320},
    {2801, 2993, 1, 6, 7, 466, 320},
    {512, 544, 3, 1, 0, 0, 340},
    {514, 544, 3, 1, 0, 0, 340},
    {1547, 1643, 3, 3, 7, 514, 340},
    {1488, 2080, 4, 2, 0, 732, 340},
});

template <typename T>
void Put(Bytes& bytes, size_t place, T value) {
  std::memcpy(bytes.data() + place, &value, sizeof(value));
}

// Record k has the focal length 2.5 + k.
Bytes MakeContainer(const Form& form) {
  Bytes bytes(form.plain);
  for (size_t i = 0; i < bytes.size(); ++i) {
    bytes[i] = static_cast<uint8_t>(i % 251);
  }
  for (size_t k = 0; k < form.records; ++k) {
    const size_t at = form.first + k * form.stride;
    Put(bytes, at, int16_t{2});
    Put(bytes, at + 2, int16_t{5});
    Put(bytes, at + 4, int32_t{5});
    Put(bytes, at + 244, int32_t{1});
    Put(bytes, at + form.values, 0.1F);
    Put(bytes, at + form.values + 4, -4.0F);
    Put(bytes, at + form.values + 16, 2.5F + static_cast<float>(k));
  }
  return bytes;
}

std::string Inspection(const Form& form, const std::string& focal_length) {
  const size_t count = form.kind == 4 ? 1 : form.records;
  return "kind                  " + std::to_string(form.kind) +
         "\nrecords               " + std::to_string(count) +
         "\nrecord                0"
         "\nfocal length          " +
         focal_length +
         "\nfocal length divisor  -4"
         "\nthird value           0.100000001\n";
}

class CalibrationCommand : public testing::Test {
 protected:
  CalibrationCommand() {
    std::filesystem::create_directory(folder_ / "work");
    const std::string digits = std::string(62, '0') + "aF\n";
    WriteBytes(File("key.hex"), Bytes(digits.begin(), digits.end()));
    Bytes key(32);
    key.back() = 0xAF;
    WriteBytes(File("key.bin"), key);
    WriteBytes(File("wrapped.bin"), Bytes(40));
    WriteBytes(File("plain.bin"), MakeContainer(kForms[0]));
  }

  [[nodiscard]] std::string File(const std::string& name) const {
    return folder_ / ("work/" + name);
  }

  [[nodiscard]] Outcome Run(const std::string& arguments) const {
    return RunZuqel(folder_ / "work", "calibration " + arguments);
  }

  // Exit code 2, one line, and nothing else.
  void ExpectRefused(const std::string& arguments, const std::string& message) {
    const Outcome outcome = Run(arguments);
    EXPECT_EQ(outcome.exit_code, 2) << arguments;
    EXPECT_THAT(outcome.err, HasSubstr(message)) << arguments;
    EXPECT_EQ(std::count(outcome.err.begin(), outcome.err.end(), '\n'), 1);
    EXPECT_THAT(outcome.out, IsEmpty()) << arguments;
  }

  TemporaryFolder folder_;
};

TEST_F(CalibrationCommand, SealedContainersInspectLikePlainOnes) {
  for (const Form& form : kForms) {
    SCOPED_TRACE(form.plain);
    const Bytes plain = MakeContainer(form);
    WriteBytes(File("p.bin"), plain);
    const Outcome outcome = Run("seal p.bin --key key.hex -o s.bin");
    ASSERT_EQ(outcome.exit_code, 0) << outcome.err;
    EXPECT_EQ(outcome.out,
              "wrote s.bin (" + std::to_string(form.sealed) + " bytes)\n");
    Bytes sealed = ReadBytes(File("s.bin"));
    ASSERT_EQ(sealed.size(), form.sealed);
    // What is not encrypted: the header and the first gap.
    EXPECT_TRUE(std::equal(plain.begin(),
                           plain.begin() + static_cast<int>(form.first),
                           sealed.begin()));
    if (form.first != 0) {
      const size_t gap = form.first + form.stride - 2;
      EXPECT_EQ(sealed[gap + 32], plain[gap]);
      EXPECT_EQ(sealed[gap + 33], plain[gap + 1]);
    }
    const std::string second = form.kind == 4 ? "3.5" : "2.5";
    for (const std::string name :
         {"p.bin", "s.bin --key key.hex", "s.bin --key key.bin"}) {
      EXPECT_EQ(Run("inspect " + name).out, Inspection(form, "2.5")) << name;
      EXPECT_EQ(Run("inspect --layout 2 " + name).out, Inspection(form, second))
          << name;
    }
    // A nonce of its own each time.
    ASSERT_EQ(Run("seal p.bin --key key.bin -o s.bin").exit_code, 0);
    EXPECT_NE(ReadBytes(File("s.bin")), sealed);

    sealed[form.sealed / 2] ^= 0x10;
    WriteBytes(File("s.bin"), sealed);
    ExpectRefused("inspect s.bin --key key.hex", "s.bin: 0x6004: a record");
  }
}

TEST_F(CalibrationCommand, RefusesBadInputInOneLine) {
  ASSERT_EQ(Run("seal plain.bin --key key.hex -o sealed.bin").exit_code, 0);
  Bytes old = MakeContainer(kForms[6]);
  Put(old, 7 + 2 * 514, int16_t{1});
  WriteBytes(File("old.bin"), old);
  WriteBytes(File("empty.bin"), {});
  WriteBytes(File("kept.bin"), {'o', 'l', 'd'});
  struct Case {
    const char *arguments, *message;
  };
  constexpr auto kCases = std::to_array<Case>({
      {"", "subcommand is required"},
      {"frobnicate", "unknown option or command: frobnicate"},
      {"inspect", "FILE is required"},
      {"inspect none.bin", "none.bin: cannot be opened"},
      {"inspect key.hex", "key.hex: 0x6002: no container"},
      {"inspect sealed.bin", "sealed.bin: 0x6004: a record"},
      {"inspect sealed.bin --key kept.bin", "sealed.bin: 0x600c: the key"},
      {"inspect plain.bin --key wrapped.bin", "plain.bin: 0x600c: the key"},
      {"inspect empty.bin", "empty.bin: 0x600a: there is nothing"},
      {"inspect empty.bin --key key.hex", "empty.bin: 0x600b: there is no"},
      {"inspect plain.bin --layout 5", "--layout: Value 5 not in range"},
      {"seal plain.bin --key key.hex", "--output is required"},
      {"seal plain.bin -o kept.bin", "--key is required"},
      {"seal key.hex --key key.hex -o kept.bin", "key.hex: has 65 bytes"},
      {"seal sealed.bin --key key.hex -o kept.bin",
       "sealed.bin: is encrypted already"},
      {"seal plain.bin --key plain.bin -o kept.bin", "plain.bin: is no key"},
      {"seal plain.bin --key key.hex -o none/s.bin", "the folder none "},
      {"seal old.bin --key key.hex -o kept.bin",
       "old.bin: 0x6005: a record's version is below 2"},
  });
  for (const Case& row : kCases) ExpectRefused(row.arguments, row.message);
  EXPECT_EQ(ReadText(File("kept.bin")), "old");
}

}  // namespace
}  // namespace zuqel::tools
