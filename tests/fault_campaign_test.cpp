// Sessions in which one block of memory is not to be had, or one call of the
// driver's fails: each block and each call in turn.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <zuQelRT_generators.h>

#include <algorithm>
#include <array>
#include <functional>
#include <iostream>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "caller_state.h"
#include "fake_driver/fake_driver.h"
#include "gl/program_cache.h"
#include "library_allocations.h"
#include "log_capture.h"
#include "scoped_property.h"
#include "test_session.h"

namespace zuqel {
namespace {

using fake_driver::Call;
using library_allocations::BytesHeld;
using Contents = std::vector<uint16_t>;

// A session step by step:
//   i I  start; with a program cache     x    close
//   m    start of the refocus maps       M    their end
//   f d  frame; from depth               b    frame on screen, bypassed
//   c    frame on the CPU                1-4  refocus map by each generator
//   p    debug pictures
struct Scenario {
  const char* name;
  const char* steps;
  GLInitInfo info;
  EGLint version = 0;  // of the caller's context; 0 for the library's own
  bool has_state = false;
  bool has_full_cache = false;
};

// Odd and planar: what needs most memory.
constexpr GLInitInfo kOddInfo = {21, 13, 7, 6, 12, 9, 21, 13, 0, 1, 2, 0};
constexpr GLInitInfo kSmallInfo = {20, 12, 8, 6, 12, 9, 20, 12, 0, 1, 0, 0};
constexpr GLInitInfo kScreenInfo = {20, 12, 8, 6, 12, 9, 10, 8, 0, 0, 0, 0};
constexpr GLInitInfo kGraphicInfo = {20, 12, 8, 6, 12, 9, 20, 12, 1, 1, 7, 1};
constexpr auto kSessions = std::to_array<Scenario>({
    {"Everything", "ipmfdc1234xM", kSmallInfo},
    {"MapsEndFirstThenOnceMore", "imf1cMxid2Mx", kOddInfo},
    {"PackedPortraitInAGraphicBuffer", "ipfdx", kGraphicInfo},
    {"EmptyCache", "Ifmd12xM", kSmallInfo},
    {"FullCache", "Ifmd12xM", kSmallInfo, 0, false, true},
    {"CallersContext", "ipfm1d2xM", kOddInfo, 2},
    {"CallersScreenEs3", "ipfbmd12Mx", kScreenInfo, 3, true},
});
// Each call on its own takes all the memory that it needs.
constexpr auto kSingleCalls = std::to_array<Scenario>({
    {"Frame", "ifx", kOddInfo},
    {"FrameFromDepth", "idx", kOddInfo},
    {"FrameOnTheCpu", "icx", kOddInfo},
    {"Map1", "im1xM", kOddInfo},
    {"Map2", "im2xM", kOddInfo},
    {"Map3", "im3xM", kOddInfo},
    {"Map4", "im4xM", kOddInfo},
    {"MapsWithoutAStart", "iM1xMiM2xMiM3xMiM4xM", kOddInfo},
});

// What a step may change.
struct Handed {
  explicit Handed(const GLInitInfo& info)
      : frame(info), map(frame.weights.size()), untouched(Take()) {}

  [[nodiscard]] Contents Take() const {
    Contents all = frame.Contents();
    all.insert(all.end(), map.span().begin(), map.span().end());
    all.insert(all.end(), out.begin(), out.end());
    return all;
  }
  // As it was at first.
  void Reset() {
    const uint16_t* from = untouched.data();
    const auto fill = [&](auto& values) {
      for (auto& value : values) {
        value = static_cast<std::remove_reference_t<decltype(value)>>(*from++);
      }
    };
    for (auto values : {frame.depth.span()}) fill(values);
    for (auto values : {frame.luma.span(), frame.chroma.span(), map.span()}) {
      fill(values);
    }
    fill(out);
  }

