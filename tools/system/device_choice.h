// The GPU that the library draws on.
#ifndef ZUQEL_TOOLS_SYSTEM_DEVICE_CHOICE_H_
#define ZUQEL_TOOLS_SYSTEM_DEVICE_CHOICE_H_

namespace zuqel::tools {

// Sessions from here on draw on the device of this number. InputError if there
// is none.
void UseDevice(int number);

}  // namespace zuqel::tools

#endif  // ZUQEL_TOOLS_SYSTEM_DEVICE_CHOICE_H_
