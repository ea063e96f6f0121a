// Resizing, blurs and the blend of planes against their plain forms.
#include <algorithm>
#include <array>

#include "cpu_bokeh/box_blur.h"
#include "cpu_bokeh/resize/resize_plane.h"
#include "cpu_bokeh/two_level_blur.h"
#include "input.h"
#include "reference_planes.h"
#include "require.h"

namespace zuqel::fuzz {
namespace {

using Plane8 = Image<uint8_t>;

constexpr std::array kFactors = {1, 2, 3, 4, 6, 8, 9, 12};

// Nothing in common, or the exact factors that have weights of their own.
std::array<Size, 2> AnySizes(Input& input) {
  if (input.Flag()) return {input.SizeUpTo(40, 20), input.SizeUpTo(40, 20)};
  const Size small = input.SizeUpTo(9, 5);
  const auto factor = input.OneOf(kFactors);
  const Size large = {small.width * factor, small.height * factor};
  if (input.Flag()) return {large, small};
  return {small, large};
}

// Weights add up to 256: a plane of one value keeps it, and no result leaves
// the plane's range.
template <typename T>
void CheckResize(Input& input) {
  const auto [from, to] = AnySizes(input);
  const bool is_constant = input.Between(0, 7) == 0;
  Image<T> in = input.Draw<T>(from, static_cast<T>(-1));
  if (is_constant && !in.values.empty()) {
    std::fill(in.values.begin(), in.values.end(), in.values[0]);
  }
  Image<T> out = {to.width, to.height};
  ResizeScratch scratch;
  Require(ResizePlane(std::as_const(in).View(), scratch, out.View()),
          "memory for resizing");
  RequireSame(out, reference::ResizePlane(in, to.width, to.height),
              "resized plane");
  if (in.values.empty()) return;
  const auto [low, high] =
      std::minmax_element(in.values.begin(), in.values.end());
  for (const T value : out.values) {
    Require(value >= *low && value <= *high, "range of a resized plane");
  }
}

Plane8 BoxGaussian(Plane8 image, int32_t strength) {
  for (const int32_t radius : GaussianBoxRadii(strength)) {
    image = reference::BoxBlur(image, radius);
  }
  return image;
}

void CheckBlur(Input& input) {
  const bool is_gaussian = input.Flag(), is_in_place = input.Flag();
  const int32_t amount = input.Between(-2, 40);
  Plane8 in = input.Draw<uint8_t>(input.SizeUpTo(40, 16), 255);
  const Plane8 expected = is_gaussian
                              ? BoxGaussian(in, amount)
                              : reference::BoxBlur(in, std::max(amount, 0));
  Plane8 other = {in.width, in.height};
  Plane8& out = is_in_place ? in : other;
  Buffer scratch;
  Require((is_gaussian ? BoxGaussianBlur : BoxBlur)(
              std::as_const(in).View(), amount, scratch, out.View()),
          "memory for blurring");
  RequireSame(out, expected, is_gaussian ? "Gaussian blur" : "box blur");
}

void CheckTwoLevels(Input& input) {
  const int32_t scale = input.Between(1, 4), strength = input.Between(-2, 12);
  const Plane8 in = input.Draw<uint8_t>(input.SizeUpTo(40, 16), 255);
  Plane8 out = {in.width, in.height};
  BlurScratch scratch;
  Require(TwoLevelBlur(in.View(), scale, strength, scratch, out.View()),
          "memory for blurring");
  const Plane8 reduced =
      reference::ResizePlane(in, in.width / scale, in.height / scale);
  RequireSame(out,
              reference::ResizePlane(BoxGaussian(reduced, strength), in.width,
                                     in.height),
              "blur at a fraction of the size");
}

void CheckBlend(Input& input) {
  const Size size = input.SizeUpTo(70, 5);
  std::array<Plane8, 4> planes;
  for (Plane8& plane : planes) plane = input.Draw<uint8_t>(size, 255);
  auto& [strong, mild, mask, sharp] = planes;
  Plane8 expected = sharp;
  for (size_t i = 0; i < mask.values.size(); ++i) {
    const int weight = mask.values[i];
    const int rest = weight == 0 ? sharp.values[i] : mild.values[i];
    expected.values[i] = static_cast<uint8_t>(
        (weight * strong.values[i] + (255 - weight) * rest) / 255);
  }
  BlendByMask(strong.View(), mild.View(), mask.View(), sharp.View());
  RequireSame(sharp, expected, "blend");
}

constexpr std::array kChecks = {CheckResize<uint8_t>, CheckResize<uint16_t>,
                                CheckBlur, CheckTwoLevels, CheckBlend};

}  // namespace

void Run(Input& input) {
  input.OneOf(kChecks)(input);
}

}  // namespace zuqel::fuzz
