// Draws the frame and keeps the call quiet.
#include "bokeh_frame.h"

#include <android/log.h>
#include <fcntl.h>
#include <unistd.h>

#include <cmath>
#include <cstdio>

#include "disparity_scenes.h"

namespace zuqel::bench {
namespace {

constexpr int32_t kWidth = 1280, kHeight = 960;

// Waves with some grain.
uint8_t Texture(int32_t x, int32_t y, uint8_t grain) {
  const double wave = 60 * std::sin(x / 9.0) * std::cos(y / 7.0);
  return static_cast<uint8_t>(118 + static_cast<int>(wave) + grain / 16);
}

}  // namespace

BokehFrame::BokehFrame()
    : luma(NoiseImage<uint8_t>(kWidth, kHeight, 5)),
      chroma(NoiseImage<uint8_t>(kWidth, kHeight / 2, 6)),
      disparity(SubjectScene(320, 240)) {
  for (int32_t y = 0; y < kHeight; ++y) {
    for (int32_t x = 0; x < kWidth; ++x) {
      uint8_t& pixel = luma.View().row(y)[x];
      pixel = Texture(x, y, pixel);
    }
  }
  for (uint8_t& sample : chroma.values) {
    sample = static_cast<uint8_t>(120 + sample / 16);
  }
  source_luma_ = luma;
  source_chroma_ = chroma;
  source_disparity_ = disparity;
}

void BokehFrame::Restore() {
  luma.values = source_luma_.values;
  chroma.values = source_chroma_.values;
  disparity.values = source_disparity_.values;
}

ExpansionFrame BokehFrame::View() {
  return {.luma = luma.View(),
          .chroma = chroma.values,
          .disparity = disparity.View(),
          .focus_x = 600,
          .focus_y = 560};
}

Silence::Silence() : output_(dup(STDOUT_FILENO)) {
  __android_log_set_logger([](const __android_log_message*) {});
  static_cast<void>(std::fflush(stdout));
  const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
  dup2(nowhere, STDOUT_FILENO);
  close(nowhere);
}

Silence::~Silence() {
  static_cast<void>(std::fflush(stdout));
  dup2(output_, STDOUT_FILENO);
  close(output_);
  __android_log_set_logger(nullptr);
}

}  // namespace zuqel::bench
