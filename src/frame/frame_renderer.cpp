// The order of passes of a frame.
#include "frame/frame_renderer.h"

#include <array>

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

// Ready textures are sampled as they are, others through the work image. With
// depth from the chip, three planes have no case of their own.
bool IsReadyTexture(const FrameJob& job) {
  if (!job.off_screen || job.source_format == kFormatNv21) return false;
  return job.depth != nullptr || job.source_format != kFormatPlanar;
}

GLuint ImageTexture(const RenderState& state, const FrameJob& job) {
  return IsReadyTexture(job) ? state.inputs[kInputY].get()
                             : state.targets.texture(kWorkImage);
}

FrameSizes SizesOf(const FrameJob& job) {
  return {.image = job.image, .work = job.work, .output = job.output};
}

void BlurImage(const RenderState& state, const FrameJob& job, float scale) {
  const FrameSizes sizes = SizesOf(job);
  if (job.off_screen && job.source_format == kFormatNv21) {
    PassNv21Pack(state, sizes);
  } else if (job.off_screen && !IsReadyTexture(job)) {
    PassPlanarYuvPack(state, sizes);
  }
  PassBlurImage(state, sizes, ImageTexture(state, job), scale);
}

// Weights from depth, cleaned of blurred specks below three pixels by an
// opening, and softened.
void MakeWeights(const RenderState& state, const FrameJob& job, float scale) {
  const FrameSizes sizes = SizesOf(job);
  PassDepthWeight(state, sizes,
                  {.mouse_x = static_cast<float>(job.focus_x) /
                              static_cast<float>(job.image.width),
                   .mouse_y = static_cast<float>(job.focus_y) /
                              static_cast<float>(job.image.height),
                   .focus_plane = static_cast<float>(job.depth->focus),
                   .min_depth = static_cast<float>(job.depth->min),
                   .max_depth = static_cast<float>(job.depth->max),
                   .focal_length = job.focal_length});
  PassErodeWeights(state, sizes);
  PassDilateWeights(state, sizes);
  PassBlurWeights(state, sizes, scale);
}

void Composite(const RenderState& state, const FrameJob& job) {
  PassComposite(state, SizesOf(job),
                {.image_texture = ImageTexture(state, job),
                 .weight_texture = job.depth != nullptr
                                       ? state.targets.texture(kBlurredWeights)
                                       : state.inputs[kInputRefocus].get(),
                 .off_screen = job.off_screen,
                 .portrait = job.portrait});
}

ImageSize CurrentViewport() {
  std::array<GLint, 4> viewport = {};
  glGetIntegerv(GL_VIEWPORT, viewport.data());
  return {viewport[2], viewport[3]};
}

// Dumps the framebuffer at the size of the viewport that the frame began with.
void DumpOutput(ImageSize size, const DumpName& name) {
  if (!DumpsAreOn()) return;
  Buffer pixels;
  if (!pixels.Reserve(ByteCount(size.width, size.height, 4))) return;
  glReadPixels(0, 0, size.width, size.height, GL_RGBA, GL_UNSIGNED_BYTE,
               pixels.bytes());
  DumpFrame({pixels.bytes(), pixels.size(), size.width, size.height, "Output"},
            name);
}

}  // namespace

void CreateImages(RenderState& state, ImageSize preview,
                  GraphicBuffer* graphic_buffer) {
  for (Texture& input : state.inputs) input.Generate();
  for (Texture& picture : state.debug_pictures) picture.Generate();
  state.targets.Create(preview.width, preview.height, graphic_buffer);
}

void DeleteRenderState(RenderState& state) {
  for (Texture& picture : state.debug_pictures) picture.Delete();
  for (Texture& input : state.inputs) input.Delete();
  state.targets.DeleteTextures();
  state.targets.DeleteFramebuffers();
  state.programs.DeleteAll();
}

void ForgetRenderState(RenderState& state) {
  for (Texture& picture : state.debug_pictures) picture.Forget();
  for (Texture& input : state.inputs) input.Forget();
  state.targets.Forget();
  state.programs.Forget();
}

void RenderFrame(const RenderState* state, const FrameJob& job) {
  StepClock clock;
  const ImageSize viewport = state != nullptr ? CurrentViewport() : ImageSize{};
  ZUQEL_LOG("*VX* zuQelRT_GL initialize shader_bypass(1) = %d (ms)",
            clock.Lap());
  if (state != nullptr && !job.off_screen) PassNv21ToRgb(*state, SizesOf(job));
  if (job.bypass) {
    if (state != nullptr && !job.off_screen) {
      PassBypass(*state, SizesOf(job), job.portrait);
    }
    return;
  }

  ZUQEL_LOG("*VX* zuQelRT_GL minimize depth shader_bypass(2) = %d (ms)",
            clock.Lap());
  const float scale = BlurScale(job.f_number);
  ZUQEL_LOG("f number = %f, scale = %f", static_cast<double>(job.f_number),
            static_cast<double>(scale));
  if (state != nullptr) BlurImage(*state, job, scale);
  ZUQEL_LOG("*VX* zuQelRT_GL depth blur shader_gauss(1) = %d (ms)",
            clock.Lap());

  if (state != nullptr && job.depth != nullptr) MakeWeights(*state, job, scale);
  ZUQEL_LOG("*VX* zuQelRT_GL minimize depth shader_bypass(3) = %d (ms)",
            clock.Lap());
  if (state != nullptr) {
    Composite(*state, job);
    DrawDebugPictures(
        state->programs[ProgramRole::CopyProgram], state->debug_pictures,
        state->targets.framebuffer(kOutputTarget), *job.debug_pictures);
  }
  ZUQEL_LOG("*VX* zuQelRT_GL refocus(2) = %d (ms)", clock.Lap());
  if (state != nullptr) DumpOutput(viewport, job.dump_name);
}

}  // namespace zuqel
