// What the window says.
#include "view/view_text.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>

#include "rendering/refocus_map.h"

namespace zuqel::tools {
namespace {

std::string Number(const char* format, double value) {
  std::array<char, 32> text = {};
  static_cast<void>(std::snprintf(text.data(), text.size(), format, value));
  return text.data();
}

std::string NameOf(int maker, bool has_depth) {
  if (maker == kCpuMaker) return "CPU renderer";
  if (const Generator* generator = GeneratorOf(maker)) {
    return std::string("map: ") + generator->name;
  }
  return has_depth ? "frame from disparity" : "frame from weights";
}

// Of the map's pixel that the library looks at; it renders an even size.
std::string DisparityAt(FocusPoint focus, Size photo, const DisparityMap& map) {
  const auto scale = [](int at, int from, int to) {
    return static_cast<int>(int64_t{at} * to / (from + from % 2));
  };
  const int value = map.At(scale(focus.x, photo.width, map.width),
                           scale(focus.y, photo.height, map.height));
  return value >= kUnknownDisparity ? "unknown" : std::to_string(value);
}

}  // namespace

std::string StatusLine(const ViewState& state, const ShownFrame* shown,
                       int columns) {
  std::string before = "focus " + std::to_string(state.focus.x) + "," +
                       std::to_string(state.focus.y);
  if (shown != nullptr && shown->disparity != nullptr) {
    before += "  disparity " +
              DisparityAt(state.focus, state.photo, *shown->disparity);
  }
  before += state.maker == kCpuMaker ? "  f fixed"
                                     : Number("  f/%.3g", state.f_number);
  before += "  " + std::to_string(state.maker);
  std::string name = " ";
  name += NameOf(state.maker, state.has_depth);
  std::string after;
  if (shown != nullptr && shown->result != nullptr) {
    after += Number("  %.0f ms", shown->frame_ms);
  }
  if (state.moment > 0) after += "  moment " + std::to_string(state.moment);
  const auto fits = [columns](const std::string& line) {
    return line.size() <= static_cast<size_t>(std::max(columns, 0));
  };
  std::string whole = before + name + after + "  H help";
  if (fits(whole)) return whole;
  return fits(before + name + after) ? before + name + after : before + after;
}

std::string NoticeLine(const ViewState& state, const ShownFrame* shown,
                       const std::string& report) {
  if (!state.refusal.empty()) return state.refusal;
  if (shown != nullptr && !shown->fault.empty()) return shown->fault;
  if (!report.empty()) return report;
  if (state.shows_original) return "the picture as it was";
  return shown == nullptr ? "rendering" : shown->note;
}

std::vector<std::string> HelpLines(const ViewState& state) {
  std::vector<std::string> lines = {"Click, drag  focus there",
                                    "Wheel        f-number, 1 blurs most",
                                    "Space        hold: the picture as it was",
                                    "D            disparity in false colour",
                                    "W            weights over the picture"};
  for (int maker = kFrameMaker; maker <= kCpuMaker; ++maker) {
    lines.push_back(std::to_string(maker) + "            " +
                    NameOf(maker, state.has_depth));
  }
  lines.insert(lines.end(), {"Z            one-to-one pixels; drag to pan",
                             "F            full screen",
                             "S            save, of the photo's size"});
  if (state.moments > 0) {
    lines.emplace_back("P            play the moving scene");
  }
  lines.insert(lines.end(), {"H            these keys", "Q, Escape    end"});
  return lines;
}

}  // namespace zuqel::tools
