// Runs the passes of a frame in order.
#include "frame/frame_renderer.h"

#include <array>
#include <optional>

#include "base/buffer.h"
#include "base/clock.h"
#include "base/log.h"
#include "render/plane_conversion.h"

namespace zuqel {
namespace {

// Time since the reading before, for the lines that close a step.
class StepClock {
 public:
  int Lap() {
    const uint32_t now = MillisecondClock();
    const auto elapsed = static_cast<int>(now - last_);
    last_ = now;
    return elapsed;
  }

 private:
  uint32_t last_ = MillisecondClock();
};

// From 3.6 texels at f/1 down to 0.1 at f/10; also 0.1 for no number.
float BlurScale(float f_number) {
  const auto scale = static_cast<float>((1 - 0.1 * f_number) * 4);
  return scale > 0 ? scale : 0.1F;
}

// One frame's way through the passes.
class FramePasses {
 public:
  FramePasses(FrameDrawing& frame, const FrameSetup& setup,
              const FrameCall& call)
      : frame_(frame),
        setup_(setup),
        call_(call),
        scale_(BlurScale(call.f_number)) {}

  void BlurImage() const {
    if (setup_.off_screen && setup_.source_format == kFormatNv21) {
      PassNv21Pack(frame_);
    } else if (setup_.off_screen && !HasReadyTexture()) {
      PassPlanarYuvPack(frame_);
    }
    PassBlurImage(frame_, Image(), scale_);
  }

  // Weights from depth, cleaned of blurred specks below three pixels by an
  // opening, and softened.
  void MakeWeights(const DepthStatistics& depth) const {
    PassDepthWeight(frame_,
                    {.mouse_x = static_cast<float>(call_.focus_x) /
                                static_cast<float>(setup_.preview.width),
                     .mouse_y = static_cast<float>(call_.focus_y) /
                                static_cast<float>(setup_.preview.height),
                     .focus_plane = static_cast<float>(depth.focus),
                     .min_depth = static_cast<float>(depth.min),
                     .max_depth = static_cast<float>(depth.max),
                     .focal_length = setup_.focal_length});
    PassErodeWeights(frame_);
    PassDilateWeights(frame_);
    PassBlurWeights(frame_, scale_);
  }

  void Composite() const {
    PassComposite(
        frame_,
        {.image = Image(),
         .weights = call_.from_depth
                        ? frame_.state.targets.texture(kBlurredWeights)
                        : frame_.state.inputs[kInputRefocus],
         .weight_size = call_.from_depth ? frame_.sizes.weights : setup_.work,
         .off_screen = setup_.off_screen,
         .portrait = call_.portrait});
  }

 private:
  // Ready textures are sampled as they are, others through the work image. With
  // depth from the chip, three planes have no case of their own.
  [[nodiscard]] bool HasReadyTexture() const {
    if (!setup_.off_screen || setup_.source_format == kFormatNv21) return false;
    return call_.from_depth || setup_.source_format != kFormatPlanar;
  }
  [[nodiscard]] ImageTexture& Image() const {
    return HasReadyTexture() ? frame_.state.inputs[kInputY]
                             : frame_.state.targets.texture(kWorkImage);
  }

  FrameDrawing& frame_;
  const FrameSetup& setup_;
  const FrameCall& call_;
  float scale_;
};

ImageSize CurrentViewport() {
  std::array<GLint, 4> viewport = {};
  glGetIntegerv(GL_VIEWPORT, viewport.data());
  return {viewport[2], viewport[3]};
}

// Dumps the framebuffer at the size of the viewport that the frame began with.
void DumpOutput(ImageSize size, const DumpName& name) {
  if (!DumpsAreOn()) return;
  Buffer pixels;
  if (!pixels.Reserve(ByteCount(size, 4))) return;
  glReadPixels(0, 0, size.width, size.height, GL_RGBA, GL_UNSIGNED_BYTE,
               pixels.bytes());
  DumpFrame({pixels.bytes(), pixels.size(), size.width, size.height, "Output"},
            name);
}

}  // namespace

FrameSizes SizesOf(const FrameSetup& setup) {
  return {.image = setup.preview,
          .depth = setup.depth,
          .work = setup.work,
          .output = setup.output};
}

DumpName DumpNameOf(const FrameCall& call, const FrameHistory& history) {
  return {history.counters.dump_number, static_cast<int32_t>(call.focus_x),
          static_cast<int32_t>(call.focus_y)};
}

void RenderPasses(FrameDrawing* frame, const FrameSetup& setup,
                  const FrameCall& call, const FrameHistory& history) {
  StepClock clock;
  const ImageSize viewport = frame != nullptr ? CurrentViewport() : ImageSize{};
  ZUQEL_LOG("*VX* zuQelRT_GL initialize shader_bypass(1) = %d (ms)",
            clock.Lap());
  if (frame != nullptr && !setup.off_screen) {
    PassNv21ToRgb(*frame);
  }
  if (call.bypass) {
    if (frame != nullptr && !setup.off_screen) {
      PassBypass(*frame, call.portrait);
    }
    return;
  }

  std::optional<FramePasses> passes;
  if (frame != nullptr) passes.emplace(*frame, setup, call);
  ZUQEL_LOG("*VX* zuQelRT_GL minimize depth shader_bypass(2) = %d (ms)",
            clock.Lap());
  ZUQEL_LOG("f number = %f, scale = %f", static_cast<double>(call.f_number),
            static_cast<double>(BlurScale(call.f_number)));
  if (passes) passes->BlurImage();
  ZUQEL_LOG("*VX* zuQelRT_GL depth blur shader_gauss(1) = %d (ms)",
            clock.Lap());

  if (passes && call.from_depth) passes->MakeWeights(history.depth);
  ZUQEL_LOG("*VX* zuQelRT_GL minimize depth shader_bypass(3) = %d (ms)",
            clock.Lap());
  if (passes) {
    passes->Composite();
    RenderState& state = frame->state;
    DrawDebugPictures(frame->drawing, state.programs[ProgramRole::CopyProgram],
                      state.debug_pictures,
                      state.targets.framebuffer(kOutputTarget),
                      history.debug_pictures);
  }
  ZUQEL_LOG("*VX* zuQelRT_GL refocus(2) = %d (ms)", clock.Lap());
  if (frame != nullptr) DumpOutput(viewport, DumpNameOf(call, history));
}

}  // namespace zuqel
