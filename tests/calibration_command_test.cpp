// Seals and inspects calibration containers at the command line.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "calibration_samples.h"
#include "image_samples.h"
#include "program_run.h"

namespace zuqel::tools {
namespace {

using calib::Form, calib::kForms;
using Bytes = std::vector<uint8_t>;

Bytes PlainContainer(const Form& form) {
  std::vector<Bytes> units = calib::MakeUnits(form);
  calib::Put(units[0], form.optics(),
             std::array<float, 5>{0.1F, -4, 0, 0, 2.5F});
  return MakeContainer(form, units);
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
    if (form.sealed) continue;
    SCOPED_TRACE(form.length);
    const size_t sealed_size =
        std::find_if(kForms.begin(), kForms.end(), [&](const Form& other) {
          return other.sealed && other.kind == form.kind &&
                 other.count == form.count;
        })->length;
    WriteBytes(folder_ / "p.bin", PlainContainer(form));
    // Each time with another nonce.
    ASSERT_EQ(Run("seal p.bin --key key.bin -o t.bin").exit_code, 0);
    EXPECT_EQ(Run("seal p.bin --key key.hex -o s.bin").out,
              "wrote s.bin (" + std::to_string(sealed_size) + " bytes)\n");
    Bytes sealed = ReadBytes(folder_ / "s.bin");
    ASSERT_EQ(sealed.size(), sealed_size);
    EXPECT_NE(ReadBytes(folder_ / "t.bin"), sealed);
    const std::string inspection =
        "kind                  " + std::to_string(form.kind) +
        "\nrecords               " + std::to_string(form.count) +
        "\nrecord                0\nfocal length          2.5\n"
        "focal length divisor  -4\nthird value           0.100000001\n";
    for (const std::string name :
         {"p.bin", "s.bin --key key.bin", "t.bin --key key.hex"}) {
      EXPECT_EQ(Run("inspect " + name).out, inspection) << name;
    }
    sealed[sealed_size / 2] ^= 0x10;
    WriteBytes(folder_ / "s.bin", sealed);
    ExpectRefused("inspect s.bin --key key.hex", "s.bin: 0x6004: a record");
  }
}

TEST_F(CalibrationCommand, RefusesBadInputInOneLine) {
  WriteBytes(folder_ / "plain.bin", PlainContainer(kForms[0]));
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
