// The fake driver is the one that is called, and notices what others forgive.
#include <GLES3/gl3.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "caller_state.h"
#include "fake_driver/fake_driver.h"
#include "scoped_property.h"
#include "test_session.h"

namespace zuqel {
namespace {

using fake_driver::Alive;
using fake_driver::Call;
using fake_driver::FailingCall;
using fake_driver::TakeMisuse;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::array<uint8_t, 64> kPixels = {1, 2, 3};

GLuint MakeTexture(GLsizei size, const void* pixels) {
  GLuint name = 0;
  glGenTextures(1, &name);
  glBindTexture(GL_TEXTURE_2D, name);
  glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
  glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, size, size, 0, GL_RGBA,
               GL_UNSIGNED_BYTE, pixels);
  return name;
}

void DrawInto(GLuint texture) {
  GLuint name = 0;
  glGenFramebuffers(1, &name);
  glBindFramebuffer(GL_FRAMEBUFFER, name);
  glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D,
                         texture, 0);
}

// A program that samples unit 0 where `position` says, in use.
void UseProgram() {
  const GLuint program = glCreateProgram();
  const std::array sources = {
      "attribute vec4 position; void main() { gl_Position = position; }",
      "uniform sampler2D image; uniform float scale;"
      "void main() { gl_FragColor = scale * texture2D(image, vec2(0)); }"};
  for (size_t i = 0; i < sources.size(); ++i) {
    const GLuint shader =
        glCreateShader(i == 0 ? GL_VERTEX_SHADER : GL_FRAGMENT_SHADER);
    glShaderSource(shader, 1, &sources[i], nullptr);
    glCompileShader(shader);
    glAttachShader(program, shader);
    glDeleteShader(shader);
  }
  glBindAttribLocation(program, 0, "position");
  glLinkProgram(program);
  glUseProgram(program);
}

void DrawTriangle(const void* vertices = kPixels.data()) {
  constexpr std::array<GLushort, 3> kIndices = {0, 1, 2};
  glEnableVertexAttribArray(0);
  glVertexAttribPointer(0, 2, GL_FLOAT, GL_FALSE, 0, vertices);
  glDrawElements(GL_TRIANGLES, 3, GL_UNSIGNED_SHORT, kIndices.data());
}

// What comes out of the target's first pixels.
std::array<uint8_t, 16> ReadTarget() {
  std::array<uint8_t, 16> pixels = {};
  glReadPixels(0, 0, 2, 2, GL_RGBA, GL_UNSIGNED_BYTE, pixels.data());
  return pixels;
}

