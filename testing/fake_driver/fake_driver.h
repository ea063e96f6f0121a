// A driver without a picture: EGL and OpenGL ES 2 (a caller's context may be of
// ES 3) for tests, in place of the system's in a program that links the CMake
// target `fake_driver`.
//
// It touches exactly the memory that it is handed, draws hashes of all that a
// picture depends on, notes what real drivers forgive, and fails on request. A
// context's state belongs to the thread that it is current on, and no lock is
// taken by calls that are in order: races stay visible.
#ifndef TESTING_FAKE_DRIVER_FAKE_DRIVER_H_
#define TESTING_FAKE_DRIVER_FAKE_DRIVER_H_

#include <array>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "fake_driver/call_list.h"

namespace zuqel::fake_driver {

#define ZUQEL_CALL(name, fails) name,
enum class Call { ZUQEL_FAKE_CALLS(ZUQEL_CALL) };
#undef ZUQEL_CALL

struct CallRow {
  const char* name;
  bool can_fail;
};
#define ZUQEL_CALL(name, fails) CallRow{#name, fails},
inline constexpr auto kCalls =
    std::to_array<CallRow>({ZUQEL_FAKE_CALLS(ZUQEL_CALL)});
#undef ZUQEL_CALL

// True for calls whose failure leaves objects, or handles of some that are
// gone, to the next context.
inline bool DeletesContexts(Call call) {
  const std::string_view name = kCalls[static_cast<size_t>(call)].name;
  return name.starts_with("eglDestroy") || name == "eglMakeCurrent" ||
         name == "eglTerminate";
}

// Calls since the process began, failed ones included.
int Count(Call call);

// While it lives, the `number`-th call from now, from 1 on, fails as that
// function does when there is no memory; so do all later ones where asked for.
// One lives at a time.
class FailingCall {
 public:
  FailingCall(Call call, int number, bool and_later = false);
  ~FailingCall();
  FailingCall(const FailingCall&) = delete;
  FailingCall& operator=(const FailingCall&) = delete;
};

// The devices that EGL enumerates from here on, by their extensions; none at
// first.
void SetDevices(std::vector<const char*> extensions);

// What callers have done wrong since the last time: "<call>: <what>". Errors of
// GL and EGL read "<call>: error 0x...", those of a failing call are left out.
std::vector<std::string> TakeMisuse();

// Contexts that have died since the last time with names in them, which a
// caller may mean: "2 textures, 1 program".
std::vector<std::string> TakeAbandoned();

// Objects that exist now, names in all contexts together.
struct Living {
  int contexts = 0;
  int surfaces = 0;
  int images = 0;
  int names = 0;

  bool operator==(const Living&) const = default;
};
Living Alive();

}  // namespace zuqel::fake_driver

#endif  // TESTING_FAKE_DRIVER_FAKE_DRIVER_H_
