// Every program of the catalogue, and the passes that have arithmetic of their
// own, against plain arithmetic.
#include <android/log.h>
#include <gtest/gtest.h>

#include <array>
#include <initializer_list>
#include <memory>
#include <optional>

#include "compare.h"
#include "gl/context.h"
#include "gl/gl_state.h"
#include "gl/texture.h"
#include "pin_driver.h"
#include "read_pixels.h"
#include "reference_render.h"
#include "render/frame_renderer.h"
#include "render/passes.h"
#include "test_scene.h"

namespace zuqel {
namespace {

using reference::DepthRange;
using reference::Filter;
using reference::Image;
using reference::Point;
using reference::Rgba;
using reference::Size;
using reference::Turn;

using Samples = std::span<const reference::Texture>;

// An uploaded picture and the reference's view of the same bytes.
struct Picture {
  Texture texture;
  Image image{{}};
  Filter filter = Filter::kLinear;
};

Picture Upload(std::span<const uint8_t> bytes, Size size, int channels,
               Filter filter) {
  constexpr std::array kFormats = {0, GL_LUMINANCE, GL_LUMINANCE_ALPHA, 0,
                                   GL_RGBA};
  Picture picture = {{}, reference::FromBytes(bytes, size, channels), filter};
  picture.texture.Generate();
  UploadTexture(
      picture.texture.get(), kFormats.at(static_cast<size_t>(channels)),
      size.width, size.height, bytes.data(),
      {filter == Filter::kLinear ? GL_LINEAR : GL_NEAREST, GL_CLAMP_TO_EDGE});
  return picture;
}

struct Uniform {
  const char* name;
  float value;
};

// One context and one set of programs for all tests.
class ShaderTest : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    __android_log_set_minimum_priority(ANDROID_LOG_SILENT);
    CreateContext(slot_);
    PinDriverLibraries();
    if (slot_.context == EGL_NO_CONTEXT) return;
    plain_state_.emplace();
    CreateRenderState(state_, {kWidth, kHeight});
  }
  static void TearDownTestSuite() {
    if (slot_.context == EGL_NO_CONTEXT) return;
    DeleteRenderState(state_);
    plain_state_.reset();
    DeleteContext(slot_, 0);
  }
  void SetUp() override {
    if (slot_.context == EGL_NO_CONTEXT) GTEST_SKIP() << "no ES 2.0 context";
  }
  void TearDown() override { EXPECT_EQ(glGetError(), GLenum{GL_NO_ERROR}); }

  // Draws upright into a fresh target of `size`.
  static std::vector<uint8_t> DrawGpu(
      ProgramRole role,
      std::span<const std::pair<const char*, const Picture*>> inputs,
      std::initializer_list<Uniform> uniforms, Size size) {
    const GLuint program = state_.programs[role];
    glUseProgram(program);
    GLint unit = 0;
    for (const auto& [sampler, picture] : inputs) {
      glActiveTexture(GL_TEXTURE0 + static_cast<GLenum>(unit));
      glBindTexture(GL_TEXTURE_2D, picture->texture.get());
      glUniform1i(glGetUniformLocation(program, sampler), unit++);
    }
    for (const Uniform& uniform : uniforms) {
      glUniform1f(glGetUniformLocation(program, uniform.name), uniform.value);
    }
    Texture target;
    target.Generate();
    glActiveTexture(GL_TEXTURE7);
    UploadTexture(target.get(), GL_RGBA, size.width, size.height, nullptr, {});
    Framebuffer framebuffer;
    framebuffer.Generate();
    glBindFramebuffer(GL_FRAMEBUFFER, framebuffer.get());
    glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D,
                           target.get(), 0);
    glViewport(0, 0, size.width, size.height);
    DrawQuad(program, kQuadUpright);
    return ReadPixels(framebuffer.get(), size);
  }

  static constexpr int kWidth = 322;
  static constexpr int kHeight = 182;
  static inline ContextSlot slot_;
  static inline std::optional<PlainGlState> plain_state_;
  static inline RenderState state_;
};

constexpr std::array<Size, 5> kSizes = {
    {{1, 1}, {3, 5}, {33, 17}, {127, 31}, {320, 240}}};

struct Step {
  float scale;
  Point at;  // one texel of the input
};

struct SamplerRow {
  const char* name = nullptr;
  int channels = 0;
  int divisor = 0;  // of the target's size
};

struct ProgramRow {
  const char* name;
  ProgramRole role;
  std::array<SamplerRow, 3> samplers;  // as many as are named
  Rgba (*shade)(Samples in, Point at, const Step& step);
  std::array<float, 3> scales = {1};  // as many as are not 0
};