  CallerFrame frame;
  GuardedMemory<uint8_t> map;
  std::array<uint32_t, 3> out = {7, 7, 7};
  const Contents untouched;
};

// The generators' two kinds of arguments.
template <typename Y>
uint32_t Generate(uint32_t (*generator)(uint8_t*, uint16_t*, uint32_t, Y,
                                        uint32_t*, uint32_t*, uint32_t*),
                  Handed& handed) {
  return generator(handed.map.data(), handed.frame.depth.data(), 2, 2,
                   handed.out.data(), &handed.out[1], &handed.out[2]);
}
uint32_t Generate(uint32_t (*generator)(uint8_t*, uint16_t*, uint32_t, int32_t),
                  Handed& handed) {
  return generator(handed.map.data(), handed.frame.depth.data(), 2, 2);
}
#define GENERATOR(id, name, call, y_type, input, map_size, summary) \
  [](Handed& handed) { return Generate(call, handed); },
constexpr auto kGenerators =
    std::to_array<uint32_t (*)(Handed&)>({ZUQEL_REFOCUS_GENERATORS(GENERATOR)});
#undef GENERATOR

uint32_t ShowPictures() {
  static constexpr std::array<uint8_t, 16> kPixels = {200, 0, 0, 99, 1, 2};
  const std::array<DebugPicture, ZUQEL_DEBUG_PICTURES> table = {
      {{kPixels.data(), 2, 2, 3, 4, 16, 16},
       {kPixels.data(), 1, 1, 0, 0, 8, 8}}};
  return zuQelRT_GLShowDebugPicture(1, 1) |
         zuQelRT_GLSetDebugPicture(table.data());
}

uint32_t Do(char step, const GLInitInfo& info, Handed& handed, uint8_t* cache) {
  switch (step) {
    case 'i':
      return InitSession(info);
    case 'I':
      return InitCachedSession(info, cache);
    case 'x':
      return zuQelRT_GLClose();
    case 'm':
      return zuQelRT_GenRefocusMap_init();
    case 'M':
      return zuQelRT_GenRefocusMap_Deinit();
    case 'f':
    case 'd':
    case 'b':
      return handed.frame.Render(
          {.from_depth = step == 'd', .bypass = step == 'b' ? 1 : 0});
    case 'c':
      return zuQelRT_Bokeh_ZU4410_DisparityBase_Expansion_CPU(
          handed.frame.luma.data(), handed.frame.chroma.data(),
          handed.frame.depth.data(), 9, 9);
    case 'p':
      return ShowPictures();
    default:
      return kGenerators.at(static_cast<size_t>(step - '1'))(handed);
  }
}

struct StepResult {
  char step = 0;
  uint32_t status = 0;
  Contents contents;

  bool operator==(const StepResult&) const = default;
};
using Results = std::vector<StepResult>;

class FaultCampaign : public testing::TestWithParam<Scenario> {
 protected:
  FaultCampaign() { __android_log_set_minimum_priority(ANDROID_LOG_SILENT); }
  ~FaultCampaign() override {
    __android_log_set_minimum_priority(ANDROID_LOG_DEFAULT);
  }

  void SetUp() override {
    ResetSession();
    if (GetParam().has_full_cache) {
      Play([] { return 0; });
      cache_.assign(given_cache_.begin(), given_cache_.end());
    }
    Play([] { return 0; });  // from now on all is as it stays
    TakeNotes();
    expected_ = Play([] { return 0; });
    EXPECT_THAT(fake_driver::TakeMisuse(), testing::IsEmpty());
    abandoned_ = fake_driver::TakeAbandoned();
    // Maps that end after the session may die with its context.
    const bool has_own_context = GetParam().version == 0;
    const bool ends_maps_last =
        std::string_view(GetParam().steps).ends_with('M');
    EXPECT_TRUE(abandoned_.empty() || (has_own_context && ends_maps_last));
  }

  static void TakeNotes() {
    fake_driver::TakeMisuse();
    fake_driver::TakeAbandoned();
  }

  // The scenario, while what `arm` gives lives, and a second end.
  template <typename Arm>
  Results Play(Arm arm) {
    const auto& [name, steps, info, version, has_state, has_full_cache] =
        GetParam();
    std::optional<CallerContext> context;
    if (version != 0) context.emplace(64, 48, version);
    if (has_state) SetState();
    given_cache_ = cache_;
    Results results;
    {
      [[maybe_unused]] const auto armed = arm();
      for (const char step : std::string_view(steps)) {
        handed_.Reset();
        const uint32_t status = Do(step, info, handed_, given_cache_.data());
        if (status == ZUQEL_INIT_REFUSED) {
          EXPECT_EQ(BytesHeld(), 0U);
          EXPECT_NE(TheSession().QelMode, kModeRunning);
        }
        results.push_back({step, status, ContentsOf(step, handed_.Take())});
      }
    }
    zuQelRT_GLClose();
    zuQelRT_GenRefocusMap_Deinit();
    EXPECT_EQ(BytesHeld(), 0U);
    return results;
  }

  // The next session is as if nothing had failed.
  void ExpectRecovery() {
    TakeNotes();
    EXPECT_TRUE(Play([] { return 0; }) == expected_);
    EXPECT_THAT(fake_driver::TakeMisuse(), testing::IsEmpty());
    EXPECT_THAT(fake_driver::TakeAbandoned(),
                testing::Each(testing::AnyOfArray(abandoned_)));
    EXPECT_EQ(fake_driver::Alive(), fake_driver::Living());
  }

  [[nodiscard]] Contents ContentsOf(char step, Contents contents) const {
    if (step != 'I') return contents;
    const std::string_view bytes(
        reinterpret_cast<const char*>(given_cache_.data()),
        given_cache_.size());
    const size_t hash = std::hash<std::string_view>()(bytes);
    for (size_t i = 0; i < 4; ++i) {
      contents.push_back(static_cast<uint16_t>(hash >> (16 * i)));
    }
    return contents;
  }

