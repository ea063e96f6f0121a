// Runs the zuqel program as people do.
#include "program_run.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <sstream>

namespace zuqel::tools {

std::string ReadText(const std::string& path) {
  const std::vector<uint8_t> bytes = ReadBytes(path);
  return {bytes.begin(), bytes.end()};
}

Outcome RunZuqel(const TemporaryFolder& folder, const std::string& arguments,
                 const std::vector<std::string>& environment) {
  std::istringstream words("zuqel " + arguments);
  std::vector<std::string> argv_text;
  for (std::string word; words >> word;) argv_text.push_back(word);
  std::vector<std::string> env_text = environment;
  for (char** entry = environ; *entry != nullptr; ++entry) {
    env_text.emplace_back(*entry);
  }
  std::vector<char*> argv, env;
  for (std::string& text : argv_text) argv.push_back(text.data());
  for (std::string& text : env_text) env.push_back(text.data());
  argv.push_back(nullptr);
  env.push_back(nullptr);

  const std::string out = folder / "out.txt", err = folder / "err.txt";
  constexpr int kFlags = O_WRONLY | O_CREAT | O_TRUNC;
  posix_spawn_file_actions_t actions = {};
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, 1, out.c_str(), kFlags, 0600);
  posix_spawn_file_actions_addopen(&actions, 2, err.c_str(), kFlags, 0600);
  posix_spawn_file_actions_addchdir_np(&actions, (folder / "work").c_str());
  pid_t child = 0;
  int status = 0;
  const int failed = posix_spawn(&child, ZUQEL_PROGRAM, &actions, nullptr,
                                 argv.data(), env.data());
  posix_spawn_file_actions_destroy(&actions);
  if (failed != 0 || waitpid(child, &status, 0) != child) return {};
  return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, ReadText(out),
          ReadText(err)};
}

}  // namespace zuqel::tools
