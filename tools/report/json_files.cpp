// The JSON files of scenes and reports, by nlohmann's library, which no
// header includes.
#include "report/json_files.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <nlohmann/json.hpp>
#include <string_view>
#include <utility>

#include "coordinates.h"
#include "report/text.h"
#include "tool_error.h"

namespace zuqel::tools {
namespace {

using Json = nlohmann::ordered_json;

constexpr int kFormat = 1;
constexpr std::string_view kFociKey = "focus_points";

// A value of a file, and where in the file it is.
class Node {
 public:
  Node(std::string where, const Json& json)
      : where_(std::move(where)), json_(&json) {}

  [[noreturn]] void Refuse(const std::string& fault) const {
    throw InputError(where_ + ": " + fault);
  }
  void RequireObject() const {
    if (!json_->is_object()) Refuse("is not an object");
  }

  // Nothing if this object lacks it.
  [[nodiscard]] std::optional<Node> Find(const std::string& key) const {
    RequireObject();
    const auto found = json_->find(key);
    if (found == json_->end()) return std::nullopt;
    return Node(where_ + ": " + key, *found);
  }
  [[nodiscard]] Node Get(const std::string& key) const {
    const std::optional<Node> found = Find(key);
    if (!found) Refuse("has no " + key);
    return *found;
  }
  [[nodiscard]] std::vector<Node> Items() const {
    if (!json_->is_array()) Refuse("is not a list");
    std::vector<Node> items;
    items.reserve(json_->size());
    for (const Json& item : *json_) {
      items.emplace_back(where_ + ": " + std::to_string(items.size() + 1),
                         item);
    }
    return items;
  }

  [[nodiscard]] std::string Text() const {
    if (!json_->is_string()) Refuse("is not a text");
    // Without control characters.
    std::string text = ToUtf8(json_->get_ref<const std::string&>());
    if (text.size() > kLongestText) {
      Refuse("is longer than " + std::to_string(kLongestText) + " bytes");
    }
    return text;
  }
  // A place in a picture of the largest size.
  [[nodiscard]] int Coordinate() const {
    const bool is_inside =
        json_->is_number_unsigned() && json_->get<uint64_t>() < kLargestSide;
    if (!is_inside) {
      Refuse("is not a whole number of 0 to " +
             std::to_string(kLargestSide - 1));
    }
    return json_->get<int>();
  }
  // Nothing for null.
  [[nodiscard]] std::optional<double> Number() const {
    if (json_->is_null()) return std::nullopt;
    if (!json_->is_number()) Refuse("is not a number");
    return json_->get<double>();
  }

  // The key of this object that starts with `start`; empty if there is none.
  [[nodiscard]] std::string KeyWith(std::string_view start) const {
    std::string key;
    for (const auto& item : json_->items()) {
      if (!item.key().starts_with(start)) continue;
      if (!key.empty()) Refuse("has several lists of focus points");
      key = item.key();
    }
    return key;
  }

