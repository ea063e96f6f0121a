// Rows of the stages of a frame on the GPU, each finished before the next
// begins.
#include <GLES2/gl2.h>

#include <array>
#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "api/session.h"
#include "frame/frame_renderer.h"
#include "frame/frame_upload.h"
#include "gl_session.h"
#include "render/plane_conversion.h"
#include "row.h"

namespace zuqel::bench {
namespace {

constexpr Size kMap = {320, 240};

// A session in the middle of a frame.
struct StageData {
  StageData(const Scene& scene, Size size)
      : started(size, kMap), frame(FrameOf(scene, size, kMap)) {}

  static FrameSession& Frames() {
    FrameSession* frames = TheSession().RunningFrame();
    if (frames == nullptr) throw std::runtime_error("no session");
    return *frames;
  }
  static RenderState& Objects() {
    RenderState* objects = Frames().gl.IfCurrent();
    if (objects == nullptr) throw std::runtime_error("no context");
    return *objects;
  }

  void Upload(bool from_disparity) {
    const FrameMemory& memory = Frames().memory;
    const FrameSetup& setup = TheSession().frame_setup;
    if (from_disparity) {
      UploadDepth(Objects(), frame.disparity.View(), memory.map_rgba.words());
    } else {
      UploadWeights(
          Objects(),
          {reinterpret_cast<const uint8_t*>(frame.disparity.values.data()),
           kMap.width, kMap.height},
          memory.map_rgba.words());
    }
    UploadFrame(Objects(), setup, View(), memory.packed_frame.words(),
                {memory.chroma.bytes(), memory.chroma.size()});
    glFinish();
  }
  void Draw(bool from_disparity) {
    TheSession().frames.depth = {100, 900, 300};
    const FrameCall call = {.from_depth = from_disparity};
    RenderPasses(&drawing, TheSession().frame_setup, call, TheSession().frames);
    glFinish();
  }
  void ReadPixels() const {
    glReadPixels(0, 0, frame.luma.width, frame.luma.height, GL_RGBA,
                 GL_UNSIGNED_BYTE, Frames().memory.read_back.bytes());
  }
  void ReadBack() {
    ReadPixels();
    UnpackFrame(Frames().memory.read_back.words(), kFormatNv21, View());
  }
  zuqel::Frame View() { return {frame.luma.View(), frame.chroma.values}; }

  GlSession started;
  CameraFrame frame;
  FrameDrawing drawing{Objects(), SizesOf(TheSession().frame_setup)};
};

enum class Stage : uint8_t { kUpload, kPasses, kReadBack };

Row StageOf(Size size, bool from_disparity, Stage stage) {
  const auto prepare = [=](const Scene& scene) -> Trial {
    const auto data = std::make_shared<StageData>(scene, size);
    data->Upload(from_disparity);
    data->Draw(from_disparity);
    const size_t pixels = data->frame.luma.values.size();
    switch (stage) {
      case Stage::kUpload:
        return {.pixels = pixels, .bytes = pixels * 3, .ours = [=] {
                  data->Upload(from_disparity);
                }};
      case Stage::kPasses:
        return {.pixels = pixels, .bytes = pixels * 8, .ours = [=] {
                  data->Draw(from_disparity);
                }};
      case Stage::kReadBack:
        break;
    }
    return {.pixels = pixels,
            .bytes = pixels * 4 + pixels * 3 / 2,
            .ours = [=] { data->ReadBack(); },
            .peers = {{"transfer alone", [=] { data->ReadPixels(); }}}};
  };
  constexpr std::array kNames = {"upload", "passes", "read-back"};
  return {kGl,
          std::string(kNames.at(static_cast<size_t>(stage))) + " from " +
              (from_disparity ? "disparity, " : "weights, ") + Text(size),
          0, "", prepare};
}

}  // namespace

std::vector<Row> StageRows() {
  std::vector<Row> rows;
  for (const Size size : {Size{1280, 960}, Size{1920, 1080}}) {
    for (const bool from_disparity : {false, true}) {
      for (const Stage stage :
           {Stage::kUpload, Stage::kPasses, Stage::kReadBack}) {
        rows.push_back(StageOf(size, from_disparity, stage));
      }
    }
  }
  return rows;
}

}  // namespace zuqel::bench
