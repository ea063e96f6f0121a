// The calls that work on the CPU, through the C interface.
#include <zuQelRT_GL.h>

#include <algorithm>
#include <array>

#include "frame.h"
#include "input.h"
#include "reference_depth.h"
#include "require.h"

namespace zuqel::fuzz {
namespace {

using reference::Map;

GLInitInfo AnySizes(Input& input) {
  GLInitInfo info = {};
  const Size preview = input.SizeUpTo(48, 24), depth = input.SizeUpTo(32, 20);
  info.PreviewWidth = preview.width;
  info.PreviewHeight = preview.height;
  info.DepthWidth = depth.width;
  info.DepthHeight = depth.height;
  return info;
}

struct Call {
  GLInitInfo info;
  Frame frame;
  int32_t x, y;
  // Before the call.
  Map depth = {info.DepthWidth, info.DepthHeight, frame.depth};

  [[nodiscard]] Map Filled(bool (*is_hole)(uint16_t)) const {
    return reference::FillHoles(depth, is_hole);
  }
  void RequireDepth(const Map& expected) const {
    RequireSame({info.DepthWidth, info.DepthHeight, frame.depth}, expected,
                "depth map after a call");
  }
};

// What is blended are means, so no pixel leaves the range of its plane; at half
// of a single row or column there is nothing, which counts as zeros.
void RenderOnCpu(Call& call) {
  const std::vector<uint8_t> before = call.frame.luma;
  for (uint16_t& value : call.depth.values) value %= 1024;
  zuQelRT_Bokeh_ZU4410_DisparityBase_Expansion_CPU(
      call.frame.luma.data(), call.frame.chroma.data(), call.frame.depth.data(),
      call.x, static_cast<uint32_t>(call.y));
  if (before.empty() || call.depth.values.empty()) return;
  call.RequireDepth(call.Filled(reference::IsDisparityHole));
  if (call.info.PreviewWidth < 2 || call.info.PreviewHeight < 2) return;
  const auto [low, high] = std::minmax_element(before.begin(), before.end());
  for (const uint8_t value : call.frame.luma) {
    Require(value >= *low && value <= *high, "range of the luma");
  }
}

void MakeFromDisparity(Call& call) {
  std::array<uint32_t, 3> out = {};
  zuQelRT_GenRefocusMap_ZU4410_DispartyBase_CPU(
      call.frame.depth_map.data(), call.frame.depth.data(),
      static_cast<uint32_t>(call.x), static_cast<uint32_t>(call.y), out.data(),
      &out[1], &out[2]);
  if (call.depth.values.empty()) return;
  const Map filled = call.Filled(reference::IsDisparityHole);
  call.RequireDepth(filled);
  const auto [min, max] =
      reference::TrimmedRange(filled, 5, reference::kDisparityRange);
  Require(out[0] == static_cast<uint32_t>(min) &&
              out[1] == static_cast<uint32_t>(max) && out[2] <= 1023,
          "range of a map");
}

void MakeFromDistance(Call& call) {
  zuQelRT_GenRefocusMap_Dist(call.frame.depth_map.data(),
                             call.frame.depth.data(),
                             static_cast<uint32_t>(call.x), call.y);
  if (call.depth.values.empty()) return;
  call.RequireDepth(call.Filled(reference::IsDistanceHole));
}

}  // namespace

// Sizes are those of the latest initialisation, even one that was refused for
// its calibration: no driver is needed.
void Run(Input& input) {
  const int32_t calls = input.Between(1, 2);
  const GLInitInfo info = AnySizes(input);
  Require(
      zuQelRT_GLInitV1(nullptr, 0, nullptr, 0, &info) == ZUQEL_CALIB_NO_BLOCK,
      "status of an initialisation");
  for (int32_t i = 0; i < calls; ++i) {
    const auto run = input.OneOf(std::array{
        RenderOnCpu, RenderOnCpu, MakeFromDisparity, MakeFromDistance});
    const bool is_inside = input.Flag();
    const int32_t x = is_inside ? input.Between(0, 48) : input.AnyInteger();
    const int32_t y = is_inside ? input.Between(0, 24) : input.AnyInteger();
    Call call = {info, Frame(info, input), x, y};
    run(call);
  }
  zuQelRT_GenRefocusMap_Deinit();
  zuQelRT_GLClose();
}

}  // namespace zuqel::fuzz
