// The library's log lines, which the commands keep to themselves by default.
#ifndef ZUQEL_TOOLS_LIBRARY_LOG_H_
#define ZUQEL_TOOLS_LIBRARY_LOG_H_

#include <string>

namespace zuqel::tools {

// Takes the library's log over. With `verbose` each line goes to standard
// error, otherwise none does.
void TakeLibraryLog(bool verbose);

// Whether it does.
bool LibraryLogIsShown();

// The log's first line that tells of a failure to make an OpenGL ES context;
// empty when there is none. The library reports this in no other way.
std::string ContextFailure();

}  // namespace zuqel::tools

#endif  // ZUQEL_TOOLS_LIBRARY_LOG_H_
