// Keeps what the library prints out of the program's standard output.
#ifndef ZUQEL_TOOLS_RENDERING_OUTPUT_CAPTURE_H_
#define ZUQEL_TOOLS_RENDERING_OUTPUT_CAPTURE_H_

#include <string>

namespace zuqel::tools {

// Captures standard output during its lifetime. The destructor passes it on to
// where the library's log goes: to standard error if that is shown, else
// nowhere. Earlier output of the program is flushed first. One at a time.
class OutputCapture {
 public:
  // WorkError if there is no memory for the output.
  OutputCapture();
  ~OutputCapture();
  OutputCapture(const OutputCapture&) = delete;
  OutputCapture& operator=(const OutputCapture&) = delete;

  // What was captured so far; empty if the program has no standard output.
  [[nodiscard]] std::string Text() const;

 private:
  int program_output_;  // duplicate of standard output; -1: there is none
  int captured_ = -1;   // a file in memory
};

}  // namespace zuqel::tools

#endif  // ZUQEL_TOOLS_RENDERING_OUTPUT_CAPTURE_H_
