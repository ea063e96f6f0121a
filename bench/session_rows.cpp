// Rows of calls of the C interface: starts, frames and refocus maps.
#include <GLES2/gl2.h>
#include <zuQelRT_GL.h>

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "gl/program_cache.h"
#include "gl_session.h"
#include "row.h"

namespace zuqel::bench {
namespace {

constexpr Size kMap = {320, 240};
constexpr std::array kFrameSizes = {Size{1280, 960}, Size{1920, 1080}};

size_t PixelsOf(Size size) {
  return Plane<uint8_t>{nullptr, size.width, size.height}.size();
}

// Starts and ends a session. Its bytes are those of a frame, for want of
// others.
Row Start(Size size, bool is_cached) {
  const auto prepare = [=](const Scene&) -> Trial {
    const auto cache = std::make_shared<std::vector<uint8_t>>(
        is_cached ? kProgramCacheBytes : 0);
    uint8_t* given = is_cached ? cache->data() : nullptr;
    const GlSession first(size, kMap, given);
    return {.pixels = PixelsOf(size), .ours = [=] {
              static_cast<void>(cache);
              const GlSession session(size, kMap, given);
            }};
  };
  return {kGl,
          (is_cached ? "start with cached programs, " : "start, ") + Text(size),
          0, "", prepare};
}

struct SessionData {
  SessionData(const Scene& scene, Size size)
      : session(size, kMap),
        kept(FrameOf(scene, size, kMap)),
        frame(kept),
        weights{kMap.width, kMap.height} {
    weights.Visit([](int32_t x, int32_t, uint8_t& weight) {
      weight = static_cast<uint8_t>(x * 255 / kMap.width);
    });
  }
  GlSession session;
  CameraFrame kept, frame;
  Image<uint8_t> weights;  // or the map that is made
};

Row Frame(Size size, bool from_disparity) {
  const auto prepare = [=](const Scene& scene) -> Trial {
    const auto data = std::make_shared<SessionData>(scene, size);
    const auto render = [=] {
      CameraFrame& frame = data->frame;
      const auto x = static_cast<uint32_t>(frame.focus_x);
      const auto y = static_cast<uint32_t>(frame.focus_y);
      if (from_disparity) {
        zuQelRT_GLStartV1HWDepth(
            frame.luma.values.data(), frame.chroma.values.data(),
            frame.disparity.values.data(), x, y, 0, {}, 1.0F);
      } else {
        zuQelRT_GLStartV1(frame.luma.values.data(), frame.chroma.values.data(),
                          data->weights.values.data(), x, y, 0, {}, 1.0F);
      }
    };
    return {.pixels = PixelsOf(size),
            .bytes = PixelsOf(size) * 3 + PixelsOf(kMap) * 2,
            .ours = render,
            .restore = [=] { data->frame = data->kept; }};
  };
  return {kGl,
          std::string("frame from ") +
              (from_disparity ? "disparity, " : "weights, ") + Text(size),
          0, "", prepare};
}

struct Focus {
  uint32_t x, y;
};

using Generate = void (*)(uint8_t* map, uint16_t* disparity, Focus focus);

struct Generator {
  const char* section;
  const char* name;
  Generate generate;
};

template <auto kCall, typename Y>
void FromDisparity(uint8_t* map, uint16_t* disparity, Focus focus) {
  uint32_t least = 0, most = 0, in_focus = 0;
  kCall(map, disparity, focus.x, static_cast<Y>(focus.y), &least, &most,
        &in_focus);
}

void FromDistance(uint8_t* map, uint16_t* distance, Focus focus) {
  zuQelRT_GenRefocusMap_Dist(map, distance, focus.x,
                             static_cast<int32_t>(focus.y));
}

constexpr std::array kGenerators = {
    Generator{kGl, "refocus map of gpu",
              FromDisparity<zuQelRT_GenRefocusMap, int32_t>},
    Generator{
        kGl, "refocus map of disparity-base",
        FromDisparity<zuQelRT_GenRefocusMap_ZU4410_DispartyBase, int32_t>},
    Generator{
        kCalls, "refocus map of disparity-base-cpu",
        FromDisparity<zuQelRT_GenRefocusMap_ZU4410_DispartyBase_CPU, uint32_t>},
    Generator{kCalls, "refocus map of distance", FromDistance},
};

// Holes are filled in the caller's map.
Row RefocusMap(const Generator& generator) {
  const auto prepare = [=](const Scene& scene) -> Trial {
    const auto data = std::make_shared<SessionData>(scene, Size{64, 48});
    const tools::FocusPoint at = FocusIn(scene, kMap);
    const Focus focus = {static_cast<uint32_t>(at.x),
                         static_cast<uint32_t>(at.y)};
    return {.pixels = PixelsOf(kMap),
            .bytes = PixelsOf(kMap) * 5,
            .ours =
                [=] {
                  generator.generate(data->weights.values.data(),
                                     data->frame.disparity.values.data(),
                                     focus);
                },
            .restore =
                [=] {
                  data->frame.disparity.values = data->kept.disparity.values;
                }};
  };
  return {generator.section, generator.name, 24,
          "holes 2, range 4, mask 6, erosion 6, dilation 6", prepare};
}

}  // namespace

std::string GlName() {
  const GlSession session({64, 48}, kMap);
  const auto* text = reinterpret_cast<const char*>(glGetString(GL_RENDERER));
  return text == nullptr ? "none" : text;
}

std::vector<Row> SessionRows() {
  std::vector<Row> rows;
  rows.reserve(kGenerators.size() + 4 * kFrameSizes.size());
  for (const Generator& generator : kGenerators) {
    rows.push_back(RefocusMap(generator));
  }
  for (const Size size : kFrameSizes) {
    rows.push_back(Start(size, false));
    rows.push_back(Start(size, true));
    rows.push_back(Frame(size, false));
    rows.push_back(Frame(size, true));
  }
  return rows;
}

}  // namespace zuqel::bench
