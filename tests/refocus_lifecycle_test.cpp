// Start and end of the refocus maps, on a thread of their own and beside a
// session.
#include <driver_adaptation.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <functional>
#include <semaphore>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "driver_turns.h"
#include "fresh_session.h"
#include "test_scene.h"

namespace zuqel {
namespace {

// Runs one piece of work after another on a thread of its own.
class OtherThread {
 public:
  OtherThread() : thread_([this] { Work(); }) {}
  ~OtherThread() {
    Run({});
    thread_.join();
  }
  OtherThread(const OtherThread&) = delete;
  OtherThread& operator=(const OtherThread&) = delete;

  void Begin(std::function<void()> work) {
    work_ = std::move(work);
    begin_.release();
  }
  void End() { end_.acquire(); }
  void Run(std::function<void()> work) {
    Begin(std::move(work));
    End();
  }

 private:
  void Work() {
    for (bool goes_on = true; goes_on; end_.release()) {
      begin_.acquire();
      goes_on = static_cast<bool>(work_);
      if (goes_on) work_();
    }
  }

  std::function<void()> work_;
  std::binary_semaphore begin_{0}, end_{0};
  std::thread thread_;  // last: it uses the others
};

constexpr const char* kDeletion = "OpenGLDeltet tid = #, index = 1\n";
constexpr const char* kTornDown = "eglDestroySurface Returned: 0x0\n";
constexpr const char* kSkipped =
    "EGL display, surface and context are NULL, skip delete process\n";

constexpr const char* kCompiled = "gbinaryInfo.isValid  = 0\ncreate binary\n";

using Bytes = std::vector<uint8_t>;

class RefocusLifecycle : public FreshSessionTest {
 protected:
  // The log with each pointer as 0, or as # when it is another.
  std::string TakeMaskedLog() {
    std::string log = TakeLog();
    for (size_t at = log.find("= 0x"); at != std::string::npos;
         at = log.find("= 0x", at + 1)) {
      if (log[at + 4] == '0') continue;
      log[at + 2] = '#';
      log.erase(at + 3, log.find('\n', at) - at - 3);
    }
    return log;
  }
  void ExpectInit(const std::string& creation, const std::string& programs,
                  const std::string& pointer = "0x0") {
    TakeLog();
    EXPECT_EQ(zuQelRT_GenRefocusMap_init(), 0U);
    EXPECT_EQ(TakeMaskedLog(),
              "Init RefocusMap Gen tid = # +\n"
              "Refocus init pointer status pucRfocusMapBoundaryBlur = " +
                  pointer + "\nRefocus init check context +_\n" + creation +
                  "Refocus init check context -_\n" + programs +
                  "Refocus init pucRfocusMapBoundaryBlur = #\n"
                  "Init RefocusMap Gen tid = # -\n");
  }
  void ExpectDeinit(const std::string& deletion, const std::string& pointer) {
    std::string log = "Deinit RefocusMap Gen +\n";
    for (const std::string event : {"deinit ", "deinit after "}) {
      const std::string held = event == "deinit " ? pointer : "0x0";
      for (const std::string name :
           {"pucInputDepthRGBA_RM", "WeightMap_buffer_RM",
            "WeightMap_buffer_char_RM", "pucRfocusMapBoundaryBlur"}) {
        log.append(event).append(name).append(" = ").append(held).append("\n");
      }
      log.append(event).append("gLastDepth = 0x0\n");
    }
    session_.frames.counters.frame_index = 9;
    TakeLog();
    EXPECT_EQ(zuQelRT_GenRefocusMap_Deinit(), 0U);
    EXPECT_EQ(TakeMaskedLog(),
              log + kDeletion + deletion + "Deinit RefocusMap Gen -\n");
    EXPECT_EQ(session_.frames.counters.frame_index, 0U);
  }
  // Of a scene whose left is far, focused there.
  static Bytes Generate(auto generator) {
    const GLInitInfo info = SmallInfo();
    std::vector<uint16_t> disparity =
        DisparityScene(info.DepthWidth, info.DepthHeight, 70, 900);
    Bytes map(CallerFrame::Area(info.WorkWidth, info.WorkHeight), 77);
    EXPECT_EQ(generator(map.data(), disparity.data(), 2, 2, nullptr, nullptr,
                        nullptr),
              0U);
    return map;
  }
  static bool MakesMap() {
    const Bytes map = Generate(zuQelRT_GenRefocusMap);
    constexpr auto kMiddleRow = size_t{12} * 32;
    return map[kMiddleRow + 4] == 0 && map[kMiddleRow + 27] == 255;
  }
  static bool MakesZeros(auto generator) {
    return Generate(generator) == Bytes(768);
  }

