// Measures the rows and prints one line of JSON for each, after one about the
// machine. Run by scripts/bench, which makes a table of them.
//
//   bench [--quick] [--scene FOLDER] [--filter EXPRESSION]
#include <android/log.h>
#include <fcntl.h>
#include <libyuv/version.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <exception>
#include <opencv2/core/utility.hpp>
#include <opencv2/core/version.hpp>
#include <regex>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/kernel_set.h"
#include "row.h"
#include "timing.h"

namespace zuqel::bench {
namespace {

constexpr Effort kThorough = {7, 0.4, 2e-3};
constexpr Effort kQuick = {3, 0.05, 1e-4};

struct Options {
  bool is_quick = false;
  std::string scene;
  std::string filter;
};

Options ReadArguments(const std::vector<std::string_view>& arguments) {
  Options options;
  for (size_t i = 0; i < arguments.size(); ++i) {
    const bool has_value = i + 1 < arguments.size();
    if (arguments[i] == "--quick") {
      options.is_quick = true;
    } else if (arguments[i] == "--scene" && has_value) {
      options.scene = arguments[++i];
    } else if (arguments[i] == "--filter" && has_value) {
      options.filter = arguments[++i];
    } else {
      throw std::runtime_error("wrong arguments; use scripts/bench");
    }
  }
  return options;
}

// Standard output for this program alone: the library prints and logs to where
// nobody reads.
std::FILE* TakeOutput() {
  __android_log_set_logger([](const __android_log_message*) {});
  std::FILE* output = fdopen(dup(STDOUT_FILENO), "w");
  const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
  dup2(nowhere, STDOUT_FILENO);
  close(nowhere);
  return output;
}

std::string Quoted(std::string_view text) {
  std::string quoted = "\"";
  for (const char c : text) {
    if (c == '"' || c == '\\') quoted += '\\';
    quoted += c;
  }
  return quoted + '"';
}

void PrintHead(const Scene& scene, bool draws, std::FILE* output) {
  const auto& [x, y] = scene.focus;
  static_cast<void>(
      std::fprintf(output,
                   R"({"compiler": %s, "instruction set": %s, "OpenCV": %s, )"
                   R"("libyuv": "%d", "scene": %s, "OpenGL ES": %s})"
                   "\n",
                   Quoted(ZUQEL_BENCH_COMPILER).c_str(),
                   Quoted(NameOf(ChosenKernelSet())).c_str(),
                   Quoted(CV_VERSION).c_str(), LIBYUV_VERSION,
                   Quoted(scene.name + ", focus " + std::to_string(x) + "," +
                          std::to_string(y))
                       .c_str(),
                   Quoted(draws ? GlName() : "not used").c_str()));
}

std::string AsJson(const std::vector<Time>& times) {
  std::string text;
  for (const Time& each : times) {
    std::array<char, 32> seconds = {};
    static_cast<void>(
        std::snprintf(seconds.data(), seconds.size(), "%.5g", each.seconds));
    text +=
        (text.empty() ? "" : ", ") + Quoted(each.name) + ": " + seconds.data();
  }
  return text;
}

// False if results differ.
bool Measure(const Row& row, const Scene& scene, const Effort& effort,
             std::FILE* output) {
  const Trial trial = row.prepare(scene);
  if (trial.restore) trial.restore();
  trial.ours();
  for (const Contender& peer : trial.peers) {
    if (peer.restore) peer.restore();
    peer.run();
  }
  if (trial.agrees && !trial.agrees()) {
    static_cast<void>(
        std::fprintf(stderr, "results differ: %s\n", row.name.c_str()));
    return false;
  }
  const std::string times =
      AsJson(TimeTrial(trial, effort, std::string_view(row.section) == kGl));
  static_cast<void>(std::fprintf(
      output,
      R"({"section": %s, "row": %s, "pixels": %zu, "bytes": %zu, )"
      R"("working memory": %zu, "operations": %g, "which": %s, )"
      R"("seconds": {%s}})"
      "\n",
      Quoted(row.section).c_str(), Quoted(row.name).c_str(), trial.pixels,
      trial.bytes, trial.working_memory, row.operations_per_pixel,
      Quoted(row.operations).c_str(), times.c_str()));
  static_cast<void>(std::fflush(output));
  return true;
}

std::vector<Row> ChosenRows(const std::string& filter) {
  const std::regex expression(filter);
  std::vector<Row> chosen;
  for (const auto make :
       {PlaneRows, MaskRows, MapRows, FrameRows, SessionRows, StageRows}) {
    for (Row& row : make()) {
      const std::string name = std::string(row.section) + ": " + row.name;
      if (std::regex_search(name, expression)) {
        chosen.push_back(std::move(row));
      }
    }
  }
  return chosen;
}

int Run(const std::vector<std::string_view>& arguments) {
#ifdef __x86_64__
  if (!static_cast<bool>(__builtin_cpu_supports("avx2"))) {
    throw std::runtime_error("the composition's own loops need AVX2");
  }
#endif
  const Options options = ReadArguments(arguments);
  const std::vector<Row> rows = ChosenRows(options.filter);
  if (rows.empty()) throw std::runtime_error("no row is called so");
  const Scene scene =
      options.scene.empty() ? DemoScene() : ReadScene(options.scene);
  std::FILE* output = TakeOutput();
  cv::setNumThreads(1);
  PrintHead(scene,
            std::any_of(rows.begin(), rows.end(),
                        [](const Row& row) {
                          return std::string_view(row.section) == kGl;
                        }),
            output);
  bool agree = true;
  for (const Row& row : rows) {
    agree &= Measure(row, scene, options.is_quick ? kQuick : kThorough, output);
  }
  static_cast<void>(std::fclose(output));
  return agree ? 0 : 1;
}

}  // namespace
}  // namespace zuqel::bench

int main(int argc, char** argv) {
  try {
    return zuqel::bench::Run({argv + 1, argv + argc});
  } catch (const std::exception& error) {
    static_cast<void>(std::fprintf(stderr, "bench: %s\n", error.what()));
    return 1;
  }
}
