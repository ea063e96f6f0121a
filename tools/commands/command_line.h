// The program's command line: commands, options and the help made of both. It
// hides a library that takes long to compile.
#ifndef ZUQEL_TOOLS_COMMANDS_COMMAND_LINE_H_
#define ZUQEL_TOOLS_COMMANDS_COMMAND_LINE_H_

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace CLI {
class App;
class Option;
}  // namespace CLI

namespace zuqel::tools {

// An option, flag or positional argument. Copies stand for the same one, as
// long as the Program lives.
class Option {
 public:
  explicit Option(CLI::Option* option) : option_(option) {}

  // Of the value, in the help. What is to be written as it stands is in small
  // letters: "X,Y|auto".
  Option& TypeName(const std::string& name);
  Option& Required();
  Option& OneEach();  // takes one value each time, not all that follow
  Option& Needs(Option other);
  Option& Excludes(Option other);

  // What the value has to be; the first two name its type accordingly. `check`
  // returns what is wrong, if anything is.
  Option& Range(int smallest, int largest);
  Option& OneOf(const std::vector<std::string>& values);
  Option& Check(std::function<std::string(const std::string&)> check);

 private:
  CLI::Option* option_;
};

// The options of the program or of a command. Copies stand for the same ones,
// as long as the Program lives.
class CommandLine {
 public:
  explicit CommandLine(CLI::App* app) : app_(app) {}

  CommandLine AddCommand(const std::string& name, const std::string& summary);
  void RequireCommand();

  // `names` are as in "-o,--output"; without a dash it is an argument.
  Option AddOption(const std::string& names, std::string& value,
                   const std::string& help);
  // Takes one value or more.
  Option AddOption(const std::string& names, std::vector<std::string>& values,
                   const std::string& help);
  Option AddOption(const std::string& names, int& value,
                   const std::string& help);
  Option AddOption(const std::string& names, std::optional<int>& value,
                   const std::string& help);
  Option AddOption(const std::string& names, float& value,
                   const std::string& help);
  Option AddOption(const std::string& names, std::optional<float>& value,
                   const std::string& help);
  Option AddOption(const std::string& names,
                   const std::function<void(const std::string&)>& take,
                   const std::string& help);
  Option AddFlag(const std::string& name, bool& value, const std::string& help);

  void Footer(const std::string& text);  // of the help

  [[nodiscard]] bool IsGiven() const;  // after Parse(), for a command

 private:
  CLI::App* app_;
};

class Program {
 public:
  Program(const std::string& name, const std::string& summary,
          const std::function<std::string()>& version);

  [[nodiscard]] CommandLine Options() const { return CommandLine(app_.get()); }

  // Returns the exit code if nothing is left to do, as after --help. Throws
  // InputError.
  std::optional<int> Parse(int argc, char** argv);

 private:
  std::shared_ptr<CLI::App> app_;
};

}  // namespace zuqel::tools

#endif  // ZUQEL_TOOLS_COMMANDS_COMMAND_LINE_H_
