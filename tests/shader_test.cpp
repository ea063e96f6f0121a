// Every program of the catalogue against plain arithmetic.
#include <android/log.h>
#include <gtest/gtest.h>

#include <functional>
#include <numeric>
#include <utility>

#include "compare.h"
#include "test_scene.h"
#include "test_session.h"

namespace zuqel {
namespace {

using reference::Image;
using reference::Point;
using reference::Rgba;
using reference::Size;
using reference::Turn;

using Inputs = std::vector<std::pair<const char*, const Image*>>;
using Uniforms = std::vector<std::pair<const char*, double>>;

constexpr Size kMaps = {320, 240};

ImageTexture Upload(const Image& image) {
  ImageTexture texture = ImageTexture::Generate();
  texture.Upload(GL_RGBA, {image.size.width, image.size.height},
                 image.rgba.data());
  texture.Bind(image.linear ? GL_LINEAR : GL_NEAREST);
  return texture;
}

Image PatternImage(Pattern pattern, Size size, int seed) {
  return FromBytes(PatternBytes(pattern, size.width * 4, size.height, seed),
                   size, 4);
}

class ShaderTest : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    __android_log_set_minimum_priority(ANDROID_LOG_SILENT);
  }
  void SetUp() override { ASSERT_EQ(session_.status(), ZUQEL_SUCCESS); }
  void TearDown() override { EXPECT_EQ(glGetError(), GLenum{GL_NO_ERROR}); }

  // Draws upright into the first `size` pixels of a target; the same with
  // `shade`. Returns what the GPU made.
  Image Check(ProgramRole role, Size size, const Inputs& inputs,
              const Uniforms& uniforms, Tolerance tolerance,
              const std::function<Rgba(Point)>& shade) {
    RenderState& state = RunningRender();
    LinkedProgram& program = state.programs[role];
    glUseProgram(program.name());
    std::vector<ImageTexture> textures;
    for (const auto& [sampler, image] : inputs) {
      const auto unit = static_cast<GLint>(textures.size());
      glActiveTexture(GL_TEXTURE0 + static_cast<GLenum>(unit));
      textures.push_back(Upload(*image));
      glUniform1i(glGetUniformLocation(program.name(), sampler), unit);
    }
    for (const auto& [name, value] : uniforms) {
      glUniform1f(glGetUniformLocation(program.name(), name),
                  static_cast<GLfloat>(value));
    }
    const GLuint target = state.targets.framebuffer(kOutputTarget);
    glBindFramebuffer(GL_FRAMEBUFFER, target);
    glViewport(0, 0, size.width, size.height);
    drawing_.DrawQuad(program, Quad::kUpright);
    Image gpu = ReadPixels(target, size);
    EXPECT_TRUE(IsNear(gpu.rgba, DrawRange(size, size, Turn::kUpright, shade),
                       tolerance))
        << "program " << static_cast<int>(role) << ", width " << size.width;
    return gpu;
  }

  ScopedSession session_;
  Drawing drawing_{IsEs3()};
};

