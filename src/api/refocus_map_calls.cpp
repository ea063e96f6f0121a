// Makes refocus maps: on the GPU, and on the CPU from disparity and distance.
#include <zuQelRT_GL.h>

#include <algorithm>
#include <cstdio>
#include <initializer_list>
#include <optional>
#include <span>

#include "api/session.h"
#include "base/clock.h"
#include "base/log.h"
#include "depth/statistics.h"
#include "depth/focus_mask.h"
#include "depth/hole_filling.h"
#include "depth/morphology.h"
#include "gl/gl_state.h"
#include "render/plane_conversion.h"

namespace {

using zuqel::Buffer;
using zuqel::BufferRole;
using zuqel::ValueRange;
using zuqel::ImageSize;
using zuqel::Plane;
using zuqel::ProgramRole;
using zuqel::Session;

constexpr int32_t kRefinedTrimPercent = 1;
constexpr int32_t kDisparityBaseTrimPercent = 5;
constexpr int32_t kDistanceTrimPercent = 5;
// The opening removes blurred regions narrower than 9 pixels.
constexpr uint8_t kOpeningRadius = 4;

// Arguments of a call on disparity. `y` has a sign in some calls and none in
// another; 64 bits hold both.
struct DisparityCall {
  uint8_t* map = nullptr;
  uint16_t* disparity = nullptr;
  int64_t x = 0;
  int64_t y = 0;
  uint32_t* min = nullptr;
  uint32_t* max = nullptr;
  uint32_t* focus = nullptr;
};

struct DisparityStatistics {
  ValueRange range;
  uint16_t focus = 0;  // the most frequent around the focus point
};

bool HasMaps(const DisparityCall& call) {
  if (call.map != nullptr && call.disparity != nullptr) return true;
  ZUQEL_LOG(
      "Pointer is NULL in GenRefocusMap, a_pucDest = 0x%x, a_puwInputDepth = "
      "0x%x",
      zuqel::Low32(call.map), zuqel::Low32(call.disparity));
  return false;
}

ImageSize MapSize(const Session& session) {
  return zuqel::SizeFrom(session.gInfo.WorkWidth, session.gInfo.WorkHeight);
}

template <typename T>
Plane<T> DepthPlane(const Session& session, T* data) {
  const ImageSize size =
      zuqel::SizeFrom(session.gInfo.DepthWidth, session.gInfo.DepthHeight);
  return {data, size.width, size.height};
}

Plane<uint8_t> MapPlane(const Session& session, uint8_t* data) {
  const ImageSize size = MapSize(session);
  return {data, size.width, size.height};
}

bool Reserve(Session& session, std::initializer_list<BufferRole> roles) {
  for (const BufferRole role : roles) {
    if (!session.buffers.Reserve(role, session.gInfo)) return false;
  }
  return true;
}

// The map's pixels as words, and some more where there is room.
std::span<uint32_t> MapWords(Session& session, size_t more = 0) {
  const Plane<uint8_t> map = MapPlane(session, nullptr);
  return session.buffers[BufferRole::kWeightMapRm].words().first(map.size() +
                                                                 more);
}

DisparityStatistics TakeDisparity(const DisparityCall& call,
                                  Plane<uint16_t> disparity, int32_t percent) {
  zuqel::FillDisparityHoles(disparity);
  return {zuqel::GetDispRange(disparity, percent),
          zuqel::GetFocusDisp(disparity, static_cast<uint16_t>(call.x),
                              static_cast<uint16_t>(call.y))};
}

void WriteStatistics(const DisparityStatistics& statistics,
                     const DisparityCall& call) {
  if (call.min != nullptr) *call.min = statistics.range.min;
  if (call.max != nullptr) *call.max = statistics.range.max;
  if (call.focus != nullptr) *call.focus = statistics.focus;
}

// GL state for the calling thread when the objects live in its context;
// without, there is nothing to draw with and maps are zeros.
class DrawScope {
 public:
  explicit DrawScope(const Session& session) {
    if (zuqel::IsCurrent(session.refocus_map.render_context)) {
      plain_state_.emplace();
    }
  }
  [[nodiscard]] bool can_draw() const { return plain_state_.has_value(); }

