// Sizes and lifetimes of the working buffers, one row each.
#include "api/working_buffers.h"

#include <optional>
#include <utility>

namespace zuqel {
namespace {

enum class Extent { kPreview, kWork, kDepth };
enum class MadeBy { kBothStarts, kCompiledStart, kNobody };
enum class FreedBy { kClose, kRefocusMapDeinit };

struct BufferRow {
  Extent extent;
  int32_t bytes_per_pixel;
  MadeBy made_by;
  FreedBy freed_by;
};

// In the order of BufferRole.
constexpr std::array<BufferRow, static_cast<size_t>(BufferRole::kCount)> kRows =
    {{
        {Extent::kPreview, 1, MadeBy::kBothStarts, FreedBy::kClose},
        {Extent::kPreview, 4, MadeBy::kBothStarts, FreedBy::kClose},
        {Extent::kPreview, 4, MadeBy::kBothStarts, FreedBy::kClose},
        {Extent::kWork, 4, MadeBy::kBothStarts, FreedBy::kClose},
        {Extent::kWork, 4, MadeBy::kBothStarts, FreedBy::kClose},
        {Extent::kWork, 1, MadeBy::kBothStarts, FreedBy::kClose},
        {Extent::kWork, 1, MadeBy::kBothStarts, FreedBy::kClose},
        {Extent::kWork, 4, MadeBy::kBothStarts, FreedBy::kRefocusMapDeinit},
        {Extent::kWork, 1, MadeBy::kBothStarts, FreedBy::kRefocusMapDeinit},
        {Extent::kDepth, 4, MadeBy::kBothStarts, FreedBy::kRefocusMapDeinit},
        {Extent::kDepth, 4, MadeBy::kCompiledStart, FreedBy::kClose},
        {Extent::kDepth, 2, MadeBy::kNobody, FreedBy::kRefocusMapDeinit},
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

bool IsMadeAt(const BufferRow& row, Start start) {
  return row.made_by == MadeBy::kBothStarts ||
         (row.made_by == MadeBy::kCompiledStart && start == Start::kCompiled);
}

}  // namespace

bool WorkingBuffers::Reserve(const GLInitInfo& info, Start start) {
  for (size_t i = 0; i < kRows.size(); ++i) {
    if (!IsMadeAt(kRows[i], start)) continue;
    if (buffers_[i].Reserve(BytesOf(kRows[i], info))) continue;
    ReleaseAtClose();
    return false;
  }
  return true;
}

void WorkingBuffers::AbandonRefocusMapBuffers() {
  for (size_t i = 0; i < kRows.size(); ++i) {
    if (kRows[i].freed_by != FreedBy::kRefocusMapDeinit) continue;
    if (!buffers_[i].exists()) continue;
    abandoned_.push_back(std::exchange(buffers_[i], Buffer()));
  }
}

void WorkingBuffers::ReleaseAtClose() {
  abandoned_.clear();
  for (size_t i = 0; i < kRows.size(); ++i) {
    if (kRows[i].freed_by == FreedBy::kClose) buffers_[i].Release();
  }
}

}  // namespace zuqel