TEST_F(ShaderTest, ProgramsGiveThePlainResult) {
  using enum ProgramRole;
  for (const Size size : {Size{1, 1}, Size{3, 5}, Size{127, 31}, kMaps}) {
    const Point texel = {1.0 / size.width, 1.0 / size.height};
    const auto scaled = [&](double scale) {
      return Uniforms{{"fWidth", size.width},
                      {"fHeight", size.height},
                      {"scale", scale},
                      {"myscale", scale}};
    };
    for (const Pattern pattern : {Pattern::kNoise, Pattern::kMask}) {
      const Image a = PatternImage(pattern, size, 1);
      const Image b =
          PatternImage(pattern, {size.width / 2 + 1, size.height / 2 + 1}, 2);
      const Image c = PatternImage(pattern, {7, 5}, 3);
      Image texels = a;
      texels.linear = false;  // so that equal neighbours stay equal
      const Inputs image = {{"inputImageTexture", &a}};
      const Inputs texel_image = {{"inputImageTexture", &texels}};
      const Inputs nv21 = {{"inputYTexture", &a}, {"inputUVTexture", &b}};
      const Inputs planes = {
          {"inputYTexture", &a}, {"inputUTexture", &b}, {"inputVTexture", &c}};
      const Inputs layers = {{"inputImageTexture", &a},
                             {"blurTexture1", &b},
                             {"refocusTexture", &c}};
      Check(CopyProgram, size, image, {}, kRounding,
            [&](Point at) { return Sample(a, at); });
      for (const double scale : {0.1, 1.0, 3.6}) {
        Check(BlurHProgram, size, image, scaled(scale), kRounding,
              [&](Point at) {
                return Gaussian5(a, at, {scale * texel.s, 0});
              });
        Check(BlurVProgram, size, image, scaled(scale), kRounding,
              [&](Point at) {
                return Gaussian5(a, at, {0, scale * texel.t});
              });
      }
      Check(Max3x3Program, size, texel_image, scaled(1), kExact,
            [&](Point at) { return Pick3x3(texels, at, texel, true); });
      Check(Min3x3Program, size, texel_image, scaled(1), kExact,
            [&](Point at) { return Pick3x3(texels, at, texel, false); });
      Check(CompositeProgram, size, layers, {}, kRounding,
            [&](Point at) { return Composite(a, b, c, at); });
      Check(Nv21ToRgbProgram, size, nv21, {}, kRounding,
            [&](Point at) { return Nv21ToRgb(a, b, at); });
      Check(Nv21PackProgram, size, nv21, {}, kRounding, [&](Point at) {
        return Rgba{Sample(a, at).r, Sample(b, at).a, Sample(b, at).r, 1};
      });
      Check(PlanarYuvPackProgram, size, planes, {}, kRounding, [&](Point at) {
        return Rgba{Sample(a, at).r, Sample(b, at).r, Sample(c, at).r, 1};
      });
    }
  }
}

struct WeightRow {
  const char* name;
  reference::DepthRange range;
  // Worked out by hand for disparity 255, which decodes to 256.
  int clear, all_in_focus;
};

TEST_F(ShaderTest, WeightsOfAllDisparities) {
  constexpr Size kSize = {32, 32};
  std::vector<uint16_t> disparity(kSize.area());
  std::iota(disparity.begin(), disparity.end(), uint16_t{0});
  Image depth = FromDisparity(disparity, kSize);
  depth.linear = false;
  for (const WeightRow& row : std::to_array<WeightRow>({
           {"at 30 percent", {259, 249, 300}, 0, 0},
           {"at 70 percent", {263, 253, 300}, 255, 0},
           {"behind", {279, 229, 300}, 102, 255},
           {"in front", {233, 200, 283}, 53, 0},
           {"focus above the range", {2000, 229, 279}, 102, 255},
           {"focus below the range", {0, 233, 283}, 53, 20},
           {"a range of one value", {0, 256, 256}, 0, 0},
           {"end of the sharp share", {286, 186, 336}, 0, 0},
           {"ramp behind", {291, 191, 341}, 32, 166},
           {"ramp in front", {236, 236, 336}, 0, 153},
           {"long ramp behind", {900, 100, 900}, 255, 255},
           {"long ramp in front", {50, 0, 1023}, 0, 141},
       })) {
    const Uniforms range = {{"focusPlane", row.range.focus},
                            {"min_depth", row.range.min},
                            {"max_depth", row.range.max}};
    const auto check = [&](ProgramRole role, auto shade, int weight_of_255) {
      const Image gpu =
          Check(role, kSize, {{"depthTexture", &depth}}, range, kRendered,
                [&](Point at) { return shade(Sample(depth, at), row.range); });
      EXPECT_NEAR(gpu.rgba[size_t{4} * 255], weight_of_255, 1) << row.name;
    };
    check(ProgramRole::DepthWeightProgram, reference::DepthWeight, row.clear);
    check(ProgramRole::AllInFocusWeightProgram, reference::AllInFocusWeight,
          row.all_in_focus);
  }
}

}  // namespace
}  // namespace zuqel
