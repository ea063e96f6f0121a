// Sizes and lifetimes of the working buffers, one row each.
#include "api/working_buffers.h"

#include <algorithm>
#include <optional>

#include "base/log.h"

namespace zuqel {
namespace {

// kWorkAndOne has one pixel more: the disparity-base map reads that far.
enum class Extent { kPreview, kWork, kWorkAndOne, kDepth, kWorkOrDepth };
enum class MadeBy { kBothStarts, kCompiledStart, kNobody };

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
        {Extent::kWorkAndOne, 4, MadeBy::kBothStarts,
         FreedBy::kRefocusMapDeinit},
        {Extent::kWorkAndOne, 1, MadeBy::kBothStarts,
         FreedBy::kRefocusMapDeinit},
        {Extent::kDepth, 4, MadeBy::kBothStarts, FreedBy::kRefocusMapDeinit},
        {Extent::kDepth, 4, MadeBy::kCompiledStart, FreedBy::kClose},
        {Extent::kDepth, 2, MadeBy::kNobody, FreedBy::kRefocusMapDeinit},
        {Extent::kWorkOrDepth, 1, MadeBy::kNobody, FreedBy::kRefocusMapDeinit},
    }};

std::optional<size_t> BytesOf(const BufferRow& row, const GLInitInfo& info) {
  const int32_t pixel = row.bytes_per_pixel;
  const auto work = ByteCount(info.WorkWidth, info.WorkHeight, pixel);
  const auto depth = ByteCount(info.DepthWidth, info.DepthHeight, pixel);
  switch (row.extent) {
    case Extent::kPreview:
      return ByteCount(info.PreviewWidth, info.PreviewHeight, pixel);
    case Extent::kWork:
      return work;
    case Extent::kWorkAndOne:
      if (!work) return std::nullopt;
      return *work + static_cast<size_t>(pixel);
    case Extent::kDepth:
      return depth;
    case Extent::kWorkOrDepth:
      if (!work || !depth) return std::nullopt;
      return std::max(*work, *depth);
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
    if (!buffers_[i].Reserve(BytesOf(kRows[i], info))) return false;
  }
  return true;
}

bool WorkingBuffers::Reserve(BufferRole role, const GLInitInfo& info) {
  return (*this)[role].Reserve(BytesOf(kRows[static_cast<size_t>(role)], info));
}

void WorkingBuffers::Release(FreedBy by) {
  for (size_t i = 0; i < kRows.size(); ++i) {
    if (kRows[i].freed_by == by) buffers_[i].Release();
  }
}

void LogBuffer(WorkingBuffers& buffers, const NamedBuffer& buffer,
               const char* event) {
  ZUQEL_LOG("%s %s = 0x%x", event, buffer.name,
            Low32(buffers[buffer.role].bytes()));
}

}  // namespace zuqel