struct MisuseRow {
  const char* noted;
  void (*commit)(const CallerContext& context);
};
constexpr auto kMisuse = std::to_array<MisuseRow>({
    {"glBindTexture: no such name in this context",
     [](const CallerContext&) { glBindTexture(GL_TEXTURE_2D, 1U << 30); }},
    {"glBindTexture: no such name in this context",
     [](const CallerContext& context) {
       const GLuint name = MakeTexture(2, nullptr);
       eglMakeCurrent(CallerContext::OpenDisplay(), nullptr, nullptr, nullptr);
       const CallerContext other;
       EXPECT_TRUE(other.is_current() && !context.is_current());
       glBindTexture(GL_TEXTURE_2D, name);
     }},
    {"glDeleteTextures: no such name in this context",
     [](const CallerContext&) {
       const GLuint name = MakeTexture(2, nullptr);
       glDeleteTextures(1, &name);
       glDeleteTextures(1, &name);
     }},
    {"glDeleteProgram: error 0x501",
     [](const CallerContext&) { glDeleteProgram(1U << 30); }},
    {"glFlush: no context is current",
     [](const CallerContext&) {
       eglMakeCurrent(CallerContext::OpenDisplay(), nullptr, nullptr, nullptr);
       glFlush();
     }},
    {"glDrawElements: draws without a program",
     [](const CallerContext&) { DrawTriangle(); }},
    {"glUniform1f: error 0x502",
     [](const CallerContext&) { glUniform1f(-1, 1); }},
    {"glUniform1f: error 0x502",  // of a sampler
     [](const CallerContext&) {
       UseProgram();
       glUniform1f(0, 1);
     }},
    {"glUseProgram: error 0x502",
     [](const CallerContext&) { glUseProgram(glCreateProgram()); }},
    {"glDrawElements: samples what it draws into",
     [](const CallerContext&) {
       DrawInto(MakeTexture(2, kPixels.data()));
       UseProgram();
       DrawTriangle();
     }},
    {"glDrawElements: samples what nobody has written",
     [](const CallerContext&) {
       MakeTexture(2, nullptr);
       UseProgram();
       DrawTriangle();
     }},
    {"glDrawElements: samples mipmaps that are not there",
     [](const CallerContext&) {
       MakeTexture(2, kPixels.data());
       glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER,
                       GL_LINEAR_MIPMAP_LINEAR);
       UseProgram();
       DrawTriangle();
     }},
    {"glDrawElements: reads outside of a buffer",  // which is none
     [](const CallerContext&) {
       UseProgram();
       DrawTriangle(nullptr);
     }},
    {"glDrawElements: reads outside of a buffer",
     [](const CallerContext&) {
       UseProgram();
       GLuint name = 0;
       glGenBuffers(1, &name);
       glBindBuffer(GL_ARRAY_BUFFER, name);
       glBufferData(GL_ARRAY_BUFFER, 23, kPixels.data(), GL_STATIC_DRAW);
       DrawTriangle(nullptr);
     }},
    {"glReadPixels: nobody has written the pixels",
     [](const CallerContext&) { ReadTarget(); }},
    {"glClear: error 0x506",
     [](const CallerContext&) {
       DrawInto(MakeTexture(0, nullptr));
       glClear(GL_COLOR_BUFFER_BIT);
     }},
    {"glGetIntegerv: error 0x500",  // of ES 3
     [](const CallerContext&) {
       GLint name = 0;
       glGetIntegerv(GL_VERTEX_ARRAY_BINDING, &name);
     }},
    {"eglDestroySurface: error 0x300d",
     [](const CallerContext&) {
       eglDestroySurface(CallerContext::OpenDisplay(), eglGetCurrentContext());
     }},
    {"eglMakeCurrent: error 0x3002",  // current on another thread
     [](const CallerContext&) {
       EGLContext handle = eglGetCurrentContext();
       std::thread([=] {
         eglMakeCurrent(CallerContext::OpenDisplay(), nullptr, nullptr, handle);
       }).join();
     }},
});

TEST(FakeDriver, NotesMisuse) {
  for (const MisuseRow& row : kMisuse) {
    {
      const CallerContext context;
      EXPECT_STREQ(reinterpret_cast<const char*>(glGetString(GL_RENDERER)),
                   "fake driver");
      row.commit(context);
    }
    EXPECT_THAT(TakeMisuse(), ElementsAre(row.noted));
    EXPECT_EQ(Alive(), fake_driver::Living());
  }
}

TEST(FakeDriver, TellsWhatDiesWithItsContext) {
  fake_driver::TakeAbandoned();
  {
    const CallerContext context;
    DrawInto(MakeTexture(2, nullptr));
    EXPECT_EQ(Alive(), (fake_driver::Living{1, 1, 0, 2}));
  }
  EXPECT_THAT(fake_driver::TakeAbandoned(),
              ElementsAre("1 textures, 1 framebuffers"));
}

// Hardware goes first, where it opens.
TEST(FakeDriver, IsOpenedByDevice) {
  using driver::FindDisplay, driver::Place, driver::Platform;
  fake_driver::SetDevices({"EGL_MESA_device_software", "EGL_EXT_device_drm"});
  EXPECT_EQ(FindDisplay().place, (Place{Platform::kDevice, 1}));
  {
    const FailingCall failing(Call::eglInitialize, 1);
    EXPECT_EQ(FindDisplay().place, Place{Platform::kSurfaceless});
  }
  const ScopedProperty chosen(driver::kDeviceProperty, "0");
  EXPECT_EQ(FindDisplay().place, (Place{Platform::kDevice, 0}));
  fake_driver::SetDevices({});
  EXPECT_EQ(FindDisplay().handle, EGL_NO_DISPLAY);
}

