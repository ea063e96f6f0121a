// System properties for the length of a scope.
#ifndef TESTING_SCOPED_PROPERTY_H_
#define TESTING_SCOPED_PROPERTY_H_

#include <sys/system_properties.h>

namespace zuqel {

// Sets a property and empties it at the end of its scope, which reads as unset.
class ScopedProperty {
 public:
  ScopedProperty(const char* name, const char* value) : name_(name) {
    __system_property_set(name, value);
  }
  ~ScopedProperty() { __system_property_set(name_, ""); }
  ScopedProperty(const ScopedProperty&) = delete;
  ScopedProperty& operator=(const ScopedProperty&) = delete;

 private:
  const char* name_;
};

}  // namespace zuqel

#endif  // TESTING_SCOPED_PROPERTY_H_
