// Seals and inspects calibration containers at the command line.
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

class CalibrationCommand : public CommandLine {
 protected:
  CalibrationCommand() {
    const std::string digits = std::string(62, '0') + "aF\n";
    WriteBytes(File("key.hex"), Bytes(digits.begin(), digits.end()));
    Bytes key(31);
    key.push_back(0xAF);
    WriteBytes(File("key.bin"), key);
  }

  [[nodiscard]] Outcome Run(const std::string& arguments) const {
    return CommandLine::Run("calibration " + arguments);
  }
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
    WriteBytes(File("p.bin"), PlainContainer(form));
    // Each time with another nonce.
    ASSERT_EQ(Run("seal p.bin --key key.bin -o t.bin").exit_code, 0);
    EXPECT_EQ(Run("seal p.bin --key key.hex -o s.bin").out,
              "wrote s.bin (" + std::to_string(sealed_size) + " bytes)\n");
    Bytes sealed = ReadBytes(File("s.bin"));
    ASSERT_EQ(sealed.size(), sealed_size);
    EXPECT_NE(ReadBytes(File("t.bin")), sealed);
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
    WriteBytes(File("s.bin"), sealed);
    ExpectRefused({{"calibration inspect s.bin --key key.hex",
                    "s.bin: 0x6004: a record"}});
  }
}

TEST_F(CalibrationCommand, RefusesBadInputInOneLine) {
  WriteBytes(File("plain.bin"), PlainContainer(kForms[0]));
  ASSERT_EQ(Run("seal plain.bin --key key.hex -o sealed.bin").exit_code, 0);
  WriteBytes(File("kept.bin"), {'o', 'l', 'd'});
  const std::string seal = "calibration seal ";
  ExpectRefused({
      {"calibration inspect sealed.bin --key kept.bin", "0x600c: the key"},
      {seal + "key.hex --key key.hex -o kept.bin", "key.hex: has 65 bytes"},
      {seal + "sealed.bin --key key.hex -o kept.bin", "is encrypted already"},
      {seal + "plain.bin --key plain.bin -o kept.bin", "is not a key"},
  });
}

}  // namespace
}  // namespace zuqel::tools
