// Counts calls, decides which fail, and keeps what was done wrong.
#include "fake_driver/calls.h"

#include <climits>
#include <mutex>
#include <sstream>
#include <utility>

namespace zuqel::fake_driver {
namespace {

constexpr auto kRelaxed = std::memory_order_relaxed;

std::array<Counter, kCalls.size()> counters;

constexpr int kNone = -1;
std::atomic<int> failing_call{kNone};
std::atomic<int> first_failing{0};
std::atomic<int> last_failing{0};

// Taken by what goes wrong only.
std::mutex notes_mutex;
std::vector<std::string> misuse, abandoned;

std::vector<std::string> Take(std::vector<std::string>& notes) {
  const std::lock_guard lock(notes_mutex);
  return std::exchange(notes, {});
}

}  // namespace

int Count(Call call) {
  return counters[static_cast<size_t>(call)].value();
}

FailingCall::FailingCall(Call call, int number, bool and_later) {
  const int first = Count(call) + number;
  first_failing.store(first, kRelaxed);
  last_failing.store(and_later ? INT_MAX : first, kRelaxed);
  failing_call.store(static_cast<int>(call), kRelaxed);
}

FailingCall::~FailingCall() {
  failing_call.store(kNone, kRelaxed);
}

bool Fails(Call call) {
  const int number = counters[static_cast<size_t>(call)].Add(1);
  return failing_call.load(kRelaxed) == static_cast<int>(call) &&
         number >= first_failing.load(kRelaxed) &&
         number <= last_failing.load(kRelaxed);
}

void NoteMisuse(Call call, const std::string& what) {
  const std::lock_guard lock(notes_mutex);
  misuse.push_back(std::string(kCalls[static_cast<size_t>(call)].name) + ": " +
                   what);
}

void NoteError(Call call, unsigned code) {
  std::ostringstream text;
  text << "error 0x" << std::hex << code;
  NoteMisuse(call, text.str());
}

void NoteAbandoned(const std::string& names) {
  const std::lock_guard lock(notes_mutex);
  abandoned.push_back(names);
}

std::vector<std::string> TakeMisuse() {
  return Take(misuse);
}

std::vector<std::string> TakeAbandoned() {
  return Take(abandoned);
}

Living Alive() {
  return {living.contexts.value(), living.surfaces.value(),
          living.images.value(), living.names.value()};
}

}  // namespace zuqel::fake_driver
