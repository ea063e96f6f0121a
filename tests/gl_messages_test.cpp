// Whole sessions without one error of GL or EGL, in contexts that differ in
// what they forgive.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <zuQelRT_GL.h>
#include <zuQelRT_generators.h>

#include <algorithm>
#include <array>
#include <fstream>
#include <iterator>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "caller_state.h"
#include "driver_turns.h"
#include "gl/gl_state.h"
#include "gl/program_cache.h"
#include "gl_driver.h"
#include "gl_messages.h"
#include "scoped_property.h"
#include "test_session.h"

namespace zuqel {
namespace {

using Bytes = std::vector<uint8_t>;

struct ContextRow {
  const char* name;
  EGLint version = 0;  // none: the library's own context
  bool is_zeroed = false;
  bool has_state = false;
};
constexpr auto kContexts =
    std::to_array<ContextRow>({{"the library's own"},
                               {"ES 2", 2},
                               {"ES 2, memory zeroed", 2, true},
                               {"ES 3", 3},
                               {"ES 3, memory zeroed", 3, true},
                               {"ES 3, with state", 3, false, true}});

struct SessionRow {
  const char* name;
  int32_t format = 0;
  int32_t portrait = 0;
  int32_t graphic_buffer = 0;
  bool has_cache = false;  // filled by the first row that has
  bool closes_first = false;
  const char* focus_dot = "";
  int32_t shows_pictures = 0;
  int32_t blends_pictures = 0;
};
constexpr auto kSessions = std::to_array<SessionRow>({
    {.name = "NV21, focus dot", .focus_dot = "1"},
    {.name = "chroma 4x4", .format = 7, .closes_first = true},
    {.name = "another format", .format = 5},
    {.name = "planar, portrait",
     .format = 2,
     .portrait = 1,
     .shows_pictures = 1},
    {.name = "graphic buffer", .graphic_buffer = 1, .closes_first = true},
    {.name = "planar in a graphic buffer", .format = 2, .graphic_buffer = 1},
    {.name = "empty cache", .has_cache = true},
    {.name = "filled cache", .has_cache = true, .shows_pictures = 1},
    // Last: blending stays enabled.
    {.name = "blended", .shows_pictures = 1, .blends_pictures = 1},
});

std::optional<std::vector<EGLint>> AttributesOf(const ContextRow& row) {
  constexpr EGLint kBackwardsCompatible = 0x3483, kZeroedMemory = 0x3453;
  const std::string extensions =
      eglQueryString(CallerContext::OpenDisplay(), EGL_EXTENSIONS);
  const auto has = [&](const char* name) {
    return extensions.find(name) != std::string::npos;
  };
  std::vector<EGLint> attributes = {EGL_CONTEXT_OPENGL_DEBUG, EGL_TRUE};
  // An ES 2 context that has nothing of ES 3.
  if (has("EGL_ANGLE_create_context_backwards_compatible")) {
    attributes.insert(attributes.end(), {kBackwardsCompatible, EGL_FALSE});
  }
  if (has("EGL_ANGLE_robust_resource_initialization")) {
    attributes.insert(attributes.end(),
                      {kZeroedMemory, row.is_zeroed ? EGL_TRUE : EGL_FALSE});
  } else if (row.is_zeroed) {
    return std::nullopt;
  }
  return attributes;
}

// A context, and one session after another in it.
class Player {
 public:
  Player(const ContextRow& row, const std::vector<EGLint>& attributes,
         int32_t off_screen)
      : off_screen_(off_screen) {
    if (row.version == 0) return;
    context_.emplace(64, 48, row.version, attributes);
    if (!context_->is_current()) {  // Mesa's softpipe has no debug contexts
      context_.emplace(64, 48, row.version);
    }
    is_usable_ = context_->is_current() && GlMessages::ListenToContext();
    if (row.has_state) SetState();
    messages_.EndOf("the test");
    messages_.Take();
  }

  [[nodiscard]] bool is_usable() const { return is_usable_; }

  // One session; the pictures and maps that come out.
  Bytes Play(const SessionRow& row) {
    const ScopedProperty dot("persist.zu.LVGLbokeh.FocusDot", row.focus_dot);
    Bytes pictures;
    Start(row);
    Call("init", zuQelRT_GenRefocusMap_init());
    Call("init again", zuQelRT_GenRefocusMap_init());
    Draw(pictures);
    if (row.closes_first) Call("close", zuQelRT_GLClose());
    Call("deinit", zuQelRT_GenRefocusMap_Deinit());
    if (!row.closes_first) Call("close", zuQelRT_GLClose());
    return pictures;
  }

