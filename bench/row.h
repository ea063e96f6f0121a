// What is measured: the rows of a table, each our way against other libraries'
// on the same data.
#ifndef ZUQEL_BENCH_ROW_H_
#define ZUQEL_BENCH_ROW_H_

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "scene.h"

namespace zuqel::bench {

// One way to do the work of a row.
struct Contender {
  const char* name;
  std::function<void()> run;
  // Undoes what a run changes, before each one; not timed.
  std::function<void()> restore = {};
};

// A row's work, its data made. What the functions share they own together.
struct Trial {
  size_t pixels = 0;
  size_t bytes = 0;  // each byte of input and output once
  std::function<void()> ours;
  std::function<void()> restore = {};
  std::vector<Contender> peers = {};
  // True if results are equal up to rounding, after each has run once.
  std::function<bool()> agrees = {};
  size_t working_memory = 0;  // bytes; 0: not counted
};

struct Row {
  const char* section;
  std::string name;
  // Where a row costs more than two copies of its bytes: how many operations a
  // pixel takes in plain arithmetic, and which.
  double operations_per_pixel;
  const char* operations;
  std::function<Trial(const Scene&)> prepare;
};

// Sections of the table.
inline constexpr const char* kPlanes = "Planes";
inline constexpr const char* kMasks = "Masks";
inline constexpr const char* kMaps = "Disparity and distance";
inline constexpr const char* kCalls = "Whole calls on the CPU";
inline constexpr const char* kGrowth = "Growth of the CPU frame";
// The only ones in which other threads work: timed by the clock on the wall.
inline constexpr const char* kGl = "OpenGL ES";

std::vector<Row> PlaneRows();
std::vector<Row> MaskRows();
std::vector<Row> MapRows();
std::vector<Row> FrameRows();
// Through the C interface.
std::vector<Row> SessionRows();
// Of the frames there, upload, passes and read-back.
std::vector<Row> StageRows();
// The driver's renderer.
std::string GlName();

}  // namespace zuqel::bench

#endif  // ZUQEL_BENCH_ROW_H_
