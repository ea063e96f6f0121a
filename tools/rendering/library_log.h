// The library's log, which commands hide by default.
#ifndef ZUQEL_TOOLS_RENDERING_LIBRARY_LOG_H_
#define ZUQEL_TOOLS_RENDERING_LIBRARY_LOG_H_

#include <string>

namespace zuqel::tools {

// Captures the library's log from here on; if `verbose`, each line goes to
// standard error.
void CaptureLibraryLog(bool verbose);

// True if lines go to standard error.
bool LibraryLogIsShown();

// The first log line about a failure to create an OpenGL ES context, empty if
// there is none. The library reports such a failure nowhere else.
std::string ContextFailure();

}  // namespace zuqel::tools

#endif  // ZUQEL_TOOLS_RENDERING_LIBRARY_LOG_H_
