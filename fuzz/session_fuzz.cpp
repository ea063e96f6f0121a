// Nearly all calls of the C interface, in any order, on a driver that notes
// what it is done to and in part of the runs fails.
#include <sys/system_properties.h>

#include <bit>
#include <cstdio>
#include <optional>
#include <string>

#include "api/session.h"
#include "caller_context.h"
#include "fake_driver/fake_driver.h"
#include "frame.h"
#include "input.h"
#include "library_allocations.h"
#include "require.h"

namespace zuqel::fuzz {
namespace {

constexpr int32_t kHuge = 1 << 16;  // on both sides, more than memory can hold

// Mostly small, in part none or huge.
void SetSize(int32_t& width, int32_t& height, Input& input) {
  const int32_t kind = input.Between(0, 15);
  width = kind == 0 ? kHuge : input.Between(kind == 1 ? -1 : 1, 40);
  height = kind == 0 ? kHuge : input.Between(kind == 2 ? -1 : 1, 24);
}

GLInitInfo AnyInfo(Input& input) {
  GLInitInfo info = {};
  SetSize(info.PreviewWidth, info.PreviewHeight, input);
  SetSize(info.DepthWidth, info.DepthHeight, input);
  SetSize(info.WorkWidth, info.WorkHeight, input);
  SetSize(info.OutputWidth, info.OutputHeight, input);
  info.PortraitMode = input.Flag() ? 1 : 0;
  info.offmode = input.Between(0, 3);
  info.srcformat = input.OneOf(std::array{0, 0, 2, 7, -1});
  info.GraphicBufferFlag = input.Flag() ? 1 : 0;
  return info;
}

class Sequence {
 public:
  explicit Sequence(Input& input) : input_(input) {
    // Sizes outlive sessions; those of earlier runs are not to be seen.
    zuQelRT_GLInitV1(nullptr, 0, nullptr, 0, &info_);
  }

  void Run() {
    for (int32_t calls = input_.Between(1, 16); calls > 0; --calls) {
      (this->*input_.OneOf(kCalls))();
    }
  }

  [[nodiscard]] bool had_no_pixels() const { return had_no_pixels_; }

 private:
  using Call = void (Sequence::*)();

  Frame MakeFrame() { return {info_, input_}; }

  void Start() {
    const std::array<uint8_t, 512> record = {};
    const uint32_t size = input_.Between(0, 15) == 0 ? 511 : 512;
    const GLInitInfo info = AnyInfo(input_);
    const bool is_running = TheSession().QelMode == kModeRunning;
    __system_property_set("persist.zu.LVGLbokeh.FocusDot",
                          input_.Flag() ? "1" : "");
    const uint32_t status =
        input_.Flag() ? zuQelRT_GLInitV1(record.data(), size, nullptr, 0, &info)
                      : zuQelRT_GLInitV1_1(record.data(), size, nullptr, 0,
                                           &info, Cache());
    if (is_running) {
      Require(status == ZUQEL_INIT_REFUSED, "a second session");
    } else {
      info_ = info;
      NoteSizes();
    }
  }
  void NoteSizes() {
    for (const int32_t side :
         {info_.PreviewWidth, info_.PreviewHeight, info_.WorkWidth,
          info_.WorkHeight, info_.DepthWidth, info_.DepthHeight}) {
      had_no_pixels_ = had_no_pixels_ || side <= 0 || side == kHuge;
    }
  }
  void End() {
    if (input_.Flag()) {
      zuQelRT_GLClose();
    } else {
      zuQelRT_GenRefocusMap_Deinit();
    }
  }

  // Null, or what the last start has left, in part damaged.
  uint8_t* Cache() {
    if (input_.Between(0, 3) == 0) return nullptr;
    cache_.resize(ZUQEL_PROGRAM_CACHE_SIZE);
    const bool is_in_head = input_.Flag();
    for (int32_t words = input_.Between(0, 2); words > 0; --words) {
      const auto word = static_cast<uint32_t>(input_.AnyInteger());
      const auto place = input_.Between<size_t>(
          0, is_in_head ? 255 : ZUQEL_PROGRAM_CACHE_SIZE - 4);
      std::memcpy(&cache_[place], &word, sizeof(word));
    }
    return cache_.data();
  }

