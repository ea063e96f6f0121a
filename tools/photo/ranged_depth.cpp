// Depth as a grey picture that spans a range of lengths, which XMP gives.
#include "photo/ranged_depth.h"

#include <algorithm>
#include <optional>

#include "photo/image_file.h"
#include "photo/number_text.h"
#include "tool_error.h"

namespace zuqel::tools {
namespace {

// Lengths beyond have no inverse in a float.
constexpr double kLeastLength = 1e-30, kMostLength = 1e30;

struct Range {
  bool is_inverse;
  double near, far;
  std::string unit;
};

// The short names are those of GDepth.
std::string UnitName(std::string_view text) {
  if (text == "Meters") return "m";
  if (text == "Millimeters") return "mm";
  return std::string(text == "None" ? "" : text);
}

class RangeReader {
 public:
  RangeReader(const std::string& path, const Xmp& xmp,
              const RangeRecord& record)
      : path_(path), xmp_(xmp), record_(record) {}

  [[nodiscard]] Range Read() const {
    const std::string_view format = Value("Format");
    if (format != "RangeInverse" && format != "RangeLinear") {
      Refuse("Format \"" + std::string(format) +
             "\" is neither RangeLinear nor RangeInverse");
    }
    Range range = {format == "RangeInverse", Length("Near"), Length("Far"),
                   UnitName(Value("Units"))};
    if (range.unit == "Diopters") Refuse("Units are no unit of length");
    if (range.far <= range.near) {
      Refuse("Far " + std::string(Value("Far")) + " is not beyond its Near " +
             std::string(Value("Near")));
    }
    return range;
  }

 private:
  [[noreturn]] void Refuse(const std::string& what) const {
    throw InputError(path_ + ": its depth's " + what);
  }

  [[nodiscard]] std::string_view Value(std::string_view name) const {
    return xmp_.Value(record_.name_space, name, record_.at);
  }

  [[nodiscard]] double Length(const std::string& name) const {
    const std::string text(Value(name));
    const std::optional<double> value = ParseNumber(text);
    if (value && *value >= kLeastLength && *value <= kMostLength) return *value;
    Refuse(name + " \"" + text + "\" is no length above 0");
  }

  const std::string& path_;
  const Xmp& xmp_;
  const RangeRecord& record_;
};

}  // namespace

DepthMap DecodeRangedDepth(const std::string& path, const std::string& kind,
                           const Xmp& xmp, const RangeRecord& record,
                           std::span<const uint8_t> picture) {
  const Range range = RangeReader(path, xmp, record).Read();
  const GreyPicture grey = DecodeGreyPicture(path + " (depth)", picture);

  DepthMap map(grey.map.width, grey.map.height);
  map.meaning =
      range.is_inverse ? DepthMeaning::kDisparity : DepthMeaning::kLength;
  if (!range.unit.empty()) {
    map.unit = range.is_inverse ? "1/" + range.unit : range.unit;
  }
  map.kind = kind + (range.is_inverse ? ", RangeInverse" : ", RangeLinear");

  const double black = range.is_inverse ? 1 / range.near : range.near;
  const double white = range.is_inverse ? 1 / range.far : range.far;
  std::transform(grey.map.values.begin(), grey.map.values.end(),
                 map.values.begin(), [&](uint16_t value) {
                   const double share = double{1} * value / grey.white;
                   return static_cast<float>(black + share * (white - black));
                 });
  return map;
}

}  // namespace zuqel::tools
