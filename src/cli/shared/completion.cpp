#include "cli/shared/completion.h"

#include <algorithm>
#include <iostream>
#include <iterator>
#include <set>

#include "cli/shared/line_words.h"
#include "values/digits.h"

namespace velk::cli {

namespace {

constexpr auto npos = std::string::npos;

char lower(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

/// Capitals count as small letters: names of methods may be typed so.
bool begins(const std::string& text, const std::string& start) {
  return text.size() >= start.size() && std::equal(start.begin(), start.end(), text.begin(),
                                                   [](char a, char b) { return lower(a) == lower(b); });
}

Candidates commandsOf(const CommandShape& program) {
  Candidates all;
  for (const CommandShape& command : program.commands) all.push_back({command.name, command.help});
  return all;
}

/// Follows the words of a command line up to the cursor.
class Walk {
 public:
  Walk(const CommandShape& program, const ValuesAt& valuesAt)
      : program_(program), command_(&program), valuesAt_(valuesAt) {}

  void pass(const std::string& word) {
    if (awaited_ != nullptr) return passValue(word);
    if (!isEnded_ && word == "--") {
      isEnded_ = true;
    } else if (!isEnded_ && word.starts_with("-") && word.size() > 1) {
      passOption(word);
    } else if (isCommandNext()) {
      passCommand(word);
    } else {
      passPositional(word);
    }
  }

  /// What may stand for the word at the cursor.
  std::optional<Candidates> at(const std::string& word) {
    if (awaited_ != nullptr) return values(*awaited_, word);
    if (!isEnded_ && word.starts_with("-")) {
      const auto equals = word.find('=');
      return equals == npos ? options(word) : valuesBehind(word, equals);
    }
    if (isCommandNext()) return commands(word);
    if (const OptionShape* const place = positional()) return values(*place, word);
    return Candidates();
  }

 private:
  [[nodiscard]] bool isCommandNext() const { return command_ == &program_ && !program_.commands.empty(); }

  /// Options of all commands, which may stand in front of the command, too.
  [[nodiscard]] std::vector<const OptionShape*> optionsInFront() const {
    std::vector<const OptionShape*> all;
    if (!isCommandNext()) return all;
    for (const CommandShape& command : program_.commands) {
      for (const OptionShape& option : command.options) all.push_back(&option);
    }
    return all;
  }

  [[nodiscard]] const OptionShape* named(const std::string& name) const {
    for (const OptionShape& option : command_->options) {
      if (option.isNamed(name)) return &option;
    }
    for (const OptionShape* const option : optionsInFront()) {
      if (option->isNamed(name)) return option;
    }
    return nullptr;
  }

  /// The value that stands next by its position; null when there is none.
  [[nodiscard]] const OptionShape* positional() const {
    std::size_t left = position_;
    for (const OptionShape& option : command_->options) {
      if (option.isPositional && left-- == 0) return &option;
    }
    return nullptr;
  }

  void passOption(const std::string& word) {
    const auto equals = word.find('=');
    const OptionShape* const option = named(word.substr(0, equals));
    if (option == nullptr) return;
    given_.push_back(option->names.front());
    if (option->group == "Link") link_.push_back(word);
    if (!option->value.empty() && equals == npos) awaited_ = option;
  }

  void passValue(const std::string& word) {
    if (awaited_->group == "Link") link_.push_back(word);
    awaited_ = nullptr;
  }

  void passCommand(const std::string& word) {
    static const CommandShape none;
    const auto found = std::find_if(program_.commands.begin(), program_.commands.end(),
                                    [&](const CommandShape& command) { return command.name == word; });
    command_ = found == program_.commands.end() ? &none : &*found;
  }

  void passPositional(const std::string& word) {
    values_.push_back(word);
    if (const OptionShape* const option = positional(); option == nullptr || option->isList) return;
    ++position_;
  }

  static Candidates fitting(Candidates all, const std::string& start) {
    std::erase_if(all, [&](const Candidate& candidate) { return !begins(candidate.word, start); });
    return all;
  }

  [[nodiscard]] Candidates commands(const std::string& word) const {
    return fitting(commandsOf(program_), word);
  }

  [[nodiscard]] Candidates options(const std::string& word) const {
    Candidates all;
    std::set<std::string> known(given_.begin(), given_.end());
    const auto offer = [&](const OptionShape& option) {
      if (option.isPositional || !known.insert(option.names.front()).second) return;
      for (const std::string& name : option.names) {
        if (name.starts_with("--")) all.push_back({name, option.help});
      }
    };
    for (const OptionShape& option : command_->options) offer(option);
    // What else stands there is for one command or the other.
    for (const OptionShape* const option : optionsInFront()) {
      if (option->group == "Link") offer(*option);
    }
    return fitting(std::move(all), word);
  }

  [[nodiscard]] std::optional<Candidates> valuesBehind(const std::string& word, std::size_t equals) const {
    const OptionShape* const option = named(word.substr(0, equals));
    if (option == nullptr || option->value.empty()) return Candidates();
    auto found = values(*option, word.substr(equals + 1));
    if (found) {
      for (Candidate& candidate : *found) candidate.word.insert(0, word, 0, equals + 1);
    }
    return found;
  }

  /// All that a value can be.
  [[nodiscard]] std::optional<Candidates> all(const OptionShape& option, const std::string& word) const {
    if (option.value == "COMMAND") return commandsOf(program_);
    if (option.words.empty()) {
      return valuesAt_(
          {.command = command_->name, .option = option, .before = values_, .link = link_, .word = word});
    }
    Candidates all;
    for (const std::string& each : option.words) all.push_back({each, ""});
    return all;
  }

  /// In a list with delimiters the word may hold several values: the last one is meant.
  [[nodiscard]] std::optional<Candidates> values(const OptionShape& option, const std::string& word) const {
    auto found = all(option, word);
    if (!found) return found;
    const auto last = option.delimiter == 0 ? npos : word.rfind(option.delimiter);
    const std::string front = last == npos ? "" : word.substr(0, last + 1);
    const auto stands = [&](const std::string& value) {
      const std::string between(1, option.delimiter);
      return !front.empty() && (between + front).find(between + value + between) != npos;
    };
    std::erase_if(*found, [&](const Candidate& candidate) { return stands(candidate.word); });
    for (Candidate& candidate : *found) candidate.word.insert(0, front);
    return fitting(*std::move(found), word);
  }

  const CommandShape& program_;
  const CommandShape* command_;
  const ValuesAt& valuesAt_;
  const OptionShape* awaited_ = nullptr;  ///< the option whose value comes next
  std::vector<std::string> given_;        ///< options, by their first names
  std::vector<std::string> values_;       ///< those known by their position
  std::vector<std::string> link_;
  std::size_t position_ = 0;
  bool isEnded_ = false;  ///< "--" stood there: what comes is no option
};

/// A word as it is typed outside of quotes.
std::string typedWord(const std::string& word) {
  constexpr std::string_view special = " \t\"'\\$`&|;<>()*?[]{}!#~";
  std::string typed;
  for (const char c : word) {
    if (special.find(c) != npos) typed += '\\';
    typed += c;
  }
  return typed;
}

/// With the name of each, when there are several: the Bash shows nothing but words.
void printForBash(Candidates found, std::size_t replacedFrom, bool isQuoted) {
  std::size_t width = 0;
  for (Candidate& candidate : found) {
    candidate.word.erase(0, replacedFrom);
    if (!isQuoted) candidate.word = typedWord(candidate.word);
    width = std::max(width, candidate.word.size());
  }
  for (const Candidate& candidate : found) {
    std::cout << candidate.word;
    if (found.size() > 1 && !candidate.help.empty()) {
      std::cout << std::string(width - candidate.word.size() + 2, ' ') << '(' << candidate.help << ')';
    }
    std::cout << '\n';
  }
}

std::optional<int> statusFor(const std::optional<Candidates>& found) {
  return found ? success : badResult;
}

std::optional<int> answerBash(const CommandShape& program, const std::vector<std::string>& arguments,
                              const ValuesAt& valuesAt) {
  if (arguments.size() != 3) return wrongUsage;
  const auto cursor = wholeNumber<std::size_t>(arguments[1]);
  LineWords line = wordsOf(std::string_view(arguments[0]).substr(0, cursor.value_or(npos)));
  std::vector<std::string>& words = line.words;
  if (!line.endsInWord) words.emplace_back();  // the one at the cursor
  words.erase(words.begin());                  // the program
  if (words.empty()) return wrongUsage;
  const auto found = candidates(program, words, valuesAt);
  // The Bash replaces what stands behind the last "=" or ":" alone.
  const std::string& last = words.back();
  const bool isPart = last.ends_with(arguments[2]);
  if (found) printForBash(*found, isPart ? last.size() - arguments[2].size() : 0, line.open != 0);
  return statusFor(found);
}

}  // namespace

std::optional<Candidates> candidates(const CommandShape& program, const std::vector<std::string>& words,
                                     const ValuesAt& valuesAt) {
  Walk walk(program, valuesAt);
  for (auto word = words.begin(); word != std::prev(words.end()); ++word) walk.pass(*word);
  return walk.at(words.back());
}

std::optional<int> answerShell(const std::function<CommandShape()>& shape, int argc, char** argv,
                               const ValuesAt& valuesAt) {
  if (argc < 4 || std::string_view(argv[1]) != "complete") return std::nullopt;
  const CommandShape program = shape();
  std::vector<std::string> words(argv + 3, argv + argc);
  if (std::string_view(argv[2]) == "bash") return answerBash(program, words, valuesAt);
  words.back().erase(0, 1);
  const auto found = candidates(program, words, valuesAt);
  for (const Candidate& candidate : found.value_or(Candidates())) {
    std::cout << candidate.word << '\t' << candidate.help << '\n';
  }
  return statusFor(found);
}

}  // namespace velk::cli
