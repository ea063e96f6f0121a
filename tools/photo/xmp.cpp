// The properties in XMP packets that say where depth is.
#include "photo/xmp.h"

#include <expat.h>

#include <memory>
#include <new>
#include <type_traits>

#include "tool_error.h"

namespace zuqel::tools {
namespace {

// A photo of the largest size, twice over in base64, has less.
constexpr size_t kLargestPacket = size_t{256} << 20;
constexpr size_t kMostProperties = 4096;
constexpr size_t kDeepest = 64;

constexpr std::string_view kRdf = "http://www.w3.org/1999/02/22-rdf-syntax-ns#";
constexpr std::string_view kMeta = "adobe:ns:meta/";

bool IsKept(std::string_view name) {
  return name.starts_with(kPhotosNamespace) || name == kHasExtendedXmp;
}

// Elements that only hold others.
bool IsWrapper(std::string_view name) {
  return (name.starts_with(kRdf) && name != kXmpListItem) ||
         name.starts_with(kMeta);
}

// Called by expat, which is in C: nothing is thrown through it.
class Builder {
 public:
  Builder(XML_Parser parser, std::vector<Xmp::Property>& properties)
      : parser_(parser), properties_(properties) {
    XML_SetUserData(parser, this);
    XML_SetElementHandler(parser, OnStart, OnEnd);
    XML_SetCharacterDataHandler(parser, OnText);
    XML_SetStartDoctypeDeclHandler(parser, OnDoctype);
  }

  // Why it had expat stop; empty if it did not.
  [[nodiscard]] const char* fault() const { return fault_; }

 private:
  static constexpr size_t kDropped = Xmp::kTop - 1;

  static Builder& From(void* data) { return *static_cast<Builder*>(data); }

  static void OnStart(void* data, const char* name, const char** attributes) {
    From(data).Guard([&](Builder& self) { self.Start(name, attributes); });
  }
  // Also comes for an element that has stopped the parser.
  static void OnEnd(void* data, const char* /*name*/) {
    Builder& self = From(data);
    if (*self.fault_ == '\0') self.open_.pop_back();
  }
  static void OnText(void* data, const char* text, int size) {
    From(data).Guard([&](Builder& self) {
      const size_t at = self.Innermost();
      if (at >= kDropped) return;
      self.properties_[at].value.append(text, static_cast<size_t>(size));
    });
  }
  static void OnDoctype(void* data, const char* /*name*/, const char* /*id*/,
                        const char* /*id*/, int /*has_internal*/) {
    From(data).Stop("it has a document type");
  }

  template <typename Work>
  void Guard(const Work& work) {
    try {
      work(*this);
    } catch (const std::bad_alloc&) {
      Stop("it is too large for the memory");
    }
  }

  void Start(std::string_view name, const char** attributes) {
    if (open_.size() == kDeepest) {
      Stop("it is nested too deeply");
      return;
    }
    const size_t at = Place(name);
    open_.push_back(at);
    if (at == kDropped) return;
    for (; *attributes != nullptr && *fault_ == '\0'; attributes += 2) {
      if (!IsKept(attributes[0])) continue;
      properties_[Add(attributes[0], at)].value = attributes[1];
    }
  }

  // The index that an element's content belongs to.
  size_t Place(std::string_view name) {
    const size_t parent = Innermost();
    if (parent == kDropped || IsWrapper(name)) return parent;
    const bool is_item = name == kXmpListItem && parent != Xmp::kTop;
    return is_item || IsKept(name) ? Add(name, parent) : kDropped;
  }

  size_t Add(std::string_view name, size_t parent) {
    if (properties_.size() >= kMostProperties) {
      Stop("it has too many properties");
    }
    properties_.push_back({std::string(name), {}, parent});
    return properties_.size() - 1;
  }

  [[nodiscard]] size_t Innermost() const {
    return open_.empty() ? Xmp::kTop : open_.back();
  }

  void Stop(const char* fault) {
    fault_ = fault;
    XML_StopParser(parser_, XML_FALSE);
  }

  XML_Parser parser_;
  std::vector<Xmp::Property>& properties_;
  std::vector<size_t> open_;  // a place for each element around
  const char* fault_ = "";
};

std::string_view Trim(std::string_view text) {
  constexpr std::string_view kSpace = " \t\r\n";
  const size_t first = text.find_first_not_of(kSpace);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(kSpace) - first + 1);
}

}  // namespace

void Xmp::Add(const std::string& path, std::string_view packet) {
  const std::string damaged = path + ": its XMP is damaged: ";
  if (packet.size() > kLargestPacket) {
    throw InputError(damaged + "it has more than 256 MiB");
  }
  // Some writers end the packet as a string in C.
  while (packet.ends_with('\0')) packet.remove_suffix(1);
  // Without a separator, names come as the namespace and the name in one.
  const std::unique_ptr<XML_ParserStruct, decltype(&XML_ParserFree)> parser(
      XML_ParserCreateNS("UTF-8", '\0'), XML_ParserFree);
  if (parser == nullptr) throw std::bad_alloc();
  Builder builder(parser.get(), properties_);
  const XML_Status status = XML_Parse(parser.get(), packet.data(),
                                      static_cast<int>(packet.size()), 1);
  if (*builder.fault() != '\0') throw InputError(damaged + builder.fault());
  if (status != XML_STATUS_OK) {
    throw InputError(damaged + XML_ErrorString(XML_GetErrorCode(parser.get())));
  }
}

size_t Xmp::Find(std::string_view name_space, std::string_view name,
                 size_t parent) const {
  for (size_t i = 0; i < properties_.size(); ++i) {
    if (properties_[i].parent == parent &&
        properties_[i].Is(name_space, name)) {
      return i;
    }
  }
  return kTop;
}

std::string_view Xmp::Value(std::string_view name_space, std::string_view name,
                            size_t parent) const {
  const size_t at = Find(name_space, name, parent);
  return at == kTop ? std::string_view() : Trim(properties_[at].value);
}

}  // namespace zuqel::tools
