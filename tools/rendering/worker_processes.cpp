// Work that is done in processes of its own.
#include "rendering/worker_processes.h"

#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <exception>
#include <string>

#include "tool_error.h"

namespace zuqel::tools {
namespace {

// Does not return, and leaves nothing of the parent's to be done.
[[noreturn]] void WorkAsChild(const std::function<void()>& work, pid_t parent) {
  prctl(PR_SET_PDEATHSIG, SIGTERM);
  int exit_code = 1;
  try {
    if (getppid() != parent) throw WorkError("stopped");
    work();
    exit_code = std::fflush(stdout) == 0 ? 0 : 1;
  } catch (const std::exception& error) {
    static_cast<void>(std::fprintf(stderr, "zuqel: %s\n", error.what()));
  }
  _exit(exit_code);
}

pid_t Start(const std::function<void()>& work) {
  // What a child inherits unwritten it would write once more.
  static_cast<void>(std::fflush(stdout));
  const pid_t parent = getpid();
  const pid_t child = fork();
  if (child == 0) WorkAsChild(work, parent);
  return child;
}

bool WaitForOne() {
  int status = 0;
  while (waitpid(-1, &status, 0) < 0) {
    if (errno != EINTR) return false;
  }
  if (WIFSIGNALED(status)) {
    static_cast<void>(std::fprintf(stderr, "zuqel: a process was ended: %s\n",
                                   strsignal(WTERMSIG(status))));
  }
  return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

}  // namespace

int RunInProcesses(int count, int jobs, const std::function<void(int)>& work,
                   const std::function<void(int)>& is_done) {
  int started = 0, done = 0, failed = 0;
  std::string fault;
  while (done < count) {
    const bool can_start = fault.empty() && started < count;
    if (can_start && started - done < jobs) {
      if (Start([&] { work(started); }) < 0) {
        fault = std::string("no process can be made: ") + std::strerror(errno);
        continue;
      }
      ++started;
      continue;
    }
    if (started == done) throw WorkError(fault);
    failed += WaitForOne() ? 0 : 1;
    is_done(++done);
  }
  return failed;
}

}  // namespace zuqel::tools
