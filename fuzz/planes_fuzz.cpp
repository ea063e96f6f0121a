// Resizing, blurs and the blend of planes against their plain forms.
#include <algorithm>
#include <array>

#include "cpu_bokeh/blur_and_blend.h"
#include "cpu_bokeh/box_blur.h"
#include "cpu_bokeh/resize/resize_plane.h"
#include "input.h"
#include "reference_planes.h"
#include "require.h"

namespace zuqel::fuzz {
namespace {

using Plane8 = Image<uint8_t>;

constexpr std::array kFactors = {1, 2, 3, 4, 6, 8, 9, 12};

// Nothing in common, or exact factors, of which some have kernels, of both axes
// or of the width alone.
std::array<Size, 2> AnySizes(Input& input) {
  if (input.Flag()) return {input.SizeUpTo(40, 20), input.SizeUpTo(40, 20)};
  const Size small = input.SizeUpTo(9, 5);
  const auto factor = input.OneOf(kFactors);
  const int32_t height =
      input.Flag() ? small.height * factor : input.Between(0, 40);
  const Size large = {small.width * factor, height};
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

// Masks with large parts of 0 and 255, which are left out.
void CheckBlend(Input& input) {
  const Size size = input.SizeUpTo(300, 24), map = input.SizeUpTo(40, 12);
  const Plane8 sharp = input.Draw<uint8_t>(size, 255);
  Plane8 mask = input.Draw<uint8_t>(map, 255);
  const auto low = input.Between(0, 255), high = input.Between(0, 255);
  for (uint8_t& weight : mask.values) {
    weight = weight < low ? 0 : weight > high ? 255 : weight;
  }
  BlendScratch scratch;
  Require(scratch.Reserve({size.width, size.height}, {map.width, map.height}),
          "memory for blending");
  Plane8 out = sharp;
  scratch.Begin(std::as_const(mask).View(), {size.width, size.height});
  BlurAndBlend(size.height, scratch, out.View());
  RequireSame(out,
              reference::BlurAndBlend(
                  sharp, reference::ResizePlane(mask, size.width, size.height)),
              "blend");
}

constexpr std::array kChecks = {CheckResize<uint8_t>, CheckResize<uint16_t>,
                                CheckBlur, CheckBlend};

}  // namespace

void Run(Input& input) {
  input.OneOf(kChecks)(input);
}

}  // namespace zuqel::fuzz
