#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
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
  Option(CLI::Option& option, std::vector<std::string>& words) : option_(&option), words_(&words) {}

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
  std::vector<std::string>* words_;  ///< those that are taken; empty: any
};

/// A setting of a configuration file.
struct ConfigSetting {
  std::string section;
  std::string name;
  std::string value;
};

/// Reads the text of a configuration file as TOML writes it: "[section]", "name = value", comments behind "#".
/// Throws std::invalid_argument with the file's name, the line and a sentence.
std::vector<ConfigSetting> parseConfiguration(const std::string& text, const std::string& file);

/// An option, or a value that is known by its position, as help shows it.
struct OptionShape {
  std::vector<std::string> names;  ///< "--tcp", "--tcp-q"; "FILE" when known by its position
  std::string value;               ///< how its value is called; empty for a flag
  std::string fallback;            ///< the value without it, where help tells that
  std::string help;
  std::string group;
  std::vector<std::string> words;  ///< the only values, where they are few
  char delimiter = 0;              ///< what stands between values in one word; 0: nothing does
  bool isPositional = false;
  bool isList = false;  ///< takes words until an option comes
  bool isRequired = false;

  [[nodiscard]] bool isNamed(std::string_view name) const;
};

/// A command as help shows it.
struct CommandShape {
  std::string name;
  std::string help;
  std::string footer;
  std::vector<OptionShape> options;
  std::vector<CommandShape> commands;
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

  /// The help of a command, or of the program when the name is empty. Throws std::invalid_argument with
  /// a sentence when no command is called so.
  [[nodiscard]] std::string helpOf(const std::string& command) const;

  /// What is declared so far, but for options without a group, which are not for people.
  [[nodiscard]] CommandShape shape() const;

  /// Reads the words of `main`. The exit status, when the program has nothing more to do: help or the version
  /// is printed. Throws `Failure` when they are wrong.
  [[nodiscard]] std::optional<ExitStatus> parse(int argc, char** argv) const;

 private:
  /// The words that options take, where they are few.
  using Words = std::map<const CLI::Option*, std::vector<std::string>>;

  CommandLine(std::shared_ptr<CLI::App> app, std::shared_ptr<Words> words)
      : app_(std::move(app)), words_(std::move(words)) {}
  [[nodiscard]] Option noted(CLI::Option* option) const;

  std::shared_ptr<CLI::App> app_;
  std::shared_ptr<Words> words_;
};

}  // namespace velk::cli
