// The GPU that the library draws on.
#include "system/device_choice.h"

#include <egl_display.h>
#include <sys/system_properties.h>

#include <cstddef>
#include <string>

#include "tool_error.h"

namespace zuqel::tools {
namespace {

std::string Count(size_t devices) {
  if (devices == 0) return "there are no devices to choose from";
  if (devices == 1) return "there is 1 device, number 0";
  return "there are " + std::to_string(devices) + " devices, 0 to " +
         std::to_string(devices - 1);
}

}  // namespace

void UseDevice(int number) {
  const std::string text = std::to_string(number);
  const size_t count = driver::Devices().size();
  if (number < 0 || static_cast<size_t>(number) >= count) {
    throw InputError("--device " + text + ": " + Count(count));
  }
  __system_property_set(driver::kDeviceProperty, text.c_str());
}

}  // namespace zuqel::tools