constexpr std::array<ProgramRow, 8> kPrograms = {{
    {"copy",
     ProgramRole::CopyProgram,
     {{{"inputImageTexture", 4, 1}}},
     [](Samples in, Point at, const Step&) { return Sample(in[0], at); }},
    {"copy, enlarged",
     ProgramRole::CopyProgram,
     {{{"inputImageTexture", 4, 3}}},
     [](Samples in, Point at, const Step&) { return Sample(in[0], at); }},
    {"horizontal blur",
     ProgramRole::BlurHProgram,
     {{{"inputImageTexture", 4, 1}}},
     [](Samples in, Point at, const Step& step) {
       return Gaussian5(in[0], at, {step.scale * step.at.s, 0});
     },
     {0.1F, 1, 3.6F}},
    {"vertical blur",
     ProgramRole::BlurVProgram,
     {{{"inputImageTexture", 4, 1}}},
     [](Samples in, Point at, const Step& step) {
       return Gaussian5(in[0], at, {0, step.scale * step.at.t});
     },
     {0.1F, 1, 3.6F}},
    {"composite",
     ProgramRole::CompositeProgram,
     {{{"inputImageTexture", 4, 1},
       {"blurTexture1", 4, 2},
       {"refocusTexture", 4, 1}}},
     [](Samples in, Point at, const Step&) {
       return Composite(in[0], in[1], in[2], at);
     }},
    {"NV21 to RGB",
     ProgramRole::Nv21ToRgbProgram,
     {{{"inputYTexture", 1, 1}, {"inputUVTexture", 2, 2}}},
     [](Samples in, Point at, const Step&) {
       return Nv21ToRgb(in[0], in[1], at);
     }},
    {"NV21 pack",
     ProgramRole::Nv21PackProgram,
     {{{"inputYTexture", 1, 1}, {"inputUVTexture", 2, 2}}},
     [](Samples in, Point at, const Step&) {
       const Rgba uv = Sample(in[1], at);
       return Rgba{Sample(in[0], at).r, uv.a, uv.r, 1};
     }},
    {"planar pack",
     ProgramRole::PlanarYuvPackProgram,
     {{{"inputYTexture", 1, 1},
       {"inputUTexture", 1, 2},
       {"inputVTexture", 1, 2}}},
     [](Samples in, Point at, const Step&) {
       return Rgba{Sample(in[0], at).r, Sample(in[1], at).r,
                   Sample(in[2], at).r, 1};
     }},
}};

TEST_F(ShaderTest, LinearProgramsGiveThePlainResult) {
  for (const ProgramRow& row : kPrograms) {
    for (const Size size : kSizes) {
      for (const Pattern pattern : {Pattern::kNoise, Pattern::kBlocks}) {
        std::vector<Picture> pictures;
        for (const SamplerRow& in : row.samplers) {
          if (in.name == nullptr) break;
          const Size in_size = {std::max(size.width / in.divisor, 1),
                                std::max(size.height / in.divisor, 1)};
          const auto seed = static_cast<uint32_t>(pictures.size());
          pictures.push_back(
              Upload(PatternBytes(pattern, in_size.width * in.channels,
                                  in_size.height, seed),
                     in_size, in.channels, Filter::kLinear));
        }
        std::vector<std::pair<const char*, const Picture*>> inputs;
        std::vector<reference::Texture> samples;
        for (size_t i = 0; i < pictures.size(); ++i) {
          inputs.emplace_back(row.samplers[i].name, &pictures[i]);
          samples.push_back({&pictures[i].image});
        }
        for (const float scale : row.scales) {
          if (scale == 0) break;
          Image expected(size);
          const Step step = {scale, {1.0 / size.width, 1.0 / size.height}};
          Draw(expected, size, Turn::kUpright,
               [&](Point at) { return row.shade(samples, at, step); });
          EXPECT_TRUE(
              IsNear(std::string(row.name) + " " + std::to_string(size.width) +
                         "x" + std::to_string(size.height),
                     DrawGpu(row.role, inputs,
                             {{"fWidth", static_cast<float>(size.width)},
                              {"fHeight", static_cast<float>(size.height)},
                              {"myscale", scale}},
                             size),
                     ToBytes(expected), size.width, 4, kRounding));
        }
      }
    }
  }
}

