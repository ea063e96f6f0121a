// The program's command line, by CLI11. No other source includes it.
#include "commands/command_line.h"

#include <CLI/CLI.hpp>
#include <functional>
#include <memory>
#include <optional>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "tool_error.h"

namespace zuqel::tools {
namespace {

// An unknown word is reported before missing options.
std::string Explain(const CLI::App& program, const CLI::ParseError& error) {
  const std::vector<std::string> unknown = program.remaining(true);
  if (unknown.empty()) return error.what();
  return "unknown option or command: " + unknown.front();
}

// Help that also reads well as a manual page, and that completion takes its
// words from: "-o, --output FILE (required)". What an option needs or excludes
// is in its text.
class HelpFormatter : public CLI::Formatter {
 public:
  HelpFormatter() {
    label("SUBCOMMAND", "COMMAND");
    label("Positionals", "Arguments");
  }

  std::string make_option_name(const CLI::Option* option,
                               bool is_positional) const override {
    std::string names = Formatter::make_option_name(option, is_positional);
    const size_t comma = names.find(',');
    if (comma != std::string::npos) names.insert(comma + 1, " ");
    return names;
  }

  // An argument that is an option too is explained once.
  std::string make_option(const CLI::Option* option,
                          bool is_positional) const override {
    if (is_positional || !option->get_positional()) {
      return Formatter::make_option(option, is_positional);
    }
    std::ostringstream text;
    CLI::detail::format_help(
        text, make_option_name(option, false) + " " + option->get_type_name(),
        "The same as " + option->get_name(true), column_width_);
    return text.str();
  }

  std::string make_option_opts(const CLI::Option* option) const override {
    if (option->get_type_size() == 0) return {};
    std::string text;
    if (!option->get_type_name().empty()) text = " " + option->get_type_name();
    if (option->get_expected_max() == CLI::detail::expected_max_vector_size) {
      text += " ...";
    }
    if (option->get_required()) text += " (required)";
    return text;
  }
};

}  // namespace

Option& Option::TypeName(const std::string& name) {
  option_->type_name(name);
  return *this;
}

Option& Option::Required() {
  option_->required();
  return *this;
}

Option& Option::OneEach() {
  option_->allow_extra_args(false);
  return *this;
}

Option& Option::Needs(Option other) {
  option_->needs(other.option_);
  return *this;
}

Option& Option::Excludes(Option other) {
  option_->excludes(other.option_);
  return *this;
}

Option& Option::Range(int smallest, int largest) {
  option_->check(CLI::Range(smallest, largest).description(""));
  return TypeName(std::to_string(smallest) + ".." + std::to_string(largest));
}

Option& Option::OneOf(const std::vector<std::string>& values) {
  option_->check(CLI::IsMember(values).description(""));
  return TypeName(CLI::detail::join(values, "|"));
}

Option& Option::Check(std::function<std::string(const std::string&)> check) {
  option_->check(std::move(check));
  return *this;
}

CommandLine CommandLine::AddCommand(const std::string& name,
                                    const std::string& summary) {
  return CommandLine(app_->add_subcommand(name, summary)->group("Commands"));
}

void CommandLine::RequireCommand() {
  app_->require_subcommand(1);
}

Option CommandLine::AddOption(const std::string& names, std::string& value,
                              const std::string& help) {
  return Option(app_->add_option(names, value, help));
}

Option CommandLine::AddOption(const std::string& names,
                              std::vector<std::string>& values,
                              const std::string& help) {
  return Option(app_->add_option(names, values, help));
}

Option CommandLine::AddOption(const std::string& names, int& value,
                              const std::string& help) {
  return Option(app_->add_option(names, value, help));
}

Option CommandLine::AddOption(const std::string& names,
                              std::optional<int>& value,
                              const std::string& help) {
  return Option(app_->add_option(names, value, help));
}

Option CommandLine::AddOption(const std::string& names, float& value,
                              const std::string& help) {
  return Option(app_->add_option(names, value, help));
}

Option CommandLine::AddOption(const std::string& names,
                              std::optional<float>& value,
                              const std::string& help) {
  return Option(app_->add_option(names, value, help));
}

Option CommandLine::AddOption(
    const std::string& names,
    const std::function<void(const std::string&)>& take,
    const std::string& help) {
  return Option(app_->add_option_function<std::string>(names, take, help));
}

Option CommandLine::AddFlag(const std::string& name, bool& value,
                            const std::string& help) {
  return Option(app_->add_flag(name, value, help));
}

void CommandLine::Footer(const std::string& text) {
  app_->footer(text);
}

bool CommandLine::IsGiven() const {
  return app_->parsed();
}

Program::Program(const std::string& name, const std::string& summary,
                 const std::function<std::string()>& version)
    : app_(std::make_shared<CLI::App>(summary)) {
  app_->name(name);
  app_->formatter(std::make_shared<HelpFormatter>());
  app_->set_version_flag("--version", version);
  app_->fallthrough();
}

std::optional<int> Program::Parse(int argc, char** argv) {
  try {
    app_->parse(argc, argv);
  } catch (const CLI::Success& help_or_version) {
    return app_->exit(help_or_version);
  } catch (const CLI::ParseError& error) {
    throw InputError(Explain(*app_, error));
  }
  return std::nullopt;
}

}  // namespace zuqel::tools
