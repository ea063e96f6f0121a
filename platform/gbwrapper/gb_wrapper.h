// The maker's graphic-buffer wrapper library, as far as it is used.
#ifndef PLATFORM_GBWRAPPER_GB_WRAPPER_H_
#define PLATFORM_GBWRAPPER_GB_WRAPPER_H_

// True when graphic buffers can be used on this device.
bool isValidGBWrapper();

#endif  // PLATFORM_GBWRAPPER_GB_WRAPPER_H_
