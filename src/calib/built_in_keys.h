// The default keys compiled into this build.
#ifndef ZUQEL_CALIB_BUILT_IN_KEYS_H_
#define ZUQEL_CALIB_BUILT_IN_KEYS_H_

#include "calib/calibration.h"

namespace zuqel::calib {

// A key is null where its build setting is empty: ZUQEL_DEFAULT_KEY_FILE for
// the general one, ZUQEL_KIND4_DEFAULT_KEY_FILE for kind 4.
DefaultKeys BuiltInKeys();

}  // namespace zuqel::calib

#endif  // ZUQEL_CALIB_BUILT_IN_KEYS_H_
