// Runs the zuqel program as a child process.
#include "program_run.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <map>
#include <sstream>
#include <utility>

namespace zuqel::tools {
namespace {

// A list of pointers that ends with null; valid as long as `texts`.
std::vector<char*> PointersTo(std::vector<std::string>& texts) {
  std::vector<char*> pointers;
  pointers.reserve(texts.size() + 1);
  for (std::string& text : texts) pointers.push_back(text.data());
  pointers.push_back(nullptr);
  return pointers;
}

}  // namespace

std::string ReadText(const std::string& path) {
  const std::vector<uint8_t> bytes = ReadBytes(path);
  return {bytes.begin(), bytes.end()};
}

std::string Concat(std::initializer_list<std::string_view> parts) {
  std::string text;
  for (const std::string_view part : parts) text += part;
  return text;
}

Outcome CommandLine::Run(const std::string& arguments,
                         Settings settings) const {
  std::istringstream words("zuqel " + arguments);
  std::vector<std::string> argv_text;
  for (std::string word; words >> word;) argv_text.push_back(word);
  return Start(ZUQEL_PROGRAM, std::move(argv_text), settings);
}

Outcome CommandLine::Shell(const std::string& script, Settings settings) const {
  const auto folder = std::filesystem::path(ZUQEL_PROGRAM).parent_path();
  return Start(
      "/bin/sh",
      {"sh", "-c",
       "PATH=" + folder.string() + ":$PATH:/usr/sbin:/sbin\n" + script},
      settings);
}

Outcome CommandLine::Start(const char* program,
                           std::vector<std::string> arguments,
                           Settings settings) const {
  std::vector<std::string> env_text(settings.begin(), settings.end());
  for (char** entry = environ; *entry != nullptr; ++entry) {
    const std::string text = *entry, name = text.substr(0, text.find('=') + 1);
    const auto is_set = [&](std::string_view set) {
      return set.starts_with(name);
    };
    if (std::none_of(settings.begin(), settings.end(), is_set)) {
      env_text.push_back(text);
    }
  }

  const TemporaryFolder streams;
  const std::string out = streams / "out.txt", err = streams / "err.txt";
  constexpr int kFlags = O_WRONLY | O_CREAT | O_TRUNC;
  posix_spawn_file_actions_t actions = {};
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, 1, out.c_str(), kFlags, 0600);
  posix_spawn_file_actions_addopen(&actions, 2, err.c_str(), kFlags, 0600);
  posix_spawn_file_actions_addchdir_np(&actions, File("").c_str());
  pid_t child = 0;
  int status = 0;
  const int failed =
      posix_spawn(&child, program, &actions, nullptr,
                  PointersTo(arguments).data(), PointersTo(env_text).data());
  posix_spawn_file_actions_destroy(&actions);
  if (failed != 0 || waitpid(child, &status, 0) != child) return {};
  return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, ReadText(out),
          ReadText(err)};
}

void CommandLine::ExpectRefused(const Cases& cases, int exit_code,
                                Outcome (CommandLine::*run)(const std::string&,
                                                            Settings)
                                    const) const {
  namespace fs = std::filesystem;
  const auto contents = [&] {
    std::map<std::string, std::string> files;
    for (const auto& file : fs::recursive_directory_iterator(File(""))) {
      const bool is_plain = fs::is_regular_file(file.symlink_status());
      files[file.path()] = is_plain ? ReadText(file.path()) : "no file";
    }
    return files;
  };
  const auto before = contents();
  for (const auto& [arguments, message] : cases) {
    SCOPED_TRACE(arguments);
    const Outcome outcome = (this->*run)(arguments, kNoGl);
    EXPECT_EQ(outcome.exit_code, exit_code) << outcome.err;
    EXPECT_THAT(outcome.err, testing::HasSubstr(message));
    EXPECT_EQ(std::count(outcome.err.begin(), outcome.err.end(), '\n'), 1);
    EXPECT_EQ(outcome.out, "");
    EXPECT_TRUE(contents() == before);
  }
}

}  // namespace zuqel::tools
