// Draws the frame and keeps the call quiet.
#include "bokeh_frame.h"

#include <android/log.h>
#include <fcntl.h>
#include <unistd.h>

#include <cmath>
#include <cstdio>

namespace zuqel::bench {
namespace {

constexpr int32_t kWidth = 1280, kHeight = 960;
constexpr int32_t kMapWidth = 320, kMapHeight = 240;

// 1 on the subject's outline, less inside.
double Outline(int32_t x, int32_t y) {
  return std::hypot((x - 150) / 60.0, (y - 140) / 90.0);
}

uint16_t Disparity(int32_t x, int32_t y) {
  if (Outline(x, y) < 1) return static_cast<uint16_t>(700 + x % 5);
  if (Outline(x + 8, y) < 1) return 1023;  // hidden from the second camera
  return static_cast<uint16_t>(80 + y / 2 + (x * 7 + y * 3) % 4);
}

// Waves with some grain.
uint8_t Texture(int32_t x, int32_t y, uint8_t grain) {
  const double wave = 60 * std::sin(x / 9.0) * std::cos(y / 7.0);
  return static_cast<uint8_t>(118 + static_cast<int>(wave) + grain / 16);
}

}  // namespace

BokehFrame::BokehFrame()
    : luma(GreyNoise(kWidth, kHeight)), chroma(GreyNoise(kWidth, kHeight / 2)) {
  for (int32_t y = 0; y < kHeight; ++y) {
    for (int32_t x = 0; x < kWidth; ++x) {
      uint8_t& pixel = luma.View().row(y)[x];
      pixel = Texture(x, y, pixel);
    }
  }
  for (uint8_t& sample : chroma.pixels) {
    sample = static_cast<uint8_t>(120 + sample / 16);
  }
  for (int32_t i = 0; i < kMapWidth * kMapHeight; ++i) {
    disparity.push_back(Disparity(i % kMapWidth, i / kMapWidth));
  }
  source_luma_ = luma;
  source_chroma_ = chroma;
  source_disparity_ = disparity;
}

void BokehFrame::Restore() {
  luma.pixels = source_luma_.pixels;
  chroma.pixels = source_chroma_.pixels;
  disparity = source_disparity_;
}

ExpansionFrame BokehFrame::View() {
  return {.luma = luma.View(),
          .chroma = chroma.pixels,
          .disparity = {disparity.data(), kMapWidth, kMapHeight},
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