  OtherThread other_;
};

TEST_F(RefocusLifecycle, OnItsOwnThreadBesideASession) {
  const auto start = [&] {
    ExpectInit(CreationLog(1), kCompiled);
    EXPECT_TRUE(MakesMap());
  };
  for (int i = 0; i < 2; ++i) {
    EXPECT_EQ(InitSession(SmallInfo()), 0U);
    other_.Run([&] {
      start();
      ExpectDeinit("", "#");
      ExpectDeinit(kSkipped, "0x0");
    });
    // Its display was the session's.
    TakeLog();
    zuQelRT_GLClose();
    EXPECT_NE(TakeLog().find(kTornDown), std::string::npos);

    EXPECT_EQ(InitSession(SmallInfo()), 0U);
    other_.Run(start);
    zuQelRT_GLClose();
    other_.Run([&] {
      ExpectDeinit(kTornDown, "#");
      EXPECT_TRUE(MakesZeros(zuQelRT_GenRefocusMap));
    });
    zuQelRT_GLClose();
  }
}

TEST_F(RefocusLifecycle, BothThreadsDrawAtOnce) {
  const CallerFrame frame(SmallInfo());
  const auto pixels = frame.Contents();
  EXPECT_EQ(InitSession(SmallInfo()), 0U);
  other_.Run([] { zuQelRT_GenRefocusMap_init(); });
  Bytes alone;
  other_.Run([&] { alone = Generate(zuQelRT_GenRefocusMap); });
  other_.Begin([&] {
    for (int i = 0; i < 50; ++i) {
      if (!TakesTurn(i, 10)) continue;
      EXPECT_EQ(Generate(zuQelRT_GenRefocusMap), alone);
    }
  });
  for (int i = 0; i < 50; ++i) {
    if (!TakesTurn(i, 10)) continue;
    EXPECT_EQ(frame.Render({}), 0U);
    EXPECT_EQ(frame.Contents(), pixels);
  }
  other_.End();
  other_.Run([] { zuQelRT_GenRefocusMap_Deinit(); });
}

TEST_F(RefocusLifecycle, ASecondInitMakesEverythingAnew) {
  const ScopedSession session(SmallInfo());
  ExpectInit("", kCompiled);
  const auto framebuffer = [&] {
    return session_.refocus_maps.gl.IfCurrent()->framebuffers[1].get();
  };
  const GLuint first = framebuffer();
  ExpectInit("", kCompiled, "#");
  const GLuint second = framebuffer();
  EXPECT_NE(first, second);
  EXPECT_TRUE(MakesMap());
  ExpectDeinit(kSkipped, "#");
  EXPECT_TRUE(glIsFramebuffer(first)) << "lost, not deleted";
  EXPECT_FALSE(glIsFramebuffer(second));
}

// The session that comes meanwhile runs in the maps' context as in a caller's.
TEST_F(RefocusLifecycle, TheirContextEndsWithThemWhateverRunsInIt) {
  for (const int32_t off_screen : {1, 0}) {
    { const ScopedSession before(SmallInfo()); }
    zuQelRT_GenRefocusMap_init();
    const ScopedSession session(SmallInfo(off_screen));
    EXPECT_EQ(session.status(), 0U);
    EXPECT_NE(eglGetCurrentContext(), EGL_NO_CONTEXT);
    zuQelRT_GenRefocusMap_Deinit();
    EXPECT_EQ(eglGetCurrentContext(), EGL_NO_CONTEXT) << off_screen;
  }
}

TEST_F(RefocusLifecycle, ProgramsComeFromTheCache) {
  const std::string valid = "gbinaryInfo.isValid  = 1\n";
  const std::string loaded = "*VX* 1\n*VX* GL_TRUE .\n";
  const std::string broken = "*VX* 0\n*VX* GL_FALSE .\n";
  std::vector<uint8_t> cache(kProgramCacheBytes);
  {
    const ScopedSession first(SmallInfo(), cache.data());
    ExpectInit("", kCompiled);
    ExpectDeinit(kSkipped, "#");
  }
  const ScopedSession session(SmallInfo(), cache.data());
  const auto program = [&](ProgramRole role) {
    return session_.refocus_maps.gl.IfCurrent()->programs[role].name();
  };
  auto& info = RunningFrame().memory.program_cache.binaryInfo;
  if (KeepsPrograms()) {
    ExpectInit("", valid + loaded + loaded + loaded);
    EXPECT_EQ(program(ProgramRole::AllInFocusWeightProgram), 0U);
    EXPECT_TRUE(MakesMap());
    Generate(zuQelRT_GenRefocusMap_ZU4410_DispartyBase);
    ExpectDeinit(kSkipped, "#");
    // One that loads is enough: DepthWeightProgram and BlurHProgram do not.
    info.entries[3] = info.entries[0] = {};
    ExpectInit("", valid + broken + broken + loaded);
    EXPECT_FALSE(MakesMap());
    ExpectDeinit(kSkipped, "#");
    info.entries[1] = {};
  } else {
    ExpectInit("", kCompiled);
    EXPECT_TRUE(MakesMap());
    ExpectDeinit(kSkipped, "#");
    info.isValid = 1;
  }
  ExpectInit("", valid + broken + broken + broken + "load binary fail\n");
  EXPECT_EQ(program(ProgramRole::AllInFocusWeightProgram), 0U);
  EXPECT_TRUE(MakesMap());
  ExpectDeinit(kSkipped, "#");
}

TEST_F(RefocusLifecycle, NothingToDrawWithGivesZeros) {
  const auto expect_zeros = [] {
    EXPECT_TRUE(MakesZeros(zuQelRT_GenRefocusMap));
    EXPECT_TRUE(MakesZeros(zuQelRT_GenRefocusMap_ZU4410_DispartyBase));
  };
  const ScopedSession session(SmallInfo());
  expect_zeros();
  driver::SetFailing(driver::Call::kCreateContext, true);
  other_.Run([&] {
    zuQelRT_GenRefocusMap_init();
    expect_zeros();
    zuQelRT_GenRefocusMap_Deinit();
  });
  driver::SetFailing(driver::Call::kCreateContext, false);
  zuQelRT_GenRefocusMap_init();
  other_.Run(expect_zeros);  // not where the names live
  EXPECT_TRUE(MakesMap());
  zuQelRT_GenRefocusMap_Deinit();
  expect_zeros();
}

TEST_F(RefocusLifecycle, NullMapsAreRefused) {
  // Never touched: the other map is null.
  auto* const map = reinterpret_cast<uint8_t*>(0x123456789A);
  auto* const depth = reinterpret_cast<uint16_t*>(0x123456789A);
  const std::string text = "Pointer is NULL in GenRefocusMap, a_pucDest = ";
  const auto expect = [&](uint8_t* a, uint16_t* b, const std::string& line) {
    uint32_t out = 5;
    TakeLog();
    EXPECT_EQ(zuQelRT_GenRefocusMap(a, b, 0, 0, &out, &out, &out), 0x2004U);
    EXPECT_EQ(
        zuQelRT_GenRefocusMap_ZU4410_DispartyBase(a, b, 0, 0, &out, &out, &out),
        0x2004U);
    EXPECT_EQ(zuQelRT_GenRefocusMap_ZU4410_DispartyBase_CPU(a, b, 0, 0, &out,
                                                            &out, &out),
              0x2004U);
    EXPECT_EQ(zuQelRT_GenRefocusMap_Dist(a, b, 0, 0), 0U);
    EXPECT_EQ(out, 5U);
    EXPECT_EQ(TakeLog(), "zuQelRT_GenRefocusMap +\n" + line + line + line);
  };
  expect(map, nullptr, text + "0x3456789a, a_puwInputDepth = 0x0\n");
  expect(nullptr, depth, text + "0x0, a_puwInputDepth = 0x3456789a\n");
}

}  // namespace
}  // namespace zuqel
