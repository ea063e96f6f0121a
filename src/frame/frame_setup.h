// What frames are rendered for: the session's part and the call's.
#ifndef ZUQEL_FRAME_FRAME_SETUP_H_
#define ZUQEL_FRAME_FRAME_SETUP_H_

#include <zuQelRT_GL.h>

#include <cstddef>
#include <cstdint>

#include "base/image_size.h"
#include "render/plane_conversion.h"

namespace zuqel {

// Fixed by the latest initialisation.
struct FrameSetup {
  ImageSize preview;
  ImageSize depth;
  ImageSize work;
  ImageSize output;
  // The preview size as it was given, which the log shows.
  int32_t given_width = 0;
  int32_t given_height = 0;
  int32_t source_format = kFormatNv21;
  bool off_screen = false;
  bool has_focus_dot = false;
  float focal_length = 0;
};

// Arguments of a frame call. Where the two calls differ, `from_depth` says
// which one this is.
struct FrameCall {
  uint8_t* luma = nullptr;
  uint8_t* chroma = nullptr;
  const uint8_t* weights = nullptr;
  uint16_t* depth = nullptr;
  bool from_depth = false;
  uint32_t focus_x = 0;  // in preview pixels
  uint32_t focus_y = 0;
  bool bypass = false;
  FocusRect rect = {};
  float f_number = 1;
  bool portrait = false;
};

// The call's planes in the size of the preview.
inline Frame FrameOf(const FrameCall& call, ImageSize preview) {
  const auto chroma_bytes = static_cast<size_t>(preview.width) *
                            static_cast<size_t>(preview.height / 2);
  return {{call.luma, preview.width, preview.height},
          {call.chroma, chroma_bytes}};
}

// How the preview's pixels reach the GPU.
enum class UploadKind { kNv21, kPlanar, kPacked };

inline UploadKind UploadKindOf(const FrameSetup& setup) {
  if (!setup.off_screen || setup.source_format == kFormatNv21) {
    return UploadKind::kNv21;
  }
  return setup.source_format == kFormatPlanar ? UploadKind::kPlanar
                                              : UploadKind::kPacked;
}

}  // namespace zuqel

#endif  // ZUQEL_FRAME_FRAME_SETUP_H_
