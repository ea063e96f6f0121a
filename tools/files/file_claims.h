// Keeps a command from writing over a file that it reads.
#ifndef ZUQEL_TOOLS_FILES_FILE_CLAIMS_H_
#define ZUQEL_TOOLS_FILES_FILE_CLAIMS_H_

#include <string>

namespace zuqel::tools {

// Files are the same when device and inode are, so links count, and so does
// what a standard stream, "-", is redirected to. Claims last as long as the
// process, and their order does not matter: both throw InputError if the file
// has been claimed as the other. A file that does not exist can be claimed as
// either.
void ClaimInput(const std::string& path);
void ClaimOutput(const std::string& path);

}  // namespace zuqel::tools

#endif  // ZUQEL_TOOLS_FILES_FILE_CLAIMS_H_
