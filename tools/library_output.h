// What the library prints to standard output, which belongs to the program.
#ifndef ZUQEL_TOOLS_LIBRARY_OUTPUT_H_
#define ZUQEL_TOOLS_LIBRARY_OUTPUT_H_

namespace zuqel::tools {

// While it lives, lines for standard output go where the library's log goes: to
// standard error when that is shown, else nowhere. Nothing of the program's own
// is lost. One at a time.
class LibraryOutput {
 public:
  LibraryOutput();
  ~LibraryOutput();
  LibraryOutput(const LibraryOutput&) = delete;
  LibraryOutput& operator=(const LibraryOutput&) = delete;

 private:
  int program_output_;  // a second name of standard output; -1: there is none
};

}  // namespace zuqel::tools

#endif  // ZUQEL_TOOLS_LIBRARY_OUTPUT_H_
