#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "cli/shared/exit_status.h"

namespace CLI {
class App;
class Option;
}  // namespace CLI

/// The command line as the tools see it. command_line.cpp alone sees the library that reads it: it costs a
/// compiler ten seconds in each file.
namespace velk::cli {

/// What may be said of an option once it is declared; calls can be chained.
class Option {
 public:
  explicit Option(CLI::Option& option) : option_(&option) {}

  Option required() const;
  /// Only numbers from `lowest` to `highest` are taken.
  Option range(int lowest, int highest) const;
  /// Only these words are taken.
  Option oneOf(const std::vector<std::string>& words) const;
  /// A list: several values may stand in one word, with this between them.
  Option delimiter(char between) const;
  /// A list: a name takes one value, and may be repeated, so that what follows stands for itself.
  Option oneValueEach() const;
  /// The value may be left out.
  Option valueOptional() const;
  /// Cannot stand beside the other one.
  Option excludes(const Option& other) const;
  /// Stands only beside the other one.
  Option needs(const Option& other) const;
  /// How help calls the value.
  Option typeName(const std::string& name) const;
  /// Under which heading help shows it.
  Option group(const std::string& heading) const;
  /// Help shows the present value as the default.
  Option showDefault() const;

  /// Whether it stood on the command line; once that is read.
  [[nodiscard]] bool isGiven() const;

 private:
  CLI::Option* option_;
};

/// A setting of a configuration file.
struct ConfigSetting {
  std::string section;  ///< empty in front of the first one
  std::string name;
  std::string value;
};

/// Reads the text of a configuration file as TOML writes it: "[section]", "name = value", comments behind "#".
/// Throws std::invalid_argument with a sentence.
std::vector<ConfigSetting> parseConfiguration(const std::string& text);

/// A command and its long options, without their dashes.
struct CommandNames {
  std::string name;
  std::vector<std::string> options;
};

/// The command line of a program, or that of one of its commands. A copy is the same command line.
class CommandLine {
 public:
  CommandLine(const std::string& program, const std::string& description);

  /// An option, which parsing stores in `value`; it has to live until then. `names` are "--tcp,--tcp-q", or a
  /// name without dashes for a value that is known by its position.
  Option option(const std::string& names, std::string& value, const std::string& help) const;
  Option option(const std::string& names, int& value, const std::string& help) const;
  Option option(const std::string& names, double& value, const std::string& help) const;
  Option option(const std::string& names, std::vector<std::string>& value, const std::string& help) const;
  Option option(const std::string& names, std::vector<std::uint16_t>& value, const std::string& help) const;
  Option flag(const std::string& names, bool& value, const std::string& help) const;

  /// --version, which prints the text.
  void version(const std::string& text) const;

  /// What help prints at the end.
  void footer(const std::string& text) const;

  /// Adds a command; from then on the command line has to name one. `chosen` is called when it is this one.
  CommandLine addCommand(const std::string& name, const std::string& help,
                         const std::function<void()>& chosen) const;

  [[nodiscard]] bool hasCommand(const std::string& name) const;

  /// All commands, in their order.
  [[nodiscard]] std::vector<CommandNames> commands() const;

  /// Reads the words of `main`. The exit status, when the program has nothing more to do: help or the version
  /// is printed, or a sentence on what is wrong.
  [[nodiscard]] std::optional<ExitStatus> parse(int argc, char** argv) const;

 private:
  explicit CommandLine(std::shared_ptr<CLI::App> app) : app_(std::move(app)) {}

  std::shared_ptr<CLI::App> app_;
};

}  // namespace velk::cli
