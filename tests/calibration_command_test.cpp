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

// Record k begins at first + k * stride, its values `values` bytes later.
struct Form {
  size_t plain, sealed;
  int kind;
  size_t records, first, stride, values;
};
constexpr auto kForms = std::to_array<Form>({
    {464, 496, 1, 1, 0, 0, 320},
    {1403, 1499, 1, 3, 7, 466, 320},
    {2801, 2993, 1, 6, 7, 466, 320},
    {512, 544, 3, 1, 0, 0, 340},
    {1547, 1643, 3, 3, 7, 514, 340},
    {1488, 2080, 4, 1, 0, 0, 340},
});

template <typename T>
void Put(Bytes& bytes, size_t place, const T& value) {
  std::memcpy(bytes.data() + place, &value, sizeof(value));
}

Bytes MakeContainer(const Form& form) {
  Bytes bytes(form.plain, 0xEE);
  for (size_t k = 0; k < form.records; ++k) {
    const size_t at = form.first + k * form.stride;
    Put(bytes, at, std::array<int16_t, 4>{2, 5, 5, 0});
    Put(bytes, at + 244, int32_t{1});
    Put(bytes, at + form.values, std::array<float, 5>{0.1F, -4, 0, 0, 2.5F});
  }
  return bytes;
}

class CalibrationCommand : public testing::Test {
 protected:
  CalibrationCommand() {
    const std::string digits = std::string(62, '0') + "aF\n";
    WriteBytes(folder_ / "key.hex", Bytes(digits.begin(), digits.end()));
    Bytes key(31);
    key.push_back(0xAF);
    WriteBytes(folder_ / "key.bin", key);
  }

  [[nodiscard]] Outcome Run(const std::string& arguments) const {
    return RunZuqel(folder_ / "", "calibration " + arguments);
  }

  // Exit code 2, one line, and nothing else.
  void ExpectRefused(const std::string& arguments, const std::string& message) {
    const Outcome outcome = Run(arguments);
    EXPECT_EQ(outcome.exit_code, 2) << arguments;
    EXPECT_THAT(outcome.err, testing::HasSubstr(message)) << arguments;
    EXPECT_EQ(std::count(outcome.err.begin(), outcome.err.end(), '\n'), 1);
    EXPECT_EQ(outcome.out, "");
  }

  TemporaryFolder folder_;
};

TEST_F(CalibrationCommand, SealedContainersInspectLikePlainOnes) {
  for (const Form& form : kForms) {
    SCOPED_TRACE(form.plain);
    WriteBytes(folder_ / "p.bin", MakeContainer(form));
    // Each time with another nonce.
    ASSERT_EQ(Run("seal p.bin --key key.bin -o t.bin").exit_code, 0);
    EXPECT_EQ(Run("seal p.bin --key key.hex -o s.bin").out,
              "wrote s.bin (" + std::to_string(form.sealed) + " bytes)\n");
    Bytes sealed = ReadBytes(folder_ / "s.bin");
    ASSERT_EQ(sealed.size(), form.sealed);
    EXPECT_NE(ReadBytes(folder_ / "t.bin"), sealed);
    const std::string inspection =
        "kind                  " + std::to_string(form.kind) +
        "\nrecords               " + std::to_string(form.records) +
        "\nrecord                0\nfocal length          2.5\n"
        "focal length divisor  -4\nthird value           0.100000001\n";
    for (const std::string name :
         {"p.bin", "s.bin --key key.bin", "t.bin --key key.hex"}) {
      EXPECT_EQ(Run("inspect " + name).out, inspection) << name;
    }
    sealed[form.sealed / 2] ^= 0x10;
    WriteBytes(folder_ / "s.bin", sealed);
    ExpectRefused("inspect s.bin --key key.hex", "s.bin: 0x6004: a record");
  }
}

TEST_F(CalibrationCommand, RefusesBadInputInOneLine) {
  WriteBytes(folder_ / "plain.bin", MakeContainer(kForms[0]));
  ASSERT_EQ(Run("seal plain.bin --key key.hex -o sealed.bin").exit_code, 0);
  WriteBytes(folder_ / "kept.bin", {'o', 'l', 'd'});
  ExpectRefused("inspect sealed.bin --key kept.bin", "0x600c: the key");
  const std::string seal_options = " --key key.hex -o kept.bin";
  ExpectRefused("seal key.hex" + seal_options, "key.hex: has 65 bytes");
  ExpectRefused("seal sealed.bin" + seal_options, "is encrypted already");
  ExpectRefused("seal plain.bin --key plain.bin -o kept.bin", "is not a key");
  EXPECT_EQ(ReadText(folder_ / "kept.bin"), "old");
}

}  // namespace
}  // namespace zuqel::tools
