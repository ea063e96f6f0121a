// Work that is done in processes of its own.
#ifndef ZUQEL_TOOLS_RENDERING_WORKER_PROCESSES_H_
#define ZUQEL_TOOLS_RENDERING_WORKER_PROCESSES_H_

#include <functional>

namespace zuqel::tools {

// Runs `work` on 0, 1 and so on up to `count`, at most `jobs` at a time, each
// in a child of this process, which must have no other thread and nothing open
// that a copy could harm. A child fails by an exception, which it reports in a
// line on standard error, or by a signal; that does not stop the others. They
// end with their parent. `is_done` is told how many have ended.
//
// Returns how many have failed. Throws WorkError if no process can be made.
int RunInProcesses(int count, int jobs, const std::function<void(int)>& work,
                   const std::function<void(int)>& is_done);

}  // namespace zuqel::tools

#endif  // ZUQEL_TOOLS_RENDERING_WORKER_PROCESSES_H_