  void Render() {
    Frame frame = MakeFrame();
    const bool is_inside = input_.Flag();
    FrameArguments call = {
        .from_depth = input_.Flag(),
        .bypass = input_.Between(0, 7) == 0 ? 1 : 0,
        .f_number = std::bit_cast<float>(input_.AnyInteger()),
        .focus_x = static_cast<uint32_t>(is_inside ? input_.Between(0, 40)
                                                   : input_.AnyInteger()),
        .focus_y = static_cast<uint32_t>(is_inside ? input_.Between(0, 24)
                                                   : input_.AnyInteger())};
    for (int32_t* side :
         {&call.rect.x, &call.rect.y, &call.rect.right, &call.rect.bottom}) {
      *side = input_.AnyInteger();
    }
    RenderFrame(frame, call);
  }
  void RenderOnCpu() {
    Frame frame = MakeFrame();
    zuQelRT_Bokeh_ZU4410_DisparityBase_Expansion_CPU(
        frame.luma.data(), frame.chroma.data(), frame.depth.data(),
        input_.AnyInteger(), static_cast<uint32_t>(input_.AnyInteger()));
  }

  void StartMaps() {
    NoteSizes();
    zuQelRT_GenRefocusMap_init();
  }
  void MakeMap() {
    Frame frame = MakeFrame();
    const int32_t y = input_.AnyInteger();
    const auto x = static_cast<uint32_t>(input_.AnyInteger());
    std::array<uint32_t, 3> out = {};
    const auto [min, max, focus] =
        input_.Flag() ? std::array{out.data(), &out[1], &out[2]}
                      : std::array<uint32_t*, 3>{};
    uint16_t* const depth = frame.depth.data();
    switch (input_.Between(0, 3)) {
      case 0:
        zuQelRT_GenRefocusMap(frame.weights.data(), depth, x, y, min, max,
                              focus);
        break;
      case 1:
        zuQelRT_GenRefocusMap_ZU4410_DispartyBase(frame.weights.data(), depth,
                                                  x, y, min, max, focus);
        break;
      case 2:
        zuQelRT_GenRefocusMap_ZU4410_DispartyBase_CPU(
            frame.depth_map.data(), depth, x, static_cast<uint32_t>(y), min,
            max, focus);
        break;
      default:
        zuQelRT_GenRefocusMap_Dist(frame.depth_map.data(), depth, x, y);
    }
  }

  void ShowPictures() {
    zuQelRT_GLShowDebugPicture(input_.Flag() ? 1 : 0, input_.Flag() ? 1 : 0);
  }
  void SetPictures() {
    std::array<DebugPicture, ZUQEL_DEBUG_PICTURES> table = {};
    std::array<std::vector<uint8_t>, ZUQEL_DEBUG_PICTURES> pixels;
    for (size_t i = 0; i < table.size(); ++i) {
      if (input_.Flag()) continue;
      const int32_t width = input_.Between(-1, 5),
                    height = input_.Between(0, 5);
      pixels[i] = input_.Bytes(4 * CallerFrame::Area(width, height));
      table[i] = {pixels[i].data(),
                  width,
                  height,
                  input_.AnyInteger(),
                  input_.AnyInteger(),
                  input_.AnyInteger(),
                  input_.AnyInteger()};
    }
    zuQelRT_GLSetDebugPicture(table.data());
  }

  void SetSmallThings() {
    const ParameterInfo parameter = {.GsensorValue = input_.AnyInteger(),
                                     .VcmValue = input_.AnyInteger(),
                                     .FadeInEnable = input_.AnyInteger(),
                                     .PortraitMode = input_.AnyInteger()};
    zuQelRT_SetParameter(input_.Between(-1, 4), &parameter);
    zuQelRT_CameraLayout_Set(input_.Between(0, 5));
    uint32_t layout = 0;
    zuQelRT_CameraLayout_Get(&layout);
    Require(layout >= 1 && layout <= ZUQEL_CAMERA_LAYOUTS, "camera layout");
    std::array<char, ZUQEL_VERSION_BUFFER_SIZE> version;
    zuQel_GLVersionInfo_Get(version.data(), input_.Flag() ? 256 : 255);
  }

