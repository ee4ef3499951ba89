#include "cli/shared/command_line.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <sstream>
#include <stdexcept>

#include "cli/shared/config_lines.h"
#include "cli/shared/failure.h"
#include "cli/shared/nearest.h"
#include "cli/shared/wrap.h"

namespace velk::cli {

Option Option::required() const {
  option_->required();
  return *this;
}

Option Option::range(int lowest, int highest) const {
  option_->check(CLI::Range(lowest, highest).description(""));
  option_->type_name(std::to_string(lowest) + ".." + std::to_string(highest));
  return *this;
}

Option Option::oneOf(const std::vector<std::string>& words) const {
  const CLI::IsMember isMember(words);
  const auto check = [isMember, words](std::string& word) {
    const std::string fault = isMember(word);
    return fault.empty() ? fault : fault + didYouMean(word, words);
  };
  option_->check(CLI::Validator(check, isMember.get_description()));
  *words_ = words;
  return *this;
}

Option Option::delimiter(char between) const {
  option_->delimiter(between);
  return *this;
}

Option Option::oneValueEach() const {
  option_->allow_extra_args(false);
  return *this;
}

Option Option::valueOptional() const {
  option_->expected(0, 1);
  return *this;
}

Option Option::excludes(const Option& other) const {
  option_->excludes(other.option_);
  return *this;
}

Option Option::needs(const Option& other) const {
  option_->needs(other.option_);
  return *this;
}

Option Option::typeName(const std::string& name) const {
  option_->type_name(name);
  return *this;
}

Option Option::group(const std::string& heading) const {
  option_->group(heading);
  return *this;
}

Option Option::showDefault() const {
  option_->capture_default_str();
  return *this;
}

bool Option::isGiven() const {
  return option_->count() != 0;
}

namespace {

/// Help in the width of the terminal. What excludes or needs what is left out: there are some thirty pairs, and
/// a wrong one is told when it is typed.
class HelpFormatter : public CLI::Formatter {
 public:
  std::string make_description(const CLI::App* app) const override {
    return wrapped(app->get_description() + "\n", readableWidth());
  }
  std::string make_footer(const CLI::App* app) const override {
    return wrapped(app->get_footer(), readableWidth());
  }
  std::string make_subcommand(const CLI::App* app) const override {
    return entry(app->get_name(), app->get_description());
  }
  std::string make_option(const CLI::Option* option, bool positional) const override {
    return entry(make_option_name(option, positional) + make_option_opts(option), make_option_desc(option));
  }
  std::string make_option_opts(const CLI::Option* option) const override {
    const std::string text = Formatter::make_option_opts(option);
    return text.substr(0, std::min(text.find(" Needs: "), text.find(" Excludes: ")));
  }

