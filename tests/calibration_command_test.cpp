// Seals and inspects calibration containers at the command line.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "image_samples.h"
#include "program_run.h"

namespace zuqel::tools {
namespace {

using Bytes = std::vector<uint8_t>;
using testing::HasSubstr;

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
void Put(Bytes& bytes, size_t place, const T& value) {
  std::memcpy(bytes.data() + place, &value, sizeof(value));
}

// Record k has the focal length 2.5 + k.
Bytes MakeContainer(const Form& form) {
  Bytes bytes(form.plain, 0xEE);
  for (size_t k = 0; k < form.records; ++k) {
    const size_t at = form.first + k * form.stride;
    Put(bytes, at, std::array<int16_t, 4>{2, 5, 5, 0});
    Put(bytes, at + 244, int32_t{1});
    const float focal_length = 2.5F + static_cast<float>(k);
    Put(bytes, at + form.values,
        std::array<float, 5>{0.1F, -4, 0, 0, focal_length});
  }
  return bytes;
}

std::string Inspection(const Form& form, const std::string& focal_length) {
  return "kind                  " + std::to_string(form.kind) +
         "\nrecords               " +
         std::to_string(form.kind == 4 ? 1 : form.records) +
         "\nrecord                0\nfocal length          " + focal_length +
         "\nfocal length divisor  -4\nthird value           0.100000001\n";
}

class CalibrationCommand : public testing::Test {
 protected:
  CalibrationCommand() {
    const std::string digits = std::string(62, '0') + "aF\n";
    WriteBytes(folder_ / "key.hex", Bytes(digits.begin(), digits.end()));
    Bytes key(32);
    key.back() = 0xAF;
    WriteBytes(folder_ / "key.bin", key);
  }

  [[nodiscard]] Outcome Run(const std::string& arguments) const {
    return RunZuqel(folder_ / "", "calibration " + arguments);
  }

  // Exit code 2, one line, and nothing else.
  void ExpectRefused(const std::string& arguments, const std::string& message) {
    const Outcome outcome = Run(arguments);
    EXPECT_EQ(outcome.exit_code, 2) << arguments;
    EXPECT_THAT(outcome.err, HasSubstr(message)) << arguments;
    EXPECT_EQ(std::count(outcome.err.begin(), outcome.err.end(), '\n'), 1);
    EXPECT_EQ(outcome.out, "") << arguments;
  }

  TemporaryFolder folder_;
};

TEST_F(CalibrationCommand, SealedContainersInspectLikePlainOnes) {
  for (const Form& form : kForms) {
    SCOPED_TRACE(form.plain);
    const Bytes plain = MakeContainer(form);
    WriteBytes(folder_ / "p.bin", plain);
    // A nonce of its own each time.
    ASSERT_EQ(Run("seal p.bin --key key.bin -o t.bin").exit_code, 0);
    EXPECT_EQ(Run("seal p.bin --key key.hex -o s.bin").out,
              "wrote s.bin (" + std::to_string(form.sealed) + " bytes)\n");
    Bytes sealed = ReadBytes(folder_ / "s.bin");
    ASSERT_EQ(sealed.size(), form.sealed);
    EXPECT_NE(ReadBytes(folder_ / "t.bin"), sealed);
    // The header is not encrypted.
    EXPECT_TRUE(std::equal(plain.data(), &plain[form.first], sealed.begin()));
    const std::string second = form.kind == 4 ? "3.5" : "2.5";
    for (const std::string name :
         {"p.bin", "s.bin --key key.bin", "t.bin --key key.hex"}) {
      EXPECT_EQ(Run("inspect " + name).out, Inspection(form, "2.5")) << name;
      EXPECT_EQ(Run("inspect --layout 2 " + name).out, Inspection(form, second))
          << name;
    }
    sealed[form.sealed / 2] ^= 0x10;
    WriteBytes(folder_ / "s.bin", sealed);
    ExpectRefused("inspect s.bin --key key.hex", "s.bin: 0x6004: a record");
  }
}

TEST_F(CalibrationCommand, RefusesBadInputInOneLine) {
  WriteBytes(folder_ / "wrapped.bin", Bytes(40));
  WriteBytes(folder_ / "plain.bin", MakeContainer(kForms[0]));
  ASSERT_EQ(Run("seal plain.bin --key key.hex -o sealed.bin").exit_code, 0);
  Bytes old = MakeContainer(kForms[6]);
  Put(old, 7 + 2 * 514, int16_t{1});
  WriteBytes(folder_ / "old.bin", old);
  WriteBytes(folder_ / "empty.bin", {});
  WriteBytes(folder_ / "kept.bin", {'o', 'l', 'd'});
  struct Case {
    const char *arguments, *message;
  };
  constexpr auto kCases = std::to_array<Case>({
      {"", "subcommand is required"},
      {"frobnicate", "unknown option or command: frobnicate"},
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
  EXPECT_EQ(ReadText(folder_ / "kept.bin"), "old");
}

}  // namespace
}  // namespace zuqel::tools
