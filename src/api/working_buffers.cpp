// Sizes and lifetimes of the working buffers, one row each.
#include "api/working_buffers.h"

#include <optional>

namespace zuqel {
namespace {

enum class Extent { kPreview, kWork, kDepth };
enum class FreedBy { kClose, kRefocusMapDeinit };

struct BufferRow {
  Extent extent;
  int32_t bytes_per_pixel;
  FreedBy freed_by;
};

// In the order of BufferRole.
constexpr std::array<BufferRow, static_cast<size_t>(BufferRole::kCount)> kRows =
    {{
        {Extent::kPreview, 1, FreedBy::kClose},
        {Extent::kPreview, 4, FreedBy::kClose},
        {Extent::kPreview, 4, FreedBy::kClose},
        {Extent::kWork, 4, FreedBy::kClose},
        {Extent::kWork, 4, FreedBy::kClose},
        {Extent::kWork, 1, FreedBy::kClose},
        {Extent::kWork, 1, FreedBy::kClose},
        {Extent::kWork, 4, FreedBy::kRefocusMapDeinit},
        {Extent::kWork, 1, FreedBy::kRefocusMapDeinit},
        {Extent::kDepth, 4, FreedBy::kRefocusMapDeinit},
        {Extent::kDepth, 4, FreedBy::kClose},
    }};

std::optional<size_t> BytesOf(const BufferRow& row, const GLInitInfo& info) {
  switch (row.extent) {
    case Extent::kPreview:
      return ByteCount(info.PreviewWidth, info.PreviewHeight,
                       row.bytes_per_pixel);
    case Extent::kWork:
      return ByteCount(info.WorkWidth, info.WorkHeight, row.bytes_per_pixel);
    case Extent::kDepth:
      return ByteCount(info.DepthWidth, info.DepthHeight, row.bytes_per_pixel);
  }
  return std::nullopt;
}

}  // namespace

bool WorkingBuffers::Reserve(const GLInitInfo& info) {
  for (size_t i = 0; i < kRows.size(); ++i) {
    if (buffers_[i].Reserve(BytesOf(kRows[i], info))) continue;
    ReleaseAtClose();
    return false;
  }
  return true;
}

void WorkingBuffers::ReleaseAtClose() {
  for (size_t i = 0; i < kRows.size(); ++i) {
    if (kRows[i].freed_by == FreedBy::kClose) buffers_[i].Release();
  }
}

}  // namespace zuqel
