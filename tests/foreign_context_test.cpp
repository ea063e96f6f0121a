// Frames and debug pictures in a context that the session's GL objects do not
// live in, and without one: nothing is drawn, and what is there stays.
#include <GLES2/gl2.h>
#include <gtest/gtest.h>

#include <array>
#include <vector>

#include "fresh_session.h"
#include "scoped_property.h"

namespace zuqel {
namespace {

using ForeignContextTest = FreshSessionTest;

constexpr int kTextures = 64;  // more names than a session has

// Textures of one pixel, from name 1 on as another context's are.
void MakeTextures() {
  std::array<GLuint, kTextures> names = {};
  glGenTextures(kTextures, names.data());
  for (const GLuint name : names) {
    const std::array<uint8_t, 4> pixel = {static_cast<uint8_t>(name), 7, 7, 7};
    glBindTexture(GL_TEXTURE_2D, name);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, 1, 1, 0, GL_RGBA, GL_UNSIGNED_BYTE,
                 pixel.data());
  }
}

std::vector<uint8_t> ReadTextures() {
  GLuint framebuffer = 0;
  glGenFramebuffers(1, &framebuffer);
  glBindFramebuffer(GL_FRAMEBUFFER, framebuffer);
  std::vector<uint8_t> pixels(size_t{4} * kTextures);
  for (GLuint i = 0; i < kTextures; ++i) {
    glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D,
                           i + 1, 0);
    glReadPixels(0, 0, 1, 1, GL_RGBA, GL_UNSIGNED_BYTE, &pixels[size_t{4} * i]);
  }
  glDeleteFramebuffers(1, &framebuffer);
  return pixels;
}

// All ten of 1 x 1.
std::array<DebugPicture, 10> Pictures(const uint8_t* pixel) {
  std::array<DebugPicture, 10> pictures = {};
  pictures.fill({pixel, 1, 1, 0, 0, 8, 8});
  return pictures;
}

TEST_F(ForeignContextTest, NothingIsDrawnWhereTheSessionDoesNotLive) {
  const GLInitInfo info = SmallInfo();
  const ScopedProperty dot("persist.zu.LVGLbokeh.FocusDot", "1");
  ASSERT_EQ(InitSession(info), 0U);
  EGLDisplay display = eglGetCurrentDisplay();
  EGLContext home = eglGetCurrentContext();
  EGLSurface home_surface = eglGetCurrentSurface(EGL_DRAW);
  constexpr std::array<uint8_t, 4> kPixel = {200, 0, 0, 255};
  const auto pictures = Pictures(kPixel.data());
  EXPECT_EQ(zuQelRT_GLShowDebugPicture(1, 0), 0U);

  // A frame at home first: there is one that a later read-back could repeat.
  EXPECT_EQ(CallerFrame(info).Render({}), 0U);
  {
    const CallerContext foreign(8, 8);
    ASSERT_NE(eglGetCurrentContext(), home);
    MakeTextures();
    const auto before = ReadTextures();
    for (const bool without : {false, true}) {
      if (without) {
        eglMakeCurrent(display, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
      }
      for (const bool from_depth : {false, true}) {
        const CallerFrame frame(info);
        const auto contents = frame.Contents();
        TakeLog();
        EXPECT_EQ(frame.Render({.from_depth = from_depth}), 0U);
        EXPECT_NE(TakeLog().find("*VX* zuQelRT_GL refocus(2)"),
                  std::string::npos);
        EXPECT_EQ(frame.Contents(), contents) << "without " << without;
      }
      TakeLog();
      EXPECT_EQ(zuQelRT_GLSetDebugPicture(pictures.data()), 0U);
      EXPECT_NE(TakeLog().find("i = 9, picture[i].pData"), std::string::npos);
      if (without) continue;
      EXPECT_EQ(ReadTextures(), before);
    }
    eglMakeCurrent(display, home_surface, home_surface, home);
    const CallerFrame frame(info);
    const auto contents = frame.Contents();
    EXPECT_EQ(zuQelRT_GLSetDebugPicture(pictures.data()), 0U);
    EXPECT_EQ(frame.Render({}), 0U);
    EXPECT_NE(frame.Contents(), contents) << "back home";
  }
}

}  // namespace
}  // namespace zuqel
