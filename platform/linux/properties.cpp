// System properties in one in-process store.
#include <sys/system_properties.h>

#include <cstdlib>
#include <cstring>
#include <fstream>
#include <map>
#include <mutex>
#include <string>

#include "property_list.h"

namespace {

using zuqel::PropertyOrigin, zuqel::SetProperty;

struct Property {
  std::string value;
  PropertyOrigin origin = PropertyOrigin::kFile;
};
using Store = std::map<std::string, Property, std::less<>>;

Store ReadPropertiesFile() {
  Store store;
  const char* path = std::getenv("ZUQEL_PROPERTIES");
  if (path == nullptr) return store;
  std::ifstream file(path);
  for (std::string line; std::getline(file, line);) {
    const size_t equals = line.find('=');
    if (equals == std::string::npos || line.front() == '#') continue;
    const std::string value = line.substr(equals + 1);
    if (value.size() < PROP_VALUE_MAX) store[line.substr(0, equals)] = {value};
  }
  return store;
}

std::mutex store_mutex;

// Call with `store_mutex` held.
Store& Properties() {
  static Store store = ReadPropertiesFile();
  return store;
}

}  // namespace

extern "C" {

int __system_property_get(const char* name, char* value) {
  const std::lock_guard lock(store_mutex);
  const auto found = Properties().find(std::string_view(name));
  if (found == Properties().end()) {
    value[0] = '\0';
    return 0;
  }
  const std::string& text = found->second.value;
  std::memcpy(value, text.c_str(), text.size() + 1);
  return static_cast<int>(text.size());
}

int __system_property_set(const char* name, const char* value) {
  if (std::strlen(value) >= PROP_VALUE_MAX) return -1;
  const std::lock_guard lock(store_mutex);
  Properties()[name] = {value, PropertyOrigin::kProgram};
  return 0;
}

}  // extern "C"

std::vector<SetProperty> zuqel::SetProperties() {
  const std::lock_guard lock(store_mutex);
  std::vector<SetProperty> list;
  for (const auto& [name, property] : Properties()) {
    if (property.value.empty()) continue;
    list.push_back({name, property.value, property.origin});
  }
  return list;
}