// Each changes one thing that a picture depends on.
TEST(FakeDriver, DrawsAnotherPictureFromAnyOtherInput) {
  using Change = void (*)();
  const auto picture = [](std::optional<Change> change) {
    const CallerContext context(2, 2);
    glClear(GL_COLOR_BUFFER_BIT);
    MakeTexture(2, kPixels.data());
    UseProgram();
    if (change) (*change)();
    DrawTriangle();
    return ReadTarget();
  };
  std::vector pictures = {picture({})};
  EXPECT_EQ(picture({}), pictures[0]);
  for (const Change change : std::to_array<Change>(
           {[] { MakeTexture(2, kPixels.data() + 1); },
            [] {
              glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S,
                              GL_CLAMP_TO_EDGE);
            },
            [] { glUniform1f(1, 0.5F); }, [] { glViewport(0, 0, 1, 2); },
            [] { glEnable(GL_BLEND); }, [] { glColorMask(1, 1, 1, 0); },
            [] { glEnable(GL_SCISSOR_TEST); },
            [] { DrawTriangle(kPixels.data() + 1); },
            [] { glActiveTexture(GL_TEXTURE1), glUniform1i(0, 1); }})) {
    EXPECT_THAT(pictures, testing::Not(testing::Contains(picture(change))));
    pictures.push_back(picture(change));
  }
  EXPECT_THAT(TakeMisuse(), IsEmpty());
}

// Rows of three pixels end where they end, whatever the alignment; the last has
// no padding.
TEST(FakeDriver, TouchesExactlyWhatItIsHanded) {
  const CallerContext context(3, 2, /*version=*/3);
  glClear(GL_COLOR_BUFFER_BIT);
  for (const GLint alignment : {1, 4, 8}) {
    glPixelStorei(GL_UNPACK_ALIGNMENT, alignment);
    glPixelStorei(GL_PACK_ALIGNMENT, alignment);
    const auto stride = static_cast<size_t>(alignment == 8 ? 16 : 12);
    const GuardedMemory<uint8_t> rows(stride + 12);
    glReadPixels(0, 0, 3, 2, GL_RGBA, GL_UNSIGNED_BYTE, rows.data());
    const auto unread = std::count(rows.span().begin(), rows.span().end(), 0);
    EXPECT_LT(unread, alignment == 8 ? 6 : 2);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, 3, 2, 0, GL_RGBA, GL_UNSIGNED_BYTE,
                 rows.data());
  }
  // A caller's pixel buffer that is too small, and rows to skip.
  SetState();
  glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, 3, 2, 0, GL_RGBA, GL_UNSIGNED_BYTE,
               nullptr);
  EXPECT_THAT(TakeMisuse(),
              ElementsAre("glTexImage2D: reads outside of a buffer"));
}

TEST(FakeDriver, FailsOnRequest) {
  const CallerContext context;
  const auto make = [] {
    GLuint name = 0;
    glGenTextures(1, &name);
    return name;
  };
  {
    const FailingCall failing(Call::glGenTextures, 2);
    EXPECT_NE(make(), 0U);
    EXPECT_EQ(make(), 0U);
    EXPECT_EQ(glGetError(), GLenum{GL_OUT_OF_MEMORY});
    EXPECT_NE(make(), 0U);
  }
  {
    const FailingCall failing(Call::glGenTextures, 2, /*and_later=*/true);
    EXPECT_NE(make(), 0U);
    EXPECT_EQ(make(), 0U);
    EXPECT_EQ(make(), 0U);
  }
  EXPECT_NE(make(), 0U);
  EXPECT_THAT(TakeMisuse(), IsEmpty());
}

}  // namespace
}  // namespace zuqel
