// What the library prints to standard output, which belongs to the program.
#ifndef ZUQEL_TOOLS_LIBRARY_OUTPUT_H_
#define ZUQEL_TOOLS_LIBRARY_OUTPUT_H_

#include <string>

namespace zuqel::tools {

// While it lives, lines for standard output are kept aside. At the end they go
// where the library's log goes: to standard error when that is shown, else
// nowhere. Nothing of the program's own is lost. One at a time.
class LibraryOutput {
 public:
  // WorkError when there is no place to keep the lines.
  LibraryOutput();
  ~LibraryOutput();
  LibraryOutput(const LibraryOutput&) = delete;
  LibraryOutput& operator=(const LibraryOutput&) = delete;

  // The lines so far; none when the program has no standard output.
  [[nodiscard]] std::string Text() const;

 private:
  int program_output_;  // a second name of standard output; -1: there is none
  int aside_ = -1;      // a file in memory
};

}  // namespace zuqel::tools

#endif  // ZUQEL_TOOLS_LIBRARY_OUTPUT_H_