  static constexpr auto kCalls = std::to_array<Call>(
      {&Sequence::Start, &Sequence::Start, &Sequence::Start, &Sequence::End,
       &Sequence::Render, &Sequence::Render, &Sequence::Render,
       &Sequence::RenderOnCpu, &Sequence::StartMaps, &Sequence::End,
       &Sequence::MakeMap, &Sequence::MakeMap, &Sequence::ShowPictures,
       &Sequence::SetPictures, &Sequence::SetSmallThings});

  Input& input_;
  bool had_no_pixels_ = false;
  GLInitInfo info_ = {};  // of the latest initialisation
  std::vector<uint8_t> cache_;
};

// A framebuffer without pixels cannot be drawn into, which GL calls an error.
bool IsEmptyFramebuffer(const std::string& note) {
  return note.ends_with("error 0x506");
}

// Of each kind, no more than before.
bool HasNoMore(const fake_driver::Living& now,
               const fake_driver::Living& before) {
  return now.contexts <= before.contexts && now.surfaces <= before.surfaces &&
         now.images <= before.images && now.names <= before.names;
}

// The display is shared: the first to end, session or maps, ends it for the
// other too, whose images go with it.
bool IsSharedDisplay(const std::string& note) {
  return note == "eglTerminate: an image is left" ||
         note == "eglDestroyImageKHR: error 0x3001";
}

void RequireNoMisuse(bool had_no_pixels) {
  std::vector<std::string> misuse = fake_driver::TakeMisuse();
  std::erase_if(misuse, IsSharedDisplay);
  if (had_no_pixels) std::erase_if(misuse, IsEmptyFramebuffer);
  for (const std::string& note : misuse) {
    static_cast<void>(std::fprintf(stderr, "driver: %s\n", note.c_str()));
  }
  Require(misuse.empty(), "misuse of the driver");
}

// A slot whose context could not be deleted keeps its handles, which are gone
// in part, until it gets others.
void RenewContexts() {
  constexpr std::array<uint8_t, 512> kRecord = {};
  const GLInitInfo info = {.PreviewWidth = 2, .PreviewHeight = 2, .offmode = 1};
  zuQelRT_GLInitV1(kRecord.data(), kRecord.size(), nullptr, 0, &info);
  zuQelRT_GLClose();
  zuQelRT_GenRefocusMap_init();
  zuQelRT_GenRefocusMap_Deinit();
}

}  // namespace

void Run(Input& input) {
  enum Failure { kNone, kDriver, kMemory };
  // What a driver did not delete stays.
  const fake_driver::Living before = fake_driver::Alive();
  const auto failure = input.OneOf(std::array{kNone, kNone, kDriver, kMemory});
  std::optional<fake_driver::FailingCall> failing_call;
  std::optional<library_allocations::FailingBlock> failing_block;
  std::optional<CallerContext> caller;
  bool is_deleting = false;
  if (input.Flag()) caller.emplace(8, 8, input.Flag() ? 3 : 2);
  if (failure == kDriver) {
    const auto call = static_cast<fake_driver::Call>(
        input.Between<size_t>(0, fake_driver::kCalls.size() - 1));
    is_deleting = fake_driver::DeletesContexts(call);
    const int32_t number = input.Between(1, 40);
    failing_call.emplace(call, number, input.Flag());
  }
  if (failure == kMemory) {
    failing_block.emplace(input.Between(1, 60));
  }
  Sequence sequence(input);
  sequence.Run();
  failing_call.reset();
  failing_block.reset();
  zuQelRT_GenRefocusMap_Deinit();
  zuQelRT_GLClose();
  caller.reset();
  Require(library_allocations::BytesHeld() == 0, "memory held after close");
  if (failure == kDriver) {
    if (is_deleting) RenewContexts();
    fake_driver::TakeMisuse();
  } else {
    RequireNoMisuse(sequence.had_no_pixels());
    Require(HasNoMore(fake_driver::Alive(), before),
            "objects of the driver held after close");
  }
}

}  // namespace zuqel::fuzz
