// The default keys that this build of the library was given.
#ifndef ZUQEL_CALIB_BUILT_IN_KEYS_H_
#define ZUQEL_CALIB_BUILT_IN_KEYS_H_

#include "calib/calibration.h"

namespace zuqel::calib {

// Null where the build setting (ZUQEL_DEFAULT_KEY_FILE for the general key,
// ZUQEL_KIND4_DEFAULT_KEY_FILE for kind 4) was empty.
DefaultKeys BuiltInKeys();

}  // namespace zuqel::calib

#endif  // ZUQEL_CALIB_BUILT_IN_KEYS_H_