  std::vector<std::string> TakeMessages() { return messages_.Take(); }

 private:
  void Call(const std::string& name, uint32_t status) {
    EXPECT_EQ(status, ZUQEL_SUCCESS) << name;
    messages_.EndOf(name);
  }

  void Start(const SessionRow& row) {
    info_ = SmallPreviewInfo(off_screen_);
    info_.srcformat = row.format;
    info_.PortraitMode = row.portrait;
    info_.GraphicBufferFlag = row.graphic_buffer;
    Call("start", row.has_cache ? InitCachedSession(info_, cache_.data())
                                : InitSession(info_));
    if (!context_) GlMessages::ListenToContext();
    Call("show",
         zuQelRT_GLShowDebugPicture(row.shows_pictures, row.blends_pictures));
    constexpr std::array<uint8_t, 16> kPixels = {200, 0, 0, 99, 1, 2, 3, 4};
    const std::array<DebugPicture, ZUQEL_DEBUG_PICTURES> table = {
        {{kPixels.data(), 2, 2, 3, 4, 16, 16},
         {kPixels.data(), 1, 1, 0, 0, 8, 8}}};
    Call("pictures", zuQelRT_GLSetDebugPicture(table.data()));
  }

  // Frames and maps by turns.
  void Draw(Bytes& pictures) {
    TestFrame frame(info_);
    for (const bool from_depth : {false, true}) {
      for (const int32_t bypass : {0, 1}) {
        Call(from_depth ? "frame from depth" : "frame",
             frame.Render(from_depth, bypass));
        Append(frame.luma, pictures);
        Append(frame.chroma, pictures);
        if (off_screen_ == 0) Append(ReadSurface(), pictures);
      }
      const auto make_map = [&](const char* name, auto generate,
                                auto... range) {
        auto depth = TestFrame().depth;
        Bytes map(depth.size());
        Call(name, generate(map.data(), depth.data(), 30, 40, range...));
        Append(map, pictures);
      };
#define ON_DISPARITY , nullptr, nullptr, nullptr
#define ON_DISTANCE
#define MAKE(id, name, call, y_type, input, size, summary) \
  make_map(name, call ON_##input);
      ZUQEL_REFOCUS_GENERATORS(MAKE)
    }
  }

  static void Append(const Bytes& bytes, Bytes& pictures) {
    pictures.insert(pictures.end(), bytes.begin(), bytes.end());
  }

  Bytes ReadSurface() {
    const PlainGlState plain_state;
    glBindFramebuffer(GL_FRAMEBUFFER, 0);
    Bytes pixels(size_t{64} * 48 * 4);
    glReadPixels(0, 0, 64, 48, GL_RGBA, GL_UNSIGNED_BYTE, pixels.data());
    messages_.EndOf("the test");
    return pixels;
  }

  GlMessages messages_;
  std::optional<CallerContext> context_;
  GLInitInfo info_ = {};
  Bytes cache_ = Bytes(kProgramCacheBytes);
  int32_t off_screen_;
  bool is_usable_ = true;
};

TEST(GlMessagesTest, SessionsMakeNoErrors) {
  std::map<std::string, Bytes> first;
  int turn = 0;
  for (const ContextRow& context : kContexts) {
    const auto attributes = AttributesOf(context);
    const bool is_plain = context.version != 0 && !context.has_state;
    if (!attributes || (TestedDriver().is_slow && is_plain)) continue;
    for (const int32_t off_screen : {1, 0}) {
      if (off_screen == 0 && context.version == 0) continue;
      ResetSession();
      Player player(context, *attributes, off_screen);
      ASSERT_TRUE(player.is_usable()) << context.name;
      for (const SessionRow& row : kSessions) {
        // A filled cache is what an empty one has become.
        if (!TakesTurn(turn++, 3) && !row.has_cache) continue;
        SCOPED_TRACE(testing::Message() << context.name << ", off screen "
                                        << off_screen << ", " << row.name);
        const Bytes pictures = player.Play(row);
        EXPECT_THAT(player.TakeMessages(), testing::IsEmpty());
        // Memory that nobody has written would differ.
        const auto key = row.name + std::to_string(off_screen);
        EXPECT_TRUE(first.emplace(key, pictures).first->second == pictures);
      }
    }
  }
}

// A frame then is drawn into targets that have no pixels.
TEST(GlMessagesTest, SizesThatNoTargetCanHaveMakeOneErrorAFrame) {
  constexpr int32_t kTooWide = 1 << 16;
  const CallerContext context;
  for (const int32_t width : {0, kTooWide}) {
    ResetSession();
    GlMessages messages;
    GLInitInfo info = SmallPreviewInfo();
    info.PreviewWidth = width;
    const ScopedSession session(info);
    messages.EndOf("start");
    Bytes plane(size_t{kTooWide} * 48);
    zuQelRT_GLStartV1(plane.data(), plane.data(), nullptr, 0, 0, 0, {}, 1);
    messages.EndOf("frame");
    EXPECT_THAT(messages.Take(),
                testing::ElementsAre("frame: glGetError 0x506 "));
  }
}

// Session and maps each in one of the library's, which share their display: the
// second to end finds it terminated.
TEST(GlMessagesTest, ContextsByTurnsMakeOneErrorAtTheEnd) {
  for (const bool closes_first : {false, true}) {
    ResetSession();
    GlMessages messages;
    TestFrame frame;
    InitSession(SmallPreviewInfo());
    const auto &home = TheSession().frame_context,
               &maps = TheSession().refocus_context;
    eglMakeCurrent(home.display, nullptr, nullptr, nullptr);
    zuQelRT_GenRefocusMap_init();
    messages.EndOf("init");
    for (const ContextSlot* slot : {&home, &maps, &home, &maps}) {
      eglMakeCurrent(slot->display, slot->surface, slot->surface,
                     slot->context);
      GlMessages::ListenToContext();
      if (slot == &home) {
        frame.Render();
      } else {
        zuQelRT_GenRefocusMap(frame.weights.data(), frame.depth.data(), 30, 40,
                              nullptr, nullptr, nullptr);
      }
      messages.EndOf("by turns");
    }
    (closes_first ? zuQelRT_GLClose : zuQelRT_GenRefocusMap_Deinit)();
    messages.EndOf("first");
    (closes_first ? zuQelRT_GenRefocusMap_Deinit : zuQelRT_GLClose)();
    messages.EndOf("second");
    EXPECT_THAT(
        messages.Take(),
        testing::ElementsAre("second: EGL message 0x3001 eglDestroySurface",
                             "second: eglGetError 0x3001 "));
  }
}

std::string Renderer() {
  return reinterpret_cast<const char*>(glGetString(GL_RENDERER));
}

// Run on its own with another driver, before the test below.
TEST(ForeignCacheTest, DISABLED_Write) {
  const CallerContext context;
  Bytes cache(kProgramCacheBytes);
  const ScopedSession session(SmallPreviewInfo(), cache.data());
  const std::string text(cache.begin(), cache.end());
  std::ofstream(ZUQEL_FOREIGN_CACHE, std::ios::binary) << text << Renderer();
}

TEST(ForeignCacheTest, IsRebuiltWithoutATrace) {
  std::ifstream file(ZUQEL_FOREIGN_CACHE, std::ios::binary);
  Bytes written{std::istreambuf_iterator<char>(file), {}};
  if (written.empty()) GTEST_SKIP() << "none was written";
  const auto end = written.begin() + kProgramCacheBytes;
  const std::string writer(end, written.end());
  written.erase(end, written.end());
  Bytes damaged = written, without_binaries(kProgramCacheBytes);
  constexpr size_t kHead = sizeof(BinaryInfo);
  std::fill(damaged.begin() + kHead, damaged.end(), uint8_t{0xA5});
  without_binaries[kHead - 4] = 1;  // valid

  ResetSession();
  GlMessages messages;
  const CallerContext context;
  const auto render = [](const ScopedSession&) {
    TestFrame frame;
    frame.Render(/*from_depth=*/true);
    return frame.luma;
  };
  const Bytes compiled = render(ScopedSession(SmallPreviewInfo()));
  for (const Bytes& given : {written, damaged, without_binaries}) {
    const bool is_own = given == written && writer == Renderer();
    glViewport(0, 0, -1, -1);  // the caller has not asked for this error yet
    GlMessages::ListenToContext();
    Bytes cache = given;
    const ScopedSession session(SmallPreviewInfo(), cache.data());
    EXPECT_EQ(cache == given, is_own);
    EXPECT_EQ(glGetError(), GLenum{GL_INVALID_VALUE});
    EXPECT_EQ(render(session), compiled);
    messages.EndOf("frame");
    EXPECT_THAT(messages.Take(), testing::IsEmpty());
    GlMessages::StopListening();
  }
}

}  // namespace
}  // namespace zuqel
