// Calibrations through the decoder and through initialisation: any bytes, and
// containers that are sealed and wrapped as they have to be.
#include <zuQelRT_GL.h>

#include <algorithm>
#include <array>

#include "api/session.h"
#include "calib/built_in_keys.h"
#include "calib/calibration.h"
#include "calibration_samples.h"
#include "input.h"
#include "require.h"

namespace zuqel::fuzz {
namespace {

using calib::Bytes;
using calib::CalibrationInput;
using calib::CalibrationRecord;
using calib::Form;

// The blocks of a call.
struct Blocks {
  Bytes a, b;
  bool has_a = true, has_b = false;

  [[nodiscard]] CalibrationInput Call() const {
    return {.block_a = has_a ? a.data() : nullptr,
            .block_a_size = static_cast<uint32_t>(a.size()),
            .block_b = has_b ? b.data() : nullptr,
            .block_b_size = static_cast<uint32_t>(b.size())};
  }
};

Bytes AnyBlock(Input& input) {
  const size_t length = input.Flag() ? input.OneOf(calib::kForms).length
                                     : input.Between<size_t>(0, 64);
  return input.Bytes(length + input.OneOf(std::array<size_t, 3>{0, 1, 40}));
}

Blocks AnyBlocks(Input& input) {
  Blocks blocks;
  blocks.has_a = input.Flag();
  blocks.has_b = input.Flag();
  blocks.a = AnyBlock(input);
  blocks.b = AnyBlock(input);
  return blocks;
}

const calib::Key& GeneralKey() {
  static const calib::Key key = [] {
    calib::Key made = {};
    std::copy_n(calib::OtherKey().begin(), made.size(), made.begin());
    return made;
  }();
  return key;
}

// The key as it is or wrapped, and the container before it or behind it.
Blocks BlocksOf(const Bytes& container, Input& input) {
  Blocks blocks = {.a = container, .has_b = true};
  const bool is_wrapped = input.Flag();
  blocks.b = is_wrapped ? calib::Wrap(calib::OtherKey(), calib::RecordKey())
                        : calib::RecordKey();
  if (is_wrapped && input.Flag()) {
    blocks.b.insert(blocks.b.end(), container.begin(), container.end());
    blocks.b.shrink_to_fit();
    blocks.a.clear();
    blocks.has_a = input.Flag();
  }
  return blocks;
}

std::vector<Bytes> UnitsOf(const Form& form, Input& input) {
  std::vector<Bytes> units;
  for (size_t k = 0; k < form.count; ++k) {
    units.push_back(input.Bytes(form.unit_size));
    if (form.kind == 3 && input.Between(0, 3) != 0) {
      calib::PutHeader(units.back(), {2, 5, 5, 1});
    }
  }
  return units;
}

void Damage(Bytes& block, Input& input) {
  if (block.empty()) return;
  const auto place = input.Between<size_t>(0, block.size() - 1);
  block[place] ^= input.Between<uint8_t>(1, 255);
}

// What comes out is a unit that went in.
void CheckRecord(const Form& form, const std::vector<Bytes>& units,
                 const CalibrationInput& call,
                 const CalibrationRecord& record) {
  const bool is_second = call.selector == 1 || call.selector == 3;
  const size_t place = form.kind == 4 && is_second ? 732 : 0;
  Require(record.index < form.count && record.count == form.count &&
              record.kind == form.kind && record.size == form.record_size,
          "what the record is");
  Require(std::equal(record.bytes.begin(), record.bytes.begin() + record.size,
                     units[record.index].begin() + std::ptrdiff_t(place)),
          "bytes of the record");
}

void CheckStatus(uint32_t status, bool is_whole, const Form& form,
                 const CalibrationInput& call) {
  const bool has_index = form.count == 1 ||
                         call.forced_index == calib::kByLensPosition ||
                         call.forced_index < form.count;
  if (!is_whole || form.kind == 3) return;
  Require(status == (has_index ? ZUQEL_SUCCESS : ZUQEL_CALIB_BAD_LENGTH),
          "a whole container is refused");
}

// With the keys of this build.
void CheckInitialisation(CalibrationInput call) {
  zuQelRT_CameraLayout_Set(call.selector + 1);
  call.forced_index = 0;
  call.lens_position = 0;
  call.default_keys = calib::BuiltInKeys();
  CalibrationRecord record;
  const uint32_t expected = calib::DecodeCalibration(call, record);
  const GLInitInfo info = {.PreviewWidth = 2, .PreviewHeight = 2, .offmode = 1};
  Require(zuQelRT_GLInitV1(call.block_a, call.block_a_size, call.block_b,
                           call.block_b_size, &info) == expected,
          "status of an initialisation");
  zuQelRT_GLClose();
}

}  // namespace

void Run(Input& input) {
  const Form form = input.OneOf(calib::kForms);
  const bool is_made = input.Between(0, 3) != 0;
  const bool is_whole = is_made && input.Flag();
  const bool initialises = input.Between(0, 3) == 0;
  CalibrationInput call = {.selector = input.Between(0, 3),
                           .lens_position = input.AnyInteger(),
                           .forced_index = calib::kByLensPosition,
                           .default_keys = {&GeneralKey(), &GeneralKey()}};
  if (input.Flag()) call.forced_index = input.Between(0U, 7U);
  std::vector<Bytes> units;
  Blocks blocks;
  if (is_made) {
    units = UnitsOf(form, input);
    blocks = BlocksOf(calib::MakeContainer(form, units), input);
    if (!is_whole) Damage(input.Flag() ? blocks.a : blocks.b, input);
  } else {
    blocks = AnyBlocks(input);
  }
  const CalibrationInput with_blocks = blocks.Call();
  call.block_a = with_blocks.block_a;
  call.block_a_size = with_blocks.block_a_size;
  call.block_b = with_blocks.block_b;
  call.block_b_size = with_blocks.block_b_size;

  CalibrationRecord record;
  const uint32_t status = calib::DecodeCalibration(call, record);
  if (is_made) CheckStatus(status, is_whole, form, call);
  if (status == ZUQEL_SUCCESS) {
    if (is_whole) CheckRecord(form, units, call, record);
    Require(calib::TakeCameraValues(record).has_value(), "camera values");
  }
  if (initialises) CheckInitialisation(call);
}

}  // namespace zuqel::fuzz