 private:
  std::optional<zuqel::PlainGlState> plain_state_;
};

// Draws the weights of the disparity map on the GPU. `focus` is the disparity
// in focus.
void DrawWeights(Session& session, const DisparityCall& call,
                 ProgramRole program, const ValueRange& range,
                 uint16_t focus) {
  const auto& render = session.refocus_map.render;
  const auto disparity = DepthPlane<const uint16_t>(session, call.disparity);
  zuqel::UploadRefocusDepth(
      render, disparity,
      session.buffers[BufferRole::kInputDepthRgbaRm].words());
  zuqel::PassRefocusWeights(
      render, program, MapSize(session),
      {.mouse_x =
           static_cast<float>(call.x) / static_cast<float>(disparity.width),
       .mouse_y =
           static_cast<float>(call.y) / static_cast<float>(disparity.height),
       .focus_plane = static_cast<float>(focus),
       .min_depth = static_cast<float>(range.min),
       .max_depth = static_cast<float>(range.max),
       .focal_length =
           session.camera.focal_length / session.camera.focal_length_divisor});
}

// What was drawn, as words; zeros where nothing could be.
void ReadMap(Session& session, const DrawScope& scope) {
  if (scope.can_draw()) {
    zuqel::ReadRefocusMap(MapSize(session), MapWords(session));
  } else {
    const std::span<uint32_t> words = MapWords(session);
    std::fill(words.begin(), words.end(), 0U);
  }
}

// The focus point in pixels of the map. Products have 32 bits; a size of 0
// gives 0.
zuqel::MaskPoint ScaleToMap(const Session& session, uint32_t x, int32_t y) {
  const auto depth = DepthPlane<uint8_t>(session, nullptr);
  const ImageSize map = MapSize(session);
  const auto product = static_cast<int32_t>(static_cast<uint32_t>(y) *
                                            static_cast<uint32_t>(map.height));
  return {depth.width == 0 ? 0
                           : x * static_cast<uint32_t>(map.width) /
                                 static_cast<uint32_t>(depth.width),
          depth.height == 0 ? 0 : product / depth.height};
}

// Removes narrow regions of 255 from a mask. `eroded` may be the mask itself.
bool OpenMask(Session& session, Plane<const uint8_t> mask,
              Plane<uint8_t> eroded, uint8_t* map) {
  Buffer& scratch = session.refocus_map.scratch.filter;
  return zuqel::ErodeMin(mask, kOpeningRadius, scratch, eroded) &&
         zuqel::DilateMax(eroded, kOpeningRadius, scratch,
                          {map, mask.width, mask.height});
}

void GenerateRefined(Session& session, const DisparityCall& call) {
  if (!Reserve(session,
               {BufferRole::kInputDepthRgbaRm, BufferRole::kWeightMapRm,
                BufferRole::kWeightMapCharRm})) {
    return;
  }
  const DisparityStatistics statistics = TakeDisparity(
      call, DepthPlane(session, call.disparity), kRefinedTrimPercent);
  const DrawScope scope(session);
  if (scope.can_draw()) {
    DrawWeights(session, call, ProgramRole::DepthWeightProgram,
                statistics.range, statistics.focus);
  }

  const uint32_t read_start = zuqel::MillisecondClock();
  ReadMap(session, scope);
  const Plane<uint8_t> weights =
      MapPlane(session, session.buffers[BufferRole::kWeightMapCharRm].bytes());
  zuqel::KeepRed(MapWords(session), weights.data);
  ZUQEL_LOG("glReadPixel takes %d ms", zuqel::ElapsedSince(read_start));

  const uint32_t clean_up_start = zuqel::MillisecondClock();
  const Plane<uint8_t> map = MapPlane(session, call.map);
  if (!zuqel::RefineRefocusMap(
          weights,
          ScaleToMap(session, static_cast<uint32_t>(call.x),
                     static_cast<int32_t>(call.y)),
          session.refocus_map.scratch.refinement, map)) {
    return;
  }
  ZUQEL_LOG("CCL takes %d ms", zuqel::ElapsedSince(clean_up_start));

  if (scope.can_draw()) {
    zuqel::PassSoftenRefocusMap(session.refocus_map.render, map,
                                MapWords(session));
  }
  ReadMap(session, scope);
  zuqel::KeepRed(MapWords(session), map.data);
  WriteStatistics(statistics, call);
}

void GenerateDisparityBase(Session& session, const DisparityCall& call) {
  if (!Reserve(session,
               {BufferRole::kInputDepthRgbaRm, BufferRole::kWeightMapRm,
                BufferRole::kWeightMapCharRm, BufferRole::kBoundaryBlur})) {
    return;
  }
  const Plane<uint16_t> disparity = DepthPlane(session, call.disparity);
  const DisparityStatistics statistics =
      TakeDisparity(call, disparity, kDisparityBaseTrimPercent);
  const DrawScope scope(session);
  if (scope.can_draw()) {
    DrawWeights(session, call, ProgramRole::AllInFocusWeightProgram,
                statistics.range, zuqel::ValueAt(disparity, call.x, call.y));
  }
  ReadMap(session, scope);
  const Plane<uint8_t> weights =
      MapPlane(session, session.buffers[BufferRole::kWeightMapCharRm].bytes());
  // One pixel more than the map has.
  zuqel::KeepRed(MapWords(session, 1), weights.data);
  const Plane<uint8_t> eroded =
      MapPlane(session, session.buffers[BufferRole::kBoundaryBlur].bytes());
  if (OpenMask(session, weights, eroded, call.map)) {
    WriteStatistics(statistics, call);
  }
}

void GenerateDisparityBaseCpu(Session& session, const DisparityCall& call) {
  const Plane<uint16_t> disparity = DepthPlane(session, call.disparity);
  Buffer& mask_buffer = session.refocus_map.scratch.mask;
  if (!Reserve(session, {BufferRole::kBoundaryBlur}) ||
      !mask_buffer.Reserve(
          zuqel::ByteCount(disparity.width, disparity.height, 1))) {
    return;
  }
  const DisparityStatistics statistics =
      TakeDisparity(call, disparity, kDisparityBaseTrimPercent);
  const auto [min, max] = statistics.range;
  const uint16_t focus = zuqel::ValueAt(disparity, call.x, call.y);
  ZUQEL_LOG(
      "FocusDisp = %d, focusDisparity = %d, minDepth = %d, maxDepth = %d\n",
      focus, statistics.focus, min, max);
  const auto mask = DepthPlane(session, mask_buffer.bytes());
  zuqel::FocusMaskDisparity(disparity, {max, min, focus}, mask);
  const auto eroded =
      DepthPlane(session, session.buffers[BufferRole::kBoundaryBlur].bytes());
  if (OpenMask(session, mask, eroded, call.map)) {
    WriteStatistics(statistics, call);
  }
}

struct DistanceCall {
  uint8_t* map = nullptr;
  uint16_t* distance = nullptr;
  uint32_t x = 0;
  int32_t y = 0;
};

// Reduces the filled distances to 10 bits, of which the mask is made.
void MaskOnDistance(const DistanceCall& call, Plane<const uint16_t> distance,
                    Plane<uint16_t> quantised, Plane<uint8_t> mask) {
  const uint16_t ExtremeMinDist = zuqel::SmallestDistance(distance);
  static_cast<void>(std::printf("ExtremeMinDist=%d\n", ExtremeMinDist));
  zuqel::QuantiseDistance(distance, ExtremeMinDist, quantised);
  const auto [uwMinQuanDist, uwMaxQuanDist] =
      zuqel::GetQuanDistRange(quantised, kDistanceTrimPercent);
  ZUQEL_LOG("uwMaxQuanDist = %d\n", uwMaxQuanDist);
  ZUQEL_LOG("uwMinQuanDist = %d\n", uwMinQuanDist);
  const uint16_t FocusQuanDist = zuqel::ValueAt(quantised, call.x, call.y);
  ZUQEL_LOG("FocusQuanDist = %d\n", FocusQuanDist);
  zuqel::FocusMaskDist(quantised, {uwMaxQuanDist, uwMinQuanDist, FocusQuanDist},
                       mask);
}

void GenerateFromDistance(Session& session, const DistanceCall& call) {
  const Plane<uint16_t> distance = DepthPlane(session, call.distance);
  Buffer& masks = session.refocus_map.scratch.mask;
  Buffer& quantised = session.refocus_map.scratch.quantised;
  if (!masks.Reserve(zuqel::ByteCount(distance.width, distance.height, 1)) ||
      !quantised.Reserve(
          zuqel::ByteCount(distance.width, distance.height, 2))) {
    return;
  }
  zuqel::FillDistanceHoles(distance);
  const auto mask = DepthPlane(session, masks.bytes());
  MaskOnDistance(
      call, distance,
      DepthPlane(session, reinterpret_cast<uint16_t*>(quantised.bytes())),
      mask);
  // Without memory for the filters the caller's map stays as it is.
  static_cast<void>(OpenMask(session, mask, mask, call.map));
}

uint32_t Generate(const DisparityCall& call,
                  void (*generate)(Session&, const DisparityCall&)) {
  if (!HasMaps(call)) return ZUQEL_NULL_POINTER;
  generate(zuqel::TheSession(), call);
  return ZUQEL_SUCCESS;
}

}  // namespace