// Red has few levels, so that most neighbourhoods have several candidates; the
// other channels tell which one was taken.
TEST_F(ShaderTest, PicksTheFirstOfEqualNeighbours) {
  for (const Size size : kSizes) {
    for (const int levels : {1, 2, 4, 256}) {
      auto bytes = PatternBytes(Pattern::kNoise, size.width * 4, size.height,
                                static_cast<uint32_t>(levels));
      for (size_t i = 0; i < bytes.size(); i += 4) {
        bytes[i] =
            static_cast<uint8_t>(bytes[i] / (256 / levels) * (255 / levels));
      }
      // At texel centres; nearest keeps equal values equal.
      const Picture picture = Upload(bytes, size, 4, Filter::kNearest);
      for (const bool largest : {true, false}) {
        Image expected(size);
        Draw(expected, size, Turn::kUpright, [&](Point at) {
          return Pick3x3({&picture.image, Filter::kNearest}, at,
                         {1.0 / size.width, 1.0 / size.height}, largest);
        });
        EXPECT_TRUE(
            IsNear(largest ? "largest" : "smallest",
                   DrawGpu(largest ? ProgramRole::Max3x3Program
                                   : ProgramRole::Min3x3Program,
                           {{{"inputImageTexture", &picture}}},
                           {{"fWidth", static_cast<float>(size.width)},
                            {"fHeight", static_cast<float>(size.height)},
                            {"scale", 1}},
                           size),
                   ToBytes(expected), size.width, 4, kExact));
      }
    }
  }
}

class WeightTest : public ShaderTest {
 protected:
  // Weights of the disparities 0 to 1023.
  static std::vector<uint8_t> Weights(ProgramRole role,
                                      const DepthRange& range) {
    std::vector<uint8_t> packed;
    for (int d = 0; d < 1024; ++d) {
      packed.insert(packed.end(), {static_cast<uint8_t>(d & 255),
                                   static_cast<uint8_t>(d >> 8), 0, 0});
    }
    const Picture picture = Upload(packed, kAll, 4, Filter::kNearest);
    return DrawGpu(role, {{{"depthTexture", &picture}}},
                   {{"focusPlane", range.focus},
                    {"min_depth", range.min},
                    {"max_depth", range.max}},
                   kAll);
  }

  static constexpr Size kAll = {32, 32};
};

constexpr std::array<DepthRange, 12> kRanges = {{{512, 100, 900},
                                                 {100, 100, 900},
                                                 {900, 100, 900},
                                                 {1000, 100, 900},
                                                 {50, 100, 900},
                                                 {300, 300, 300},
                                                 {305, 300, 310},
                                                 {0, 0, 1023},
                                                 {0, 0, 0},
                                                 {350, 300, 1000},
                                                 {600, 0, 1022},
                                                 {1023, 1, 1023}}};

// A driver's float of a byte may be 3e-7 off; the decoding multiplies that by
// 65536, and the steepest slope has 64 levels for a step of disparity.
constexpr Tolerance kDecoded = {2, 1.0};

TEST_F(WeightTest, AllDisparitiesGiveThePlainWeight) {
  for (const ProgramRole role : {ProgramRole::DepthWeightProgram,
                                 ProgramRole::AllInFocusWeightProgram}) {
    const bool clear = role == ProgramRole::DepthWeightProgram;
    for (const DepthRange& range : kRanges) {
      Image expected(kAll);
      for (int d = 0; d < 1024; ++d) {
        const Rgba depth = {static_cast<float>(d & 255) / 255,
                            static_cast<float>(d >> 8) / 255, 0, 0};
        const float weight =
            clear ? DepthWeight(depth, range) : AllInFocusWeight(depth, range);
        expected.at(d % 32, d / 32) =
            reference::Quantised({weight / 255, 0, 0, 1});
      }
      EXPECT_TRUE(IsNear(std::string(clear ? "clear" : "all in focus") +
                             " weights, focus " + std::to_string(range.focus),
                         Weights(role, range), ToBytes(expected), kAll.width, 4,
                         kDecoded));
    }
  }
}

struct WeightRow {
  const char* name;
  ProgramRole role;
  DepthRange range;
  int weight;
};

constexpr auto kClear = ProgramRole::DepthWeightProgram;
constexpr auto kAllIn = ProgramRole::AllInFocusWeightProgram;

// Worked out by hand for disparity 255, which decodes to 256.
constexpr std::array<WeightRow, 14> kWeightRows = {{
    {"at 30 percent", kClear, {259, 249, 300}, 0},
    {"at 70 percent", kClear, {263, 253, 300}, 255},
    {"at 46 percent behind", kClear, {279, 229, 300}, 102},
    {"the same distance in front", kClear, {233, 200, 283}, 53},
    {"focus above the range", kClear, {2000, 229, 279}, 102},
    {"focus below the range", kClear, {0, 233, 283}, 53},
    {"a range of one value", kClear, {0, 256, 256}, 0},
    {"a range of one value", kAllIn, {0, 256, 256}, 0},
    {"sharp share, its last value", kAllIn, {286, 186, 336}, 0},
    {"ramp behind", kAllIn, {291, 191, 341}, 166},
    {"past the ramp behind", kAllIn, {306, 206, 356}, 255},
    {"ramp in front", kAllIn, {236, 236, 336}, 153},
    {"past the ramp in front", kAllIn, {206, 206, 286}, 255},
    {"behind a near focus", kAllIn, {260, 250, 336}, 0},
}};

