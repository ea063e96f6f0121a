// What a command has made and must not leave behind.
#include "files/temporary_path.h"

#include <unistd.h>

#include <csignal>
#include <utility>

namespace zuqel::tools {
namespace {

using Entry = TemporaryPath::Entry;

// A folder is older than the files in it.
std::atomic<Entry*> newest_entry = nullptr;

// Calls only what a signal handler may.
void Remove(const Entry& entry) {
  if (!entry.is_temporary) return;
  if (unlink(entry.path.c_str()) != 0) rmdir(entry.path.c_str());
}

// The default action, which SA_RESETHAND has put back, ends the program when
// the handler returns.
void RemoveAll(int signal_number) {
  for (const Entry* entry = newest_entry; entry != nullptr;
       entry = entry->older) {
    Remove(*entry);
  }
  static_cast<void>(raise(signal_number));
}

}  // namespace

TemporaryPath::TemporaryPath(std::string path)
    : entry_(new Entry{std::move(path), newest_entry}) {
  newest_entry = entry_;
}

TemporaryPath::~TemporaryPath() {
  Remove(*entry_);
  Keep();
}

void RemoveTemporaryPathsOnSignals() {
  for (const int number :
       {SIGHUP, SIGINT, SIGQUIT, SIGPIPE, SIGTERM, SIGXCPU}) {
    struct sigaction action = {};
    sigaction(number, nullptr, &action);
    if (action.sa_handler == SIG_IGN) continue;  // as under nohup
    action.sa_handler = RemoveAll;
    action.sa_flags = static_cast<int>(SA_RESETHAND);
    sigfillset(&action.sa_mask);
    sigaction(number, &action, nullptr);
  }
  // A write past the limit fails instead.
  static_cast<void>(std::signal(SIGXFSZ, SIG_IGN));
}

}  // namespace zuqel::tools
