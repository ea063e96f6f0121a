// Times the conversions between planes and pixels against a plain copy of the
// bytes they touch, and starts and whole frames through the C interface.
#include <GLES2/gl2.h>
#include <android/log.h>
#include <benchmark/benchmark.h>
#include <zuQelRT_GL.h>

#include <array>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

#include "api/session.h"
#include "frame/frame_renderer.h"
#include "frame/frame_upload.h"
#include "gl/program_cache.h"
#include "random.h"
#include "render/plane_conversion.h"

namespace {

constexpr int32_t kMapWidth = 320;
constexpr int32_t kMapHeight = 240;

struct Planes {
  int32_t width;
  int32_t height;
  std::vector<uint8_t> luma;
  std::vector<uint8_t> chroma;

  zuqel::Frame View() {
    return {{luma.data(), width, height}, {chroma.data(), chroma.size()}};
  }
};

Planes MakePlanes(const benchmark::State& state) {
  const auto width = static_cast<int32_t>(state.range(0));
  const auto height = static_cast<int32_t>(state.range(1));
  const size_t pixels =
      static_cast<size_t>(width) * static_cast<size_t>(height);
  zuqel::Random random(11);
  return {width, height, random.Values<uint8_t>(pixels),
          random.Values<uint8_t>(pixels / 2)};
}

// Pixels of 4 bytes and planes of 1.5.
void SetTouchedBytes(benchmark::State& state, const Planes& planes) {
  const size_t pixels = planes.luma.size();
  state.SetBytesProcessed(state.iterations() *
                          static_cast<int64_t>(pixels * 4 + pixels * 3 / 2));
}

// A copy that reads and writes as many bytes as a conversion.
void CopyAsMany(benchmark::State& state) {
  const Planes planes = MakePlanes(state);
  const size_t half = (planes.luma.size() * 4 + planes.luma.size() * 3 / 2) / 2;
  const std::vector<uint8_t> source(half, 1);
  std::vector<uint8_t> copy(half);
  while (state.KeepRunning()) {
    std::memcpy(copy.data(), source.data(), half);
    benchmark::ClobberMemory();
  }
  SetTouchedBytes(state, planes);
}

template <int32_t kFormat>
void UnpackFrame(benchmark::State& state) {
  Planes planes = MakePlanes(state);
  const std::vector<uint32_t> rgba(planes.luma.size(), 0x80402010);
  while (state.KeepRunning()) {
    zuqel::UnpackFrame(rgba, kFormat, planes.View());
    benchmark::ClobberMemory();
  }
  SetTouchedBytes(state, planes);
}

void PackFrame(benchmark::State& state) {
  Planes planes = MakePlanes(state);
  std::vector<uint32_t> rgba(planes.luma.size());
  while (state.KeepRunning()) {
    zuqel::PackFrame(planes.View(), rgba);
    benchmark::ClobberMemory();
  }
  SetTouchedBytes(state, planes);
}

// A running session of one preview size. Its programs are compiled, or come
// from a cache that a session before it has filled.
class Session {
 public:
  explicit Session(const Planes& planes, uint8_t* program_cache = nullptr) {
    __android_log_set_minimum_priority(ANDROID_LOG_SILENT);
    const GLInitInfo info = {.PreviewWidth = planes.width,
                             .PreviewHeight = planes.height,
                             .DepthWidth = kMapWidth,
                             .DepthHeight = kMapHeight,
                             .WorkWidth = kMapWidth,
                             .WorkHeight = kMapHeight,
                             .OutputWidth = 0,
                             .OutputHeight = 0,
                             .PortraitMode = 0,
                             .offmode = 1,
                             .srcformat = 0,
                             .GraphicBufferFlag = 0};
    const std::array<uint8_t, 512> calibration = {};
    started_ =
        zuQelRT_GLInitV1_1(calibration.data(), calibration.size(), nullptr, 0,
                           &info, program_cache) == ZUQEL_SUCCESS;
  }
  ~Session() { zuQelRT_GLClose(); }
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  [[nodiscard]] bool started() const { return started_; }

