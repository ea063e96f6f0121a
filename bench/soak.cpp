// Does the same thing very often and prints what is held on the way. Run by
// scripts/soak, which draws the figures.
//
//   soak             lists the scenarios, each with its number of turns
//   soak NAME TURNS  prints, at the start and after every tenth: the turn,
//   bytes
//                    of the library's buffers, bytes of the process that are
//                    resident, and GL names in the context; to standard error,
//                    since the library writes to standard output
#include <GLES2/gl2.h>
#include <android/log.h>
#include <zuQelRT_GL.h>
#include <zuQelRT_generators.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <functional>
#include <iostream>
#include <string>
#include <string_view>
#include <vector>

#include "caller_frame.h"
#include "library_allocations.h"
#include "pin_driver.h"
#include "resident_bytes.h"

namespace zuqel {
namespace {

// Drivers give out the lowest names that are free.
int NamesInContext() {
  constexpr GLuint kNamesTried = 4096;
  int count = 0;
  for (GLuint name = 1; name <= kNamesTried; ++name) {
    for (const auto is_one : {glIsTexture, glIsBuffer, glIsFramebuffer,
                              glIsRenderbuffer, glIsShader, glIsProgram}) {
      count += is_one(name);
    }
  }
  return count;
}

void Print(int turn) {
  std::cerr << turn << '\t' << library_allocations::BytesHeld() << '\t'
            << ResidentBytes() << '\t' << NamesInContext() << '\n';
}

void PrintEveryTenth(int turn, int turns) {
  if (turn % std::max(turns / 10, 1) == 0) Print(turn);
}

constexpr size_t kLargestMap = size_t{32} * 24;

GLInitInfo Info(bool has_graphic_buffer = false) {
  GLInitInfo info = SmallInfo();
  info.GraphicBufferFlag = has_graphic_buffer ? 1 : 0;
  return info;
}

uint32_t Start(const GLInitInfo& info, uint8_t* cache) {
  constexpr std::array<uint8_t, 512> kRecord = {};
  return cache == nullptr
             ? zuQelRT_GLInitV1(kRecord.data(), 512, nullptr, 0, &info)
             : zuQelRT_GLInitV1_1(kRecord.data(), 512, nullptr, 0, &info,
                                  cache);
}

// Turns inside one session.
void InSession(int turns, const std::function<void(CallerFrame&)>& turn) {
  const GLInitInfo info = Info();
  CallerFrame frame(info);
  Start(info, nullptr);
  zuQelRT_GenRefocusMap_init();
  turn(frame);
  for (int i = 0; i <= turns; ++i) {
    PrintEveryTenth(i, turns);
    frame.depth.data()[0] = ZUQEL_INVALID_DISPARITY;
    turn(frame);
  }
  zuQelRT_GenRefocusMap_Deinit();
  zuQelRT_GLClose();
}

// Sessions of one frame each.
void Sessions(int turns, bool is_cached, bool has_graphic_buffer) {
  const GLInitInfo info = Info(has_graphic_buffer);
  const CallerFrame frame(info);
  std::vector<uint8_t> cache(ZUQEL_PROGRAM_CACHE_SIZE);
  for (int i = 0; i <= turns; ++i) {
    Start(info, is_cached ? cache.data() : nullptr);
    if (i == 0) PinDriverLibraries();
    static_cast<void>(frame.Render({.from_depth = i % 2 == 0}));
    PrintEveryTenth(i, turns);
    zuQelRT_GLClose();
  }
}

// The generators' two kinds of arguments.
template <typename Y>
void Generate(uint32_t (*generator)(uint8_t*, uint16_t*, uint32_t, Y, uint32_t*,
                                    uint32_t*, uint32_t*),
              uint8_t* map, CallerFrame& frame) {
  generator(map, frame.depth.data(), 3, 3, nullptr, nullptr, nullptr);
}
void Generate(uint32_t (*generator)(uint8_t*, uint16_t*, uint32_t, int32_t),
              uint8_t* map, CallerFrame& frame) {
  generator(map, frame.depth.data(), 3, 3);
}

struct Scenario {
  std::string name;
  int turns;
  std::function<void(int)> run;
};

std::vector<Scenario> Scenarios() {
  std::vector<Scenario> rows;
  for (const bool from_depth : {false, true}) {
    rows.push_back(
        {from_depth ? "frames from disparity" : "frames from weights", 100000,
         [=](int turns) {
           InSession(turns, [=](CallerFrame& frame) {
             static_cast<void>(frame.Render({.from_depth = from_depth}));
           });
         }});
  }
  rows.push_back({"frames on the CPU", 100000, [](int turns) {
                    InSession(turns, [](CallerFrame& frame) {
                      zuQelRT_Bokeh_ZU4410_DisparityBase_Expansion_CPU(
                          frame.luma.data(), frame.chroma.data(),
                          frame.depth.data(), 3, 3);
                    });
                  }});
  for (const bool is_cached : {false, true}) {
    for (const bool has_buffer : {false, true}) {
      rows.push_back(
          {std::string("sessions") + (is_cached ? ", program cache" : "") +
               (has_buffer ? ", graphic buffer" : ""),
           1000, [=](int turns) { Sessions(turns, is_cached, has_buffer); }});
    }
  }
#define ZUQEL_MAPS(id, generator, call, y_type, input, map_size, summary) \
  rows.push_back({"maps, " generator, 10000, [](int turns) {              \
                    std::vector<uint8_t> map(kLargestMap);                \
                    InSession(turns, [&](CallerFrame& frame) {            \
                      Generate(call, map.data(), frame);                  \
                    });                                                   \
                  }});
  ZUQEL_REFOCUS_GENERATORS(ZUQEL_MAPS)
#undef ZUQEL_MAPS
  return rows;
}

}  // namespace
}  // namespace zuqel

int main(int argc, char** argv) {
  const std::vector<zuqel::Scenario> scenarios = zuqel::Scenarios();
  if (argc != 3) {
    for (const auto& row : scenarios) {
      std::cout << row.name << '\t' << row.turns << '\n';
    }
    return argc == 1 ? 0 : 2;
  }
  __android_log_set_minimum_priority(ANDROID_LOG_SILENT);
  const std::string_view turns_text = argv[2];
  int turns = 0;
  std::from_chars(turns_text.data(), turns_text.data() + turns_text.size(),
                  turns);
  for (const auto& row : scenarios) {
    if (row.name != argv[1]) continue;
    row.run(turns);
    return 0;
  }
  std::cerr << "soak: there is no scenario " << argv[1] << '\n';
  return 2;
}