 private:
  static std::string entry(const std::string& name, const std::string& text) {
    constexpr std::size_t fewColumns = 70;
    const std::size_t column = readableWidth() < fewColumns ? 6 : 30;
    std::string line = "  " + name;
    if (line.size() < column) {
      line.resize(column, ' ');
    } else {
      line = filled(line, readableWidth(), 4, 2).insert(0, 2, ' ') + "\n" + std::string(column, ' ');
    }
    return line + filled(text, readableWidth(), column, column) + "\n";
  }
};

}  // namespace

CommandLine::CommandLine(const std::string& program, const std::string& description)
    : app_(std::make_shared<CLI::App>(description, program)), words_(std::make_shared<Words>()) {
  app_->formatter(std::make_shared<HelpFormatter>());
}

Option CommandLine::noted(CLI::Option* option) const {
  return {*option, (*words_)[option]};
}

Option CommandLine::option(const std::string& names, std::string& value, const std::string& help) const {
  return noted(app_->add_option(names, value, help));
}

Option CommandLine::option(const std::string& names, int& value, const std::string& help) const {
  return noted(app_->add_option(names, value, help));
}

Option CommandLine::option(const std::string& names, double& value, const std::string& help) const {
  return noted(app_->add_option(names, value, help));
}

Option CommandLine::option(const std::string& names, std::vector<std::string>& value,
                           const std::string& help) const {
  return noted(app_->add_option(names, value, help));
}

Option CommandLine::option(const std::string& names, std::vector<std::uint16_t>& value,
                           const std::string& help) const {
  return noted(app_->add_option(names, value, help));
}

Option CommandLine::flag(const std::string& names, bool& value, const std::string& help) const {
  return noted(app_->add_flag(names, value, help));
}

void CommandLine::version(const std::string& text) const {
  app_->set_version_flag("--version", text, "Print the version and exit");
}

void CommandLine::footer(const std::string& text) const {
  app_->footer(text);
}

CommandLine CommandLine::addCommand(const std::string& name, const std::string& help,
                                    const std::function<void()>& chosen) const {
  app_->require_subcommand(1);
  CLI::App* const command = app_->add_subcommand(name, help);
  command->callback(chosen);
  return {app_->get_subcommand_ptr(command), words_};
}

std::string CommandLine::helpOf(const std::string& command) const {
  // App::help would be that of the command that is read.
  if (command.empty())
    return app_->get_formatter()->make_help(app_.get(), app_->get_name(), CLI::AppFormatMode::Normal);
  std::vector<std::string> names;
  for (const CommandShape& each : shape().commands) names.push_back(each.name);
  if (std::find(names.begin(), names.end(), command) != names.end())
    return app_->get_subcommand(command)->help(app_->get_name());
  throw std::invalid_argument("there is no command \"" + command + "\"" + didYouMean(command, names));
}

bool OptionShape::isNamed(std::string_view name) const {
  return std::find(names.begin(), names.end(), name) != names.end();
}

namespace {

OptionShape shapeOf(const CLI::Option& option, const std::vector<std::string>& words) {
  OptionShape shape{.fallback = option.get_default_str(),
                    .help = option.get_description(),
                    .group = option.get_group(),
                    .words = words,
                    .delimiter = option.get_delimiter(),
                    .isPositional = option.get_positional(),
                    .isRequired = option.get_required()};
  if (shape.isPositional) shape.names.push_back(option.get_name(true));
  for (const std::string& name : option.get_snames()) shape.names.push_back("-" + name);
  for (const std::string& name : option.get_lnames()) shape.names.push_back("--" + name);
  if (option.get_items_expected_max() == 0) return shape;
  shape.value = option.get_type_name();
  if (!words.empty()) shape.value.erase(std::min(shape.value.find(":{"), shape.value.size()));
  shape.isList =
      option.get_expected_max() == CLI::detail::expected_max_vector_size && option.get_allow_extra_args();
  return shape;
}

}  // namespace

CommandShape CommandLine::shape() const {
  CommandShape shape{.name = app_->get_name(),
                     .help = app_->get_description(),
                     .footer = app_->get_footer(),
                     .options = {},
                     .commands = {}};
  for (const CLI::Option* const option : app_->get_options()) {
    if (option->get_group().empty()) continue;
    const auto words = words_->find(option);
    shape.options.push_back(
        shapeOf(*option, words == words_->end() ? std::vector<std::string>() : words->second));
  }
  for (const CLI::App* const command : app_->get_subcommands([](const CLI::App*) { return true; })) {
    const CommandLine line(app_->get_subcommand_ptr(command->get_name()), words_);
    shape.commands.push_back(line.shape());
  }
  return shape;
}

std::vector<ConfigSetting> parseConfiguration(const std::string& text, const std::string& file) try {
  std::istringstream in(checkedConfiguration(text));
  std::vector<ConfigSetting> settings;
  for (const CLI::ConfigItem& item : CLI::ConfigTOML().from_config(in)) {
    // Where sections begin and end the library leaves marks. Settings of none and of "default" are the same to it.
    if (item.name == "++" || item.name == "--") continue;
    settings.push_back({.section = item.parents.empty() ? "default" : CLI::detail::join(item.parents, "."),
                        .name = item.name,
                        .value = CLI::detail::join(item.inputs, " ")});
  }
  return settings;
} catch (const std::exception& error) {
  throw std::invalid_argument(file + ":" + error.what());
}

namespace {

/// The command whose words are read, or the program itself.
const CLI::App& reached(const CLI::App& app) {
  const auto commands = app.get_subcommands();
  return commands.empty() ? app : *commands.back();
}

/// An option as some command takes it; null when none does.
const CLI::Option* optionOfCommands(const CLI::App& app, const std::string& name) {
  for (const CLI::App* const command : app.get_subcommands([](const CLI::App*) { return true; })) {
    if (const CLI::Option* const option = command->get_option_no_throw(name)) return option;
  }
  return nullptr;
}

/// Options of a command may stand in front of it as well, as in "velk --tcp HOST:PORT outputs": they are moved
/// to its end, where one whose value may be left out takes no other word for it.
void moveOptionsBehind(const CLI::App& app, std::vector<std::string>& words) {
  std::size_t front = 0;
  while (front < words.size() && words[front].starts_with("-")) {
    const std::string& word = words[front];
    const std::string name = word.substr(0, word.find('='));
    const CLI::Option* const option = optionOfCommands(app, name);
    if (option == nullptr || app.get_option_no_throw(name) != nullptr) return;
    const bool takesNext = option->get_items_expected_min() > 0 && word.find('=') == std::string::npos;
    front += takesNext ? 2 : 1;
  }
  if (front >= words.size()) return;
  const auto command = words.begin() + static_cast<std::ptrdiff_t>(front);
  std::rotate(words.begin(), command, std::find(command, words.end(), "--"));
}

/// What is wrong with a word that nothing takes.
std::string unexpected(const CLI::App& app, const std::string& word) {
  std::vector<std::string> names;
  if (word.starts_with("-")) {
    for (const CLI::Option* const option : app.get_options()) {
      if (option->get_group().empty()) continue;
      for (const std::string& name : option->get_lnames()) names.push_back("--" + name);
    }
    const std::string name = word.substr(0, word.find('='));
    if (optionOfCommands(app, name) != nullptr) return "a command is missing";
    return "there is no option \"" + name + "\"" + didYouMean(name, names);
  }
  const auto commands = app.get_subcommands([](const CLI::App*) { return true; });
  if (commands.empty()) return "nothing takes the argument \"" + word + "\"";
  for (const CLI::App* const command : commands) names.push_back(command->get_name());
  return "there is no command \"" + word + "\"" + didYouMean(word, names);
}

/// What the library says is wrong, but for numbers, which alone cannot be converted: "--for = x".
std::string faultOf(const CLI::ParseError& error) {
  std::string text = error.what();
  constexpr std::string_view start = "Could not convert: ";
  const auto equals = text.find(" = ");
  if (!text.starts_with(start) || equals == std::string::npos) return text;
  return text.substr(start.size(), equals - start.size()) + ": \"" + text.substr(equals + 3) +
         "\" is no number for it";
}

}  // namespace

std::optional<ExitStatus> CommandLine::parse(int argc, char** argv) const {
  try {
    std::vector<std::string> words(argv + std::min(argc, 1), argv + argc);
    moveOptionsBehind(*app_, words);
    std::reverse(words.begin(), words.end());  // as the library takes them
    app_->parse(std::move(words));
    return std::nullopt;
  } catch (const CLI::ParseError& error) {
    if (error.get_exit_code() == 0) {
      app_->exit(error);
      return success;
    }
    const CLI::App& app = reached(*app_);
    const auto left = app_->remaining(true);
    const bool misses = &app == app_.get() && app.get_require_subcommand_min() != 0;
    const std::string fault = misses ? "a command is missing" : faultOf(error);
    const std::string sentence = left.empty() ? fault : unexpected(app, left.front());
    const std::string command = &app == app_.get() ? "" : " " + app.get_name();
    throw Failure(wrongUsage, sentence + " (see \"" + app_->get_name() + command + " --help\")");
  }
}

}  // namespace velk::cli
