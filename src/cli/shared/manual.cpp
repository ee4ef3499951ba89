#include "cli/shared/manual.h"

#include <algorithm>
#include <cctype>
#include <iostream>
#include <sstream>

namespace velk::cli {

namespace {

constexpr const char* helpOption = "--help";
constexpr const char* linkGroup = "Link";
constexpr std::size_t longestHeading = 24;

/// A text that stands for itself, also at the start of a line.
std::string plain(std::string_view text) {
  std::string roff;
  if (text.starts_with('.') || text.starts_with('\'')) roff = "\\&";
  for (const char c : text) {
    if (c == '\\') {
      roff += "\\e";
    } else {
      roff.append(c == '-' ? "\\" : "").push_back(c);
    }
  }
  return roff;
}

std::string inCapitals(std::string text) {
  for (char& c : text) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  return text;
}

/// "\fB--tcp\fR, \fB--tcp-q\fR \fIPORT\fR".
std::string termOf(const OptionShape& option) {
  std::string term;
  for (const std::string& name : option.names) {
    const char* const font = option.isPositional ? "\\fI" : "\\fB";
    term += (term.empty() ? "" : ", ") + (font + plain(name)) + "\\fR";
  }
  return option.isPositional || option.value.empty() ? term : term + " \\fI" + plain(option.value) + "\\fR";
}

class Page {
 public:
  Page(const CommandShape& program, const std::string& version) : program_(program) {
    const std::string& name = program.name;
    const auto end = program.help.find('.');
    out_ << ".TH " << inCapitals(plain(name)) << " 1 \"\" \"" << version << "\" \"User Commands\"\n.SH NAME\n"
         << plain(name) << " \\- " << plain(program.help.substr(0, end)) << "\n.SH SYNOPSIS\n.B "
         << plain(name) << '\n'
         << (program.commands.empty() ? ".RI [ OPTIONS ]\n"
                                      : ".I COMMAND\n.RI [ OPTIONS ]\n.RI [ ARGUMENTS ]\n")
         << ".SH DESCRIPTION\n";
    prose(program.help.substr(std::min(program.help.size(), end + 1)), ".PP\n");
  }

  std::string text() {
    out_ << ".SH OPTIONS\n";
    for (const OptionShape& option : program_.options) add(option);
    addCommands();
    prose(program_.footer, ".SH ");
    return out_.str();
  }

 private:
  void addCommands() {
    if (program_.commands.empty()) return;
    out_ << ".SH COMMANDS\n";
    for (const CommandShape& command : program_.commands) add(command);
    const auto linked =
        std::find_if(program_.commands.begin(), program_.commands.end(), [](const auto& command) {
          return std::any_of(command.options.begin(), command.options.end(),
                             [](const OptionShape& option) { return option.group == linkGroup; });
        });
    if (linked == program_.commands.end()) return;
    out_ << ".SH OPTIONS OF THE LINK\n";
    for (const OptionShape& option : linked->options) {
      if (option.group == linkGroup) add(option);
    }
  }

  void add(const CommandShape& command) {
    out_ << ".SS " << plain(program_.name) << ' ' << plain(command.name);
    for (const OptionShape& option : command.options) {
      if (!option.isPositional) continue;
      // What stands for several words has its brackets with it.
      const std::string& word = option.value.starts_with('[') ? option.value : option.names.front();
      const bool isOpen = !option.isRequired && !word.starts_with('[');
      out_ << ' '
           << plain((isOpen ? "[" : "") + word + (isOpen ? "]" : "") +
                    (option.isList && word == option.names.front() ? "..." : ""));
    }
    out_ << '\n' << plain(command.help) << ".\n";
    for (const OptionShape& option : command.options) {
      if (option.group != linkGroup && !option.isNamed(helpOption)) add(option);
    }
    prose(command.footer, ".PP\n.B ");
  }

  void add(const OptionShape& option) {
    out_ << ".TP\n" << termOf(option) << '\n' << plain(option.help);
    if (!option.words.empty()) {
      out_ << ':';
      for (const std::string& word : option.words) out_ << ' ' << plain(word);
    }
    if (!option.fallback.empty()) out_ << " (" << plain(option.fallback) << ')';
    out_ << ".\n";
  }

  /// Paragraphs, headings and lines that stand as they are.
  void prose(const std::string& text, const char* heading) {
    std::istringstream in(text);
    bool isLiteral = false;
    for (std::string line; std::getline(in, line);) {
      const bool isIndented = line.starts_with("  ");
      if (isIndented != isLiteral) out_ << (isIndented ? ".PP\n.nf\n" : ".fi\n");
      const bool afterLiteral = isLiteral && !isIndented;
      isLiteral = isIndented;
      if (line.empty()) {
        if (in.peek() != std::istringstream::traits_type::eof()) isNew_ = true;
        continue;
      }
      const bool isHeading = !isIndented && line.ends_with(':') && line.size() < longestHeading;
      if (isHeading) {
        line.pop_back();
        out_ << heading << plain(heading == std::string(".SH ") ? inCapitals(line) : line) << '\n';
      } else {
        if (!isIndented && (isNew_ || afterLiteral)) out_ << ".PP\n";
        out_ << plain(line) << '\n';
      }
      isNew_ = false;
    }
    if (isLiteral) out_ << ".fi\n";
  }

  const CommandShape& program_;
  std::ostringstream out_;
  bool isNew_ = false;  ///< a blank line stood in front
};

}  // namespace

std::string manualOf(const CommandShape& program, const std::string& version) {
  return Page(program, version).text();
}

std::optional<int> printManual(const std::function<CommandShape()>& shape, const std::string& version,
                               int argc, char** argv) {
  if (argc != 2 || std::string_view(argv[1]) != "manual") return std::nullopt;
  std::cout << manualOf(shape(), version);
  return success;
}

}  // namespace velk::cli