 private:
  std::string where_;
  const Json* json_;
};

// Depth is limited since each level takes far more memory than its bracket.
Json Parse(const std::string& name, std::span<const uint8_t> bytes) {
  constexpr int kDeepest = 16;
  const auto check = [&](int depth, Json::parse_event_t, const Json&) {
    if (depth > kDeepest) throw InputError(name + ": is nested too deeply");
    return true;
  };
  try {
    return Json::parse(bytes.begin(), bytes.end(), check);
  } catch (const Json::parse_error& error) {
    throw InputError(name + ": is not JSON at byte " +
                     std::to_string(error.byte));
  } catch (const Json::out_of_range&) {
    throw InputError(name + ": holds a number that is too large");
  }
}

NamedFocus ReadFocus(const Node& node) {
  NamedFocus focus;
  if (const auto what = node.Find("what")) focus.what = what->Text();
  focus.point = {node.Get("x").Coordinate(), node.Get("y").Coordinate()};
  return focus;
}

std::optional<Size> ReadFrame(const Node& meta, const std::string& key) {
  const std::string_view rest = std::string_view(key).substr(kFociKey.size());
  if (rest.empty()) return std::nullopt;
  const std::optional<Size> size =
      rest.front() == '_' ? ParseSize(rest.substr(1)) : std::nullopt;
  if (!size) meta.Refuse(std::string(kFociKey) + " does not end in _WxH");
  CheckSize(std::string(kFociKey), *size);
  return size;
}

// A name that stays in its folder.
KeptPicture ReadPictureName(const Node& node) {
  const std::string file = node.Text();
  const bool is_plain = file.size() > 4 && file.ends_with(".png") &&
                        file.find('/') == std::string::npos;
  if (!is_plain) node.Refuse("is not the name of a PNG file");
  return {file.substr(0, file.size() - 4), {}};
}

ReportEntry ReadEntry(const Node& node) {
  ReportEntry entry;
  entry.scene = node.Get("scene").Text();
  entry.focus = ReadFocus(node.Get("focus"));
  entry.maker = node.Get("maker").Text();
  entry.f_number = node.Get("f_number").Number();
  entry.picture = ReadPictureName(node.Get("file"));
  if (const auto kept = node.Find("sharpness_kept")) {
    entry.sharpness = {kept->Get("at_focus").Number(),
                       kept->Get("elsewhere").Number()};
  }
  return entry;
}

Json OrNull(const std::optional<double>& number) {
  return number ? Json(*number) : Json();
}

Json Rounded(std::optional<double> number) {
  if (number) number = std::round(*number * 1000) / 1000;
  return OrNull(number);
}

Json ToNode(const ReportEntry& entry) {
  const auto& [what, point] = entry.focus;
  Json node = {{"scene", entry.scene},
               {"focus", {{"what", what}, {"x", point.x}, {"y", point.y}}},
               {"f_number", OrNull(entry.f_number)},
               {"maker", entry.maker},
               {"file", entry.picture.file()},
               {"width", entry.picture.size.width},
               {"height", entry.picture.size.height},
               {"sharpness_kept",
                {{"at_focus", Rounded(entry.sharpness.at_focus)},
                 {"elsewhere", Rounded(entry.sharpness.elsewhere)}}}};
  if (entry.frame_ms) node["frame_ms"] = Rounded(entry.frame_ms);
  return node;
}

}  // namespace

SceneMeta ParseSceneMeta(const std::string& name,
                         std::span<const uint8_t> bytes) {
  const Json json = Parse(name, bytes);
  const Node node(name, json);
  node.RequireObject();
  SceneMeta meta;
  if (const auto title = node.Find("title")) meta.title = title->Text();
  const std::string key = node.KeyWith(kFociKey);
  if (key.empty()) return meta;
  meta.frame = ReadFrame(node, key);
  const Node list = node.Get(key);
  const std::vector<Node> points = list.Items();
  if (points.size() > kMostFoci) {
    list.Refuse("has more than " + std::to_string(kMostFoci) + " points");
  }
  std::transform(points.begin(), points.end(), std::back_inserter(meta.foci),
                 ReadFocus);
  return meta;
}

std::string ToJson(const std::vector<ReportEntry>& entries) {
  Json list = Json::array();
  for (const ReportEntry& entry : entries) list.push_back(ToNode(entry));
  const Json report = {{"format", kFormat}, {"entries", std::move(list)}};
  return report.dump(1) + "\n";
}

std::vector<ReportEntry> ParseReport(const std::string& name,
                                     std::span<const uint8_t> bytes) {
  const Json json = Parse(name, bytes);
  const Node node(name, json);
  if (node.Get("format").Number() != kFormat) {
    node.Refuse("is of another version");
  }
  std::vector<ReportEntry> entries;
  for (const Node& item : node.Get("entries").Items()) {
    entries.push_back(ReadEntry(item));
  }
  return entries;
}

}  // namespace zuqel::tools
