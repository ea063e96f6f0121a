// Keeps the driver's libraries loaded until the process ends.
#ifndef ZUQEL_PIN_DRIVER_H_
#define ZUQEL_PIN_DRIVER_H_

#include <dlfcn.h>
#include <link.h>

#include <string>
#include <vector>

namespace zuqel {

// Pins every shared object that is loaded now. Call it when the first context
// exists: a driver that is unloaded with its display takes the globals along
// that point to its blocks. The leak checker then sees blocks that nobody can
// reach or name, and the process grows with every session: Mesa's software
// renderer leaves 10 MiB of address space behind, of which two pages are in
// use.
inline void PinDriverLibraries() {
  std::vector<std::string> names;
  dl_iterate_phdr(
      [](dl_phdr_info* info, size_t, void* list) {
        static_cast<std::vector<std::string>*>(list)->emplace_back(
            info->dlpi_name);
        return 0;
      },
      &names);
  for (const std::string& name : names) {
    if (!name.empty())
      dlopen(name.c_str(), RTLD_NOW | RTLD_NOLOAD | RTLD_NODELETE);
  }
}

}  // namespace zuqel

#endif  // ZUQEL_PIN_DRIVER_H_
