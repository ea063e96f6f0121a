// Standard input and output in the place of files.
#ifndef ZUQEL_TOOLS_FILES_STANDARD_STREAMS_H_
#define ZUQEL_TOOLS_FILES_STANDARD_STREAMS_H_

#include <string>

namespace zuqel::tools {

// True of "-", which stands for standard input or output.
bool IsStandardStream(const std::string& path);

// Once, before any file is opened: a file must not become a standard stream
// that the caller has closed, where others print to it.
void OpenStandardStreams();

// A new descriptor of standard input. InputError if there was one before: its
// bytes cannot be read twice.
int TakeStandardInput();

// Keeps standard output for one result: what is printed there from now on, by
// whomever, goes to standard error. InputError if it is a terminal, WorkError
// if the caller has closed it.
void ReserveStandardOutput();

// A new descriptor of what was reserved.
int OpenReservedOutput();

}  // namespace zuqel::tools

#endif  // ZUQEL_TOOLS_FILES_STANDARD_STREAMS_H_
