// The properties in XMP packets that say where depth is.
#ifndef ZUQEL_TOOLS_PHOTO_XMP_H_
#define ZUQEL_TOOLS_PHOTO_XMP_H_

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace zuqel::tools {

// What all namespaces of photos with depth begin with.
inline constexpr std::string_view kPhotosNamespace =
    "http://ns.google.com/photos/";
// In the standard packet; the name of the extended XMP.
inline constexpr std::string_view kHasExtendedXmp =
    "http://ns.adobe.com/xmp/note/HasExtendedXMP";

// Properties of those namespaces and that name; all else is dropped. RDF writes
// one as an attribute or as an element, in several nestings; here they are the
// same. The items of a list are properties named kXmpListItem.
inline constexpr std::string_view kXmpListItem =
    "http://www.w3.org/1999/02/22-rdf-syntax-ns#li";

class Xmp {
 public:
  static constexpr size_t kTop = ~size_t{0};

  struct Property {
    std::string name;  // the namespace and the local name in one
    std::string value;
    size_t parent;  // an index, or kTop

    [[nodiscard]] bool Is(std::string_view name_space,
                          std::string_view local_name) const {
      return name.size() == name_space.size() + local_name.size() &&
             name.starts_with(name_space) && name.ends_with(local_name);
    }
  };

  // Adds those of a packet. Throws InputError, which names `path`, if it is
  // not XML, defines entities, or is absurdly deep or large.
  void Add(const std::string& path, std::string_view packet);

  [[nodiscard]] const std::vector<Property>& properties() const {
    return properties_;
  }

  // The first of this name; kTop if there is none.
  [[nodiscard]] size_t Find(std::string_view name_space, std::string_view name,
                            size_t parent = kTop) const;
  // Its value without the space around it; empty if there is none.
  [[nodiscard]] std::string_view Value(std::string_view name_space,
                                       std::string_view name,
                                       size_t parent = kTop) const;

 private:
  std::vector<Property> properties_;
};

}  // namespace zuqel::tools

#endif  // ZUQEL_TOOLS_PHOTO_XMP_H_
