// The properties that are set, and who has set them.
#ifndef PLATFORM_LINUX_PROPERTY_LIST_H_
#define PLATFORM_LINUX_PROPERTY_LIST_H_

#include <string>
#include <vector>

namespace zuqel {

enum class PropertyOrigin { kFile, kProgram };

struct SetProperty {
  std::string name, value;
  PropertyOrigin origin = PropertyOrigin::kFile;
};

// In the order of their names, without those that are empty, which reads as
// unset.
std::vector<SetProperty> SetProperties();

}  // namespace zuqel

#endif  // PLATFORM_LINUX_PROPERTY_LIST_H_