uint32_t zuQelRT_GenRefocusMap(uint8_t* a_pucDest, uint16_t* a_puwInputDepth,
                               uint32_t x, int32_t y, uint32_t* min,
                               uint32_t* max, uint32_t* focus) {
  ZUQEL_LOG("zuQelRT_GenRefocusMap +");
  const uint32_t status = Generate(
      {a_pucDest, a_puwInputDepth, x, y, min, max, focus}, GenerateRefined);
  if (status == ZUQEL_SUCCESS) ZUQEL_LOG("zuQelRT_GenRefocusMap -");
  return status;
}

uint32_t zuQelRT_GenRefocusMap_ZU4410_DispartyBase(uint8_t* a_pucDest,
                                                   uint16_t* a_puwInputDepth,
                                                   uint32_t x, int32_t y,
                                                   uint32_t* min, uint32_t* max,
                                                   uint32_t* focus) {
  const uint32_t start = zuqel::MillisecondClock();
  const uint32_t status =
      Generate({a_pucDest, a_puwInputDepth, x, y, min, max, focus},
               GenerateDisparityBase);
  if (status == ZUQEL_SUCCESS) {
    ZUQEL_LOG("GenRefocusMap_ZU4410_DispartyBase take test %d ms",
              zuqel::ElapsedSince(start));
  }
  return status;
}

