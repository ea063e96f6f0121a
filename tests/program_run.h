// Runs the zuqel program as people do: arguments in; exit code and words out.
#ifndef ZUQEL_TESTS_PROGRAM_RUN_H_
#define ZUQEL_TESTS_PROGRAM_RUN_H_

#include <string>
#include <vector>

#include "image_samples.h"

namespace zuqel::tools {

struct Outcome {
  int exit_code = -1;
  std::string out, err;
};

// Runs it in `folder`'s folder "work"; `arguments` are separated by spaces, and
// `environment` ("NAME=value") goes before the test's own.
Outcome RunZuqel(const TemporaryFolder& folder, const std::string& arguments,
                 const std::vector<std::string>& environment = {});

std::string ReadText(const std::string& path);

}  // namespace zuqel::tools

#endif  // ZUQEL_TESTS_PROGRAM_RUN_H_