TEST_F(WeightTest, WeightsWorkedOutByHand) {
  for (const WeightRow& row : kWeightRows) {
    EXPECT_EQ(Weights(row.role, row.range)[size_t{255} * 4], row.weight)
        << row.name;
  }
}

TEST_F(ShaderTest, CompositeEndsAreItsInputs) {
  constexpr Size kSize = {33, 17};
  const auto sharp = PatternBytes(Pattern::kNoise, kSize.width * 4, 17, 1);
  const auto blurred = PatternBytes(Pattern::kNoise, kSize.width * 4, 17, 2);
  const Picture sharp_in = Upload(sharp, kSize, 4, Filter::kNearest);
  const Picture blurred_in = Upload(blurred, kSize, 4, Filter::kNearest);
  for (const uint8_t weight : {uint8_t{0}, uint8_t{255}}) {
    const std::array<uint8_t, 4> bytes = {weight, 0, 0, 128};
    const Picture weights = Upload(bytes, {1, 1}, 4, Filter::kLinear);
    EXPECT_TRUE(IsNear(weight == 0 ? "weight 0" : "weight 1",
                       DrawGpu(ProgramRole::CompositeProgram,
                               {{{"inputImageTexture", &sharp_in},
                                 {"blurTexture1", &blurred_in},
                                 {"refocusTexture", &weights}}},
                               {}, kSize),
                       weight == 0 ? sharp : blurred, kSize.width, 4, kExact));
  }
}

TEST_F(ShaderTest, SmallestBlurKeepsASmoothImage) {
  constexpr Size kSize = {kReducedWidth, kReducedHeight};
  const auto ramp =
      PatternBytes(Pattern::kRamp, kSize.width * 4, kSize.height, 1);
  const Picture source = Upload(ramp, kSize, 4, Filter::kLinear);
  const GLuint target = state_.targets.framebuffer(kBlurredImage);
  PassSeparableBlur(state_, source.texture.get(), target,
                    {kSize.width, kSize.height}, 0.1F);
  EXPECT_TRUE(IsNear("blur of a tenth", ReadPixels(target, kSize), ramp,
                     kSize.width, 4, kRounding));
}

struct BlurRow {
  const char* name;
  Size source, size, target;
  float scale;
};

constexpr std::array<BlurRow, 4> kBlurRows = {{
    {"image", {322, 182}, {640, 480}, {640, 480}, 3.6F},
    {"weights", {320, 240}, {320, 240}, {320, 240}, 3.6F},
    {"small viewport", {320, 240}, {160, 121}, {320, 240}, 2},
    {"viewport past the target", {33, 17}, {400, 300}, {320, 240}, 1},
}};

TEST_F(ShaderTest, BlurPassIsUprightAndInItsViewport) {
  for (const BlurRow& row : kBlurRows) {
    const auto bytes = PatternBytes(Pattern::kNoise, row.source.width * 4,
                                    row.source.height, 3);
    const Picture source = Upload(bytes, row.source, 4, Filter::kLinear);
    const GLuint target = state_.targets.framebuffer(
        row.target.width == 640 ? kBlurredImage : kBlurredWeights);
    PassSeparableBlur(state_, source.texture.get(), target,
                      {row.size.width, row.size.height}, row.scale);
    EXPECT_TRUE(IsNear(row.name, ReadPixels(target, row.target),
                       ToBytes(reference::SeparableBlur(
                           {&source.image}, row.size, row.scale, row.target)),
                       row.target.width, 4, kRendered));
  }
}

TEST_F(ShaderTest, HeightOfZeroCountsAsOne) {
  const auto luma = PatternBytes(Pattern::kNoise, kWidth, kHeight, 1);
  UploadTexture(state_.inputs[kInputY].get(), GL_LUMINANCE, kWidth, kHeight,
                luma.data(), {});
  UploadTexture(state_.inputs[kInputUV].get(), GL_LUMINANCE_ALPHA, 1, 1,
                luma.data(), {});
  PassNv21Pack(state_, {kWidth, 0});
  const Image y = reference::FromBytes(luma, {kWidth, kHeight}, 1);
  const Rgba uv = reference::FromBytes(luma, {1, 1}, 2).at(0, 0);
  Image expected({kWidth, kHeight});
  Draw(expected, {kWidth, 1}, Turn::kUpright, [&](Point at) {
    return Rgba{Sample({&y}, at).r, uv.a, uv.r, 1};
  });
  EXPECT_TRUE(IsNear(
      "one row", ReadPixels(state_.targets.framebuffer(0), {kWidth, kHeight}),
      ToBytes(expected), kWidth, 4, kRounding));
}

}  // namespace
}  // namespace zuqel
