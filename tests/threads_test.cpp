// Threads: what the header allows works, without a race where the thread
// sanitizer looks on; what it forbids is told where assertions are compiled.
#include <gtest/gtest.h>
#include <zuQelRT_GL.h>

#include <android/log.h>

#include <array>
#include <atomic>
#include <chrono>
#include <semaphore>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "fake_driver/fake_driver.h"
#include "fresh_session.h"

namespace zuqel {
namespace {

constexpr int kRounds = 40;

// The logger's lock would order the threads.
class Threads : public testing::Test {
 protected:
  Threads() {
    ResetSession();
    __android_log_set_minimum_priority(ANDROID_LOG_FATAL);
  }
  ~Threads() override {
    __android_log_set_minimum_priority(ANDROID_LOG_DEFAULT);
    for (const std::string& text : fake_driver::TakeMisuse()) {
      // The maps' end terminates the display, which the session shares.
      EXPECT_EQ(text, "eglDestroySurface: error 0x3001");
    }
  }
};

TEST_F(Threads, ParametersAreSetAtAnyTime) {
  std::atomic<bool> is_over{false};
  std::thread setter([&] {
    int32_t value = 0;
    while (!is_over.load(std::memory_order_relaxed)) {
      ParameterInfo parameter = {};
      parameter.PortraitMode = parameter.GsensorValue = parameter.VcmValue =
          parameter.FadeInEnable = ++value % 2;
      zuQelRT_SetParameter(value / 2 % 4, &parameter);
    }
  });
  const GLInitInfo info = SmallInfo();
  const CallerFrame frame(info);
  for (int round = 0; round < kRounds; ++round) {
    const ScopedSession session(info);
    EXPECT_EQ(session.status(), 0U);
    EXPECT_EQ(frame.Render({.from_depth = round % 2 == 0}), 0U);
  }
  is_over = true;
  setter.join();
}

// The same bytes as one after the other: whole frames, maps and CPU frames.
struct Work {
  explicit Work(const GLInitInfo& info) : frame(info), cpu_frame(info) {}

  void RenderFrames() const {
    for (int round = 0; round < kRounds; ++round) {
      zuQelRT_GLShowDebugPicture(round % 2, 0);
      EXPECT_EQ(frame.Render({.from_depth = round % 2 == 0}), 0U);
    }
  }
  void MakeMaps() {
    const CallerFrame input(SmallInfo());
    for (int round = 0; round < kRounds / 4; ++round) {
      zuQelRT_GenRefocusMap_init();
      uint16_t* depth = input.depth.data();
      std::array<uint32_t, 3> out = {};
      for (std::vector<uint8_t>& map : maps) map.resize(input.weights.size());
      zuQelRT_GenRefocusMap(maps[0].data(), depth, 3, 3, out.data(), &out[1],
                            &out[2]);
      zuQelRT_GenRefocusMap_ZU4410_DispartyBase(maps[1].data(), depth, 3, 3,
                                                nullptr, nullptr, nullptr);
      zuQelRT_GenRefocusMap_ZU4410_DispartyBase_CPU(maps[2].data(), depth, 3, 3,
                                                    nullptr, nullptr, nullptr);
      zuQelRT_GenRefocusMap_Dist(maps[3].data(), depth, 3, 3);
      zuQelRT_GenRefocusMap_Deinit();
    }
  }
  void RenderOnTheCpu() const {
    for (int round = 0; round < kRounds; ++round) {
      zuQelRT_Bokeh_ZU4410_DisparityBase_Expansion_CPU(
          cpu_frame.luma.data(), cpu_frame.chroma.data(),
          cpu_frame.depth.data(), 3, 3);
    }
  }

  CallerFrame frame, cpu_frame;
  std::array<std::vector<uint8_t>, 4> maps;
};

TEST_F(Threads, MapsAndCpuFramesAreMadeBesideFrames) {
  const GLInitInfo info = SmallInfo();
  Work alone(info), together(info);
  testing::internal::CaptureStdout();
  {
    const ScopedSession session(info);
    alone.RenderFrames();
    alone.RenderOnTheCpu();
    std::thread([&] { alone.MakeMaps(); }).join();
  }
  {
    const ScopedSession session(info);
    std::thread maps([&] { together.MakeMaps(); });
    std::thread cpu([&] { together.RenderOnTheCpu(); });
    together.RenderFrames();
    maps.join();
    cpu.join();
  }
  testing::internal::GetCapturedStdout();
  EXPECT_EQ(together.frame.Contents(), alone.frame.Contents());
  EXPECT_EQ(together.cpu_frame.Contents(), alone.cpu_frame.Contents());
  EXPECT_EQ(together.maps, alone.maps);
}

#ifndef NDEBUG
struct Overlap {
  void (*call)();
  const char* line;  // that it logs on its way
  void (*other)();   // called meanwhile
};

const char* awaited_line = nullptr;
std::binary_semaphore is_inside{0};

void CallBoth(const Overlap& row) {
  awaited_line = row.line;
  __android_log_set_logger([](const __android_log_message* message) {
    if (std::string_view(message->message).find(awaited_line) != 0) return;
    is_inside.release();
    std::this_thread::sleep_for(std::chrono::seconds(5));
  });
  __android_log_set_minimum_priority(ANDROID_LOG_DEFAULT);
  std::thread first(row.call);
  is_inside.acquire();
  __android_log_set_minimum_priority(ANDROID_LOG_FATAL);
  row.other();
  first.join();
}

TEST_F(Threads, ForbiddenOverlapsAreTold) {
  constexpr auto kClose = [] { zuQelRT_GLClose(); };
  constexpr auto kFrame = [] {
    zuQelRT_GLStartV1HWDepth(nullptr, nullptr, nullptr, 0, 0, 0, {}, 1);
  };
  constexpr auto kEndMaps = [] { zuQelRT_GenRefocusMap_Deinit(); };
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  for (const Overlap& row : std::to_array<Overlap>(
           {{kFrame, "Pointer is NULL", kFrame},
            {kFrame, "Pointer is NULL", kClose},
            {kClose, "zuQelRT_GLClose -", kFrame},
            {kEndMaps, "Deinit RefocusMap Gen -", kEndMaps},
            {kEndMaps, "Deinit RefocusMap Gen -", kClose}})) {
    EXPECT_DEATH(CallBoth(row), "calls overlap that must not") << row.line;
  }
}
#endif

}  // namespace
}  // namespace zuqel
