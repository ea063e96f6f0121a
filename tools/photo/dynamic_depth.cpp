// Dynamic depth: files after the picture, listed in the XMP.
#include "photo/dynamic_depth.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

#include "photo/jpeg_segments.h"
#include "tool_error.h"

namespace zuqel::tools {
namespace {

// The namespaces of the list and of its items.
struct Dialect {
  std::string_view container, item;
};
constexpr std::array kDialects = {
    Dialect{"http://ns.google.com/photos/dd/1.0/container/",
            "http://ns.google.com/photos/dd/1.0/item/"},
    Dialect{"http://ns.google.com/photos/1.0/container/",
            "http://ns.google.com/photos/1.0/container/item/"}};
constexpr std::string_view kDepthMap =
    "http://ns.google.com/photos/dd/1.0/depthmap/";

[[noreturn]] void Refuse(const std::string& path, const std::string& what) {
  throw InputError(path + ": its list of files " + what);
}

// A file of the list.
struct Item {
  std::string_view semantic, uri;
  size_t length = 0;   // 0 if not given
  size_t padding = 0;  // to the next
};

size_t ParseLength(const std::string& path, std::string_view text) {
  size_t length = 0;
  if (text.empty()) return length;
  const char* end = text.data() + text.size();
  const auto [parsed, error] = std::from_chars(text.data(), end, length);
  if (error != std::errc() || parsed != end) {
    Refuse(path, "has a length of \"" + std::string(text) + "\"");
  }
  return length;
}

Item ParseItem(const std::string& path, const Xmp& xmp, const Dialect& dialect,
               size_t list_item) {
  const size_t element = xmp.Find(dialect.container, "Item", list_item);
  const size_t at = element == Xmp::kTop ? list_item : element;
  const auto value = [&](std::string_view name) {
    return xmp.Value(dialect.item, name, at);
  };
  return {value("Semantic"), value("DataURI"),
          ParseLength(path, value("Length")),
          ParseLength(path, value("Padding"))};
}

// Wherever the list stands.
std::vector<Item> ParseList(const std::string& path, const Xmp& xmp,
                            const Dialect& dialect) {
  std::vector<Item> items;
  const std::vector<Xmp::Property>& all = xmp.properties();
  for (size_t i = 0; i < all.size(); ++i) {
    if (all[i].name != kXmpListItem) continue;
    if (!all[all[i].parent].Is(dialect.container, "Directory")) continue;
    items.push_back(ParseItem(path, xmp, dialect, i));
  }
  return items;
}

// The range of the depth that has this URI; without one, the first.
RangeRecord FindRange(const std::string& path, const Xmp& xmp,
                      std::string_view uri) {
  const std::vector<Xmp::Property>& all = xmp.properties();
  const auto found =
      std::find_if(all.begin(), all.end(), [&](const Xmp::Property& property) {
        if (!property.Is(kDepthMap, "Format")) return false;
        std::string_view own =
            xmp.Value(kDepthMap, "DepthURI", property.parent);
        if (own.empty()) {
          own = xmp.Value(kDepthMap, "ItemURI", property.parent);
        }
        return own.empty() || uri.empty() || own == uri;
      });
  if (found == all.end()) Refuse(path, "has no DepthMap:Format for its depth");
  return {kDepthMap, found->parent};
}

class FileList {
 public:
  FileList(const std::string& path, std::span<const uint8_t> bytes,
           std::vector<Item> items)
      : path_(path), bytes_(bytes), items_(std::move(items)) {}

  [[nodiscard]] const Item* Find(std::string_view semantic) const {
    const auto found = std::find_if(
        items_.begin(), items_.end(),
        [&](const Item& item) { return item.semantic == semantic; });
    return found == items_.end() ? nullptr : &*found;
  }

  // One after another, from the end of the picture.
  [[nodiscard]] std::span<const uint8_t> Content(const Item& wanted) const {
    if (items_.front().semantic != "Primary") {
      Refuse(path_, "does not begin with Primary");
    }
    const std::optional<size_t> primary = JpegSize(bytes_);
    if (!primary) throw InputError(path_ + ": is truncated");
    std::span<const uint8_t> left = bytes_.subspan(*primary);
    Skip(items_.front().padding, left);
    for (const Item* item = &items_[1]; item != &wanted; ++item) {
      Skip(item->length, left);
      Skip(item->padding, left);
    }
    if (wanted.length == 0) {
      Refuse(path_, "has no length for " + std::string(wanted.semantic));
    }
    const std::span<const uint8_t> content = left;
    Skip(wanted.length, left);
    return content.first(wanted.length);
  }

 private:
  void Skip(size_t size, std::span<const uint8_t>& left) const {
    if (size > left.size()) Refuse(path_, "goes past the end of the file");
    left = left.subspan(size);
  }

  const std::string& path_;
  std::span<const uint8_t> bytes_;
  std::vector<Item> items_;
};

}  // namespace

std::optional<EmbeddedDepth> ReadDynamicDepth(const std::string& path,
                                              std::span<const uint8_t> bytes,
                                              const Xmp& xmp) {
  for (const Dialect& dialect : kDialects) {
    const FileList files(path, bytes, ParseList(path, xmp, dialect));
    const Item* depth = files.Find("Depth");
    if (depth == nullptr) continue;
    const std::span<const uint8_t> picture = files.Content(*depth);
    EmbeddedDepth embedded = {
        DecodeRangedDepth(path, "dynamic depth", xmp,
                          FindRange(path, xmp, depth->uri), picture),
        {}};
    if (const Item* original = files.Find("Original")) {
      const std::span<const uint8_t> content = files.Content(*original);
      embedded.original.assign(content.begin(), content.end());
    }
    return embedded;
  }
  return std::nullopt;
}

}  // namespace zuqel::tools