uint32_t zuQelRT_GenRefocusMap_ZU4410_DispartyBase_CPU(
    uint8_t* a_pucDest, uint16_t* a_puwInputDepth, uint32_t x, uint32_t y,
    uint32_t* min, uint32_t* max, uint32_t* focus) {
  const uint32_t start = zuqel::MillisecondClock();
  const uint32_t status =
      Generate({a_pucDest, a_puwInputDepth, x, y, min, max, focus},
               GenerateDisparityBaseCpu);
  if (status == ZUQEL_SUCCESS) {
    ZUQEL_LOG("GenRefocusMap_ZU4410_DispartyBase take %d ms",
              zuqel::ElapsedSince(start));
  }
  return status;
}

uint32_t zuQelRT_GenRefocusMap_Dist(uint8_t* a_pucDest, uint16_t* distance,
                                    uint32_t x, int32_t y) {
  const uint32_t start = zuqel::MillisecondClock();
  if (a_pucDest == nullptr || distance == nullptr) return ZUQEL_SUCCESS;
  GenerateFromDistance(zuqel::TheSession(), {a_pucDest, distance, x, y});
  ZUQEL_LOG("Gen refocus by distance done, take %d ms",
            zuqel::ElapsedSince(start));
  return ZUQEL_SUCCESS;
}