 private:
  bool started_;
};

// Starts and ends a session.
template <bool kIsCached>
void Start(benchmark::State& state) {
  const Planes planes = MakePlanes(state);
  std::vector<uint8_t> cache(zuqel::kProgramCacheBytes);
  uint8_t* given = kIsCached ? cache.data() : nullptr;
  if (!Session(planes, given).started()) state.SkipWithError("no session");
  while (state.KeepRunning()) const Session session(planes, given);
}

void FrameFromWeights(benchmark::State& state) {
  Planes planes = MakePlanes(state);
  const std::vector<uint8_t> weights =
      zuqel::Random(12).Values<uint8_t>(size_t{kMapWidth} * kMapHeight);
  const Session session(planes);
  if (!session.started()) state.SkipWithError("no session");
  while (state.KeepRunning()) {
    zuQelRT_GLStartV1(planes.luma.data(), planes.chroma.data(), weights.data(),
                      0, 0, 0, {}, 1.0F);
  }
}

void FrameFromDepth(benchmark::State& state) {
  Planes planes = MakePlanes(state);
  std::vector<uint16_t> depth(size_t{kMapWidth} * kMapHeight);
  for (size_t i = 0; i < depth.size(); ++i) {
    depth[i] = static_cast<uint16_t>(100 + i / kMapWidth * 3);
  }
  const Session session(planes);
  if (!session.started()) state.SkipWithError("no session");
  while (state.KeepRunning()) {
    zuQelRT_GLStartV1HWDepth(planes.luma.data(), planes.chroma.data(),
                             depth.data(), 0, 0, 0, {}, 1.0F);
  }
}

// The stages of a frame in milliseconds, each finished before the next begins:
// `upload` of map and planes, `passes`, `read_back` into the planes, and a bare
// `transfer` of the pixels that are read.
template <bool kFromDepth>
void FrameStages(benchmark::State& state) {
  using Clock = std::chrono::steady_clock;
  Planes planes = MakePlanes(state);
  const Session started(planes);
  zuqel::Session& session = zuqel::TheSession();
  zuqel::FrameSession* frame_session = session.RunningFrame();
  zuqel::RenderState* objects =
      frame_session == nullptr ? nullptr : frame_session->gl.IfCurrent();
  if (objects == nullptr) return state.SkipWithError("no session");
  const zuqel::FrameSetup& setup = session.frame_setup;
  const zuqel::FrameMemory& memory = frame_session->memory;
  const zuqel::Buffer& pixels = memory.read_back;
  std::vector<uint16_t> map(size_t{kMapWidth} * kMapHeight, 300);
  auto* const weights = reinterpret_cast<uint8_t*>(map.data());
  const zuqel::FrameCall call = {.from_depth = kFromDepth};
  session.frames.depth = {100, 900, 300};
  std::array<double, 4> seconds = {};
  auto last = Clock::now();
  const auto end = [&](size_t stage) {
    glFinish();
    const auto now = Clock::now();
    seconds.at(stage) += std::chrono::duration<double>(now - last).count();
    last = now;
  };
  const auto read = [&] {
    glReadPixels(0, 0, planes.width, planes.height, GL_RGBA, GL_UNSIGNED_BYTE,
                 pixels.bytes());
  };
  while (state.KeepRunning()) {
    zuqel::FrameDrawing drawing(*objects, zuqel::SizesOf(setup));
    last = Clock::now();
    if constexpr (kFromDepth) {
      zuqel::UploadDepth(*objects, {map.data(), kMapWidth, kMapHeight},
                         memory.map_rgba.words());
    } else {
      zuqel::UploadWeights(*objects, {weights, kMapWidth, kMapHeight},
                           memory.map_rgba.words());
    }
    zuqel::UploadFrame(*objects, setup, planes.View(),
                       memory.packed_frame.words(),
                       {memory.chroma.bytes(), memory.chroma.size()});
    end(0);
    zuqel::RenderPasses(&drawing, setup, call, session.frames);
    end(1);
    read();
    zuqel::UnpackFrame(pixels.words(), zuqel::kFormatNv21, planes.View());
    end(2);
    read();
    end(3);
  }
  constexpr std::array kStages = {"upload", "passes", "read_back", "transfer"};
  for (size_t i = 0; i < kStages.size(); ++i) {
    state.counters[kStages.at(i)] = {seconds.at(i) * 1000,
                                     benchmark::Counter::kAvgIterations};
  }
}

void FrameSizes(benchmark::internal::Benchmark* bench) {
  bench->Args({1280, 960})->Args({1920, 1080});
}

BENCHMARK(CopyAsMany)->Apply(FrameSizes);
BENCHMARK(UnpackFrame<zuqel::kFormatNv21>)->Apply(FrameSizes);
BENCHMARK(UnpackFrame<zuqel::kFormatPlanar>)->Apply(FrameSizes);
BENCHMARK(UnpackFrame<zuqel::kFormatPacked>)->Apply(FrameSizes);
BENCHMARK(PackFrame)->Apply(FrameSizes);
BENCHMARK(Start<false>)->Apply(FrameSizes)->Unit(benchmark::kMillisecond);
BENCHMARK(Start<true>)->Apply(FrameSizes)->Unit(benchmark::kMillisecond);
BENCHMARK(FrameStages<false>)->Apply(FrameSizes)->Unit(benchmark::kMillisecond);
BENCHMARK(FrameStages<true>)->Apply(FrameSizes)->Unit(benchmark::kMillisecond);
BENCHMARK(FrameFromWeights)->Apply(FrameSizes)->Unit(benchmark::kMillisecond);
BENCHMARK(FrameFromDepth)->Apply(FrameSizes)->Unit(benchmark::kMillisecond);

}  // namespace

// Says which driver is timed.
int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  {
    const Session session({64, 48, {}, {}});
    const auto add = [](const char* key, GLenum name) {
      const auto* text = reinterpret_cast<const char*>(glGetString(name));
      benchmark::AddCustomContext(key, text == nullptr ? "none" : text);
    };
    add("gl_vendor", GL_VENDOR);
    add("gl_renderer", GL_RENDERER);
  }
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
}
