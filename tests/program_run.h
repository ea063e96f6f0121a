// Runs the zuqel program as a child process.
#ifndef ZUQEL_TESTS_PROGRAM_RUN_H_
#define ZUQEL_TESTS_PROGRAM_RUN_H_

#include <set>
#include <string>
#include <vector>

namespace zuqel::tools {

struct Outcome {
  int exit_code = -1;
  std::string out, err;
};

// Runs zuqel in a folder; `arguments` are separated by spaces. Entries of
// `environment` are NAME=value and come before this process's own.
Outcome RunZuqel(const std::string& folder, const std::string& arguments,
                 const std::vector<std::string>& environment = {});

std::string ReadText(const std::string& path);

// The names of a folder's entries.
std::set<std::string> FilesIn(const std::string& folder);

}  // namespace zuqel::tools

#endif  // ZUQEL_TESTS_PROGRAM_RUN_H_
