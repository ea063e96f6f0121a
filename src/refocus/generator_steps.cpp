// Statistics, opening and drawing of refocus maps.
#include "refocus/generator_steps.h"

#include <algorithm>

#include "depth/hole_filling.h"
#include "depth/morphology.h"
#include "depth/statistics.h"
#include "render/plane_conversion.h"

namespace zuqel {
namespace {

// The opening removes blurred regions narrower than 9 pixels.
constexpr uint8_t kOpeningRadius = 4;

}  // namespace

DisparityStatistics TakeDisparity(const MapCall& call, const MapSetup& setup,
                                  int32_t percent) {
  const Plane<uint16_t> disparity = PlaneOf(call.depth, setup.depth);
  FillDisparityHoles(disparity);
  return {GetDispRange(disparity, percent),
          GetFocusDisp(disparity, static_cast<uint16_t>(call.x),
                       static_cast<uint16_t>(call.y))};
}

void WriteStatistics(const DisparityStatistics& statistics,
                     const MapCall& call) {
  if (call.min != nullptr) *call.min = statistics.range.min;
  if (call.max != nullptr) *call.max = statistics.range.max;
  if (call.focus != nullptr) *call.focus = statistics.focus;
}

bool ReserveOpening(ImageSize size, GeneratorScratch& scratch) {
  return ReserveSquareFilter(size, kOpeningRadius, scratch.filter);
}

void OpenMask(Plane<const uint8_t> mask, Plane<uint8_t> eroded, uint8_t* map,
              GeneratorScratch& scratch) {
  // Reserved: neither fails.
  static_cast<void>(ErodeMin(mask, kOpeningRadius, scratch.filter, eroded));
  static_cast<void>(DilateMax(eroded, kOpeningRadius, scratch.filter,
                              {map, mask.width, mask.height}));
}

MapDrawing::MapDrawing(const MapWork& work)
    : work_(work), state_(work.maps.gl.IfCurrent()) {
  if (state_ != nullptr) drawing_.emplace(state_->is_es3);
}

std::span<uint32_t> MapDrawing::Words() const {
  const Plane<uint8_t> map = PlaneOf<uint8_t>(nullptr, work_.setup.map);
  return work_.maps.buffers.WeightMap_buffer_RM.words().first(map.size());
}

void MapDrawing::DrawWeights(const MapCall& call, ProgramRole program,
                             const ValueRange& range, uint16_t focus) {
  if (state_ == nullptr) return;
  const ImageSize depth = work_.setup.depth;
  UploadRefocusDepth(*state_, PlaneOf<const uint16_t>(call.depth, depth),
                     work_.maps.buffers.pucInputDepthRGBA_RM.words());
  PassRefocusWeights(
      *state_, *drawing_, program, work_.setup.map, depth,
      {.mouse_x = static_cast<float>(call.x) / static_cast<float>(depth.width),
       .mouse_y = static_cast<float>(call.y) / static_cast<float>(depth.height),
       .focus_plane = static_cast<float>(focus),
       .min_depth = static_cast<float>(range.min),
       .max_depth = static_cast<float>(range.max),
       .focal_length = work_.setup.focal_length});
}

void MapDrawing::DrawSoftened(Plane<const uint8_t> map) {
  if (state_ != nullptr) {
    PassSoftenRefocusMap(*state_, *drawing_, map, Words());
  }
}

void MapDrawing::Read(uint8_t* map, size_t more) const {
  const std::span<uint32_t> words = Words();
  if (state_ != nullptr) {
    ReadRefocusMap(work_.setup.map, words);
  } else {
    std::fill(words.begin(), words.end(), 0U);
  }
  KeepRed(
      work_.maps.buffers.WeightMap_buffer_RM.words().first(words.size() + more),
      map);
}

}  // namespace zuqel