  Handed handed_{GetParam().info};
  std::vector<uint8_t> cache_ = std::vector<uint8_t>(kProgramCacheBytes);
  std::vector<uint8_t> given_cache_ = cache_;
  Results expected_;
  std::vector<std::string> abandoned_;
  const ScopedProperty dumps_{"persist.zu.VLGLbokeh.readfile", "1"};
  const ScopedProperty directory_{"persist.zu.LVGLbokeh.fileDir", "/nowhere/"};
  const ScopedProperty dot_{"persist.zu.LVGLbokeh.FocusDot", "1"};
};

class MemoryCampaign : public FaultCampaign {};
class DriverCampaign : public FaultCampaign {};

TEST_P(MemoryCampaign, BlocksThatAreNotToBeHad) {
  const int before = library_allocations::Count();
  Play([] { return 0; });
  const int places = library_allocations::Count() - before;
  RecordProperty("places", places);
  std::cout << GetParam().name << ": " << places << " blocks\n";
  EXPECT_GT(places, 0);
  for (int number = 1; number <= places; ++number) {
    for (const bool and_later : {false, true}) {
      SCOPED_TRACE(testing::Message() << "block " << number << " of " << places
                                      << ", and later " << and_later);
      TakeNotes();
      const Results results = Play([&] {
        return std::make_unique<library_allocations::FailingBlock>(number,
                                                                   and_later);
      });
      given_cache_ = cache_;
      bool is_refused = false;
      for (const StepResult& result : results) {
        const char step = result.step;
        if (step == 'i' || step == 'I') is_refused = result.status != 0;
        EXPECT_TRUE(result.status == 0 || result.status == ZUQEL_INIT_REFUSED)
            << step;
        const bool is_untouched =
            result.contents == ContentsOf(step, handed_.untouched);
        const bool is_expected = std::any_of(
            expected_.begin(), expected_.end(), [&](const StepResult& row) {
              return row.step == step && row.contents == result.contents;
            });
        // After a refused start there are no frames, but there are maps, and
        // they differ.
        const bool is_frame = step == 'f' || step == 'd' || step == 'b';
        EXPECT_TRUE(is_untouched || (is_refused ? !is_frame : is_expected))
            << step;
      }
      EXPECT_THAT(fake_driver::TakeMisuse(), testing::IsEmpty());
      ExpectRecovery();
    }
  }
}

// What follows from a failure and stays inside of memory: errors, and pixels
// that were drawn elsewhere or not at all.
bool IsForgiven(const std::string& misuse) {
  return misuse.find(": error 0x") != std::string::npos ||
         misuse.ends_with("nobody has written") ||
         misuse.ends_with("nobody has written the pixels") ||
         misuse.ends_with("samples what it draws into");
}

TEST_P(DriverCampaign, CallsOfTheDriverThatFail) {
  std::array<int, fake_driver::kCalls.size()> counts = {};
  const auto count = [&](int sign) {
    for (size_t i = 0; i < counts.size(); ++i) {
      counts[i] += sign * fake_driver::Count(static_cast<Call>(i));
    }
  };
  Play([&] {
    count(-1);
    return std::shared_ptr<void>(nullptr, [&](void*) { count(1); });
  });
  int places = 0;
  for (size_t i = 0; i < counts.size(); ++i) {
    const auto [name, can_fail] = fake_driver::kCalls[i];
    // Of 0: all calls from the first on.
    for (int number = 0; can_fail && number <= counts[i]; ++number) {
      SCOPED_TRACE(testing::Message()
                   << name << " " << number << " of " << counts[i]);
      TakeNotes();
      const Results results = Play([&] {
        return std::make_unique<fake_driver::FailingCall>(
            static_cast<Call>(i), std::max(number, 1), number == 0);
      });
      for (const StepResult& result : results) EXPECT_EQ(result.status, 0U);
      for (const std::string& misuse : fake_driver::TakeMisuse()) {
        EXPECT_TRUE(IsForgiven(misuse)) << misuse;
      }
      if (abandoned_.empty()) {
        EXPECT_THAT(fake_driver::TakeAbandoned(), testing::IsEmpty());
      }
      if (!fake_driver::DeletesContexts(static_cast<Call>(i))) {
        EXPECT_EQ(fake_driver::Alive(), fake_driver::Living());
      }
      // Half of the time would go into the next session after each place of the
      // frequent calls.
      if (number < 4 || number % 16 == 0) ExpectRecovery();
      ++places;
    }
  }
  RecordProperty("places", places);
  std::cout << GetParam().name << ": " << places << " calls\n";
  EXPECT_GT(places, 0);
}

std::string NameOf(const testing::TestParamInfo<Scenario>& info) {
  return info.param.name;
}
INSTANTIATE_TEST_SUITE_P(Session, MemoryCampaign, testing::ValuesIn(kSessions),
                         NameOf);
INSTANTIATE_TEST_SUITE_P(SingleCall, MemoryCampaign,
                         testing::ValuesIn(kSingleCalls), NameOf);
INSTANTIATE_TEST_SUITE_P(Session, DriverCampaign, testing::ValuesIn(kSessions),
                         NameOf);

}  // namespace
}  // namespace zuqel
