#include "cli/velk/commands/line.h"

#include "cli/shared/line_words.h"

namespace velk::cli {
namespace {

constexpr const char* program = "velk";

std::vector<std::string> closedWords(const std::string& text) {
  LineWords line = wordsOf(text);
  if (line.open != 0)
    throw std::invalid_argument(std::string("nothing follows the ") + line.open + " at its end");
  if (!line.words.empty() && line.words.front() == program) line.words.erase(line.words.begin());
  return std::move(line.words);
}

}  // namespace

Line::Line(const std::string& text, AddCommands addCommands) : words_(closedWords(text)), velk_(program, "") {
  if (words_.empty()) return;
  job_.only = onlyCommandOf(words_.front());
  addCommands(velk_, job_);
  std::vector<std::string> arguments = words_;
  arguments.insert(arguments.begin(), program);
  std::vector<char*> pointers;
  for (std::string& word : arguments) pointers.push_back(word.data());
  if (velk_.parse(static_cast<int>(pointers.size()), pointers.data())) return;
  if (job_.linked && job_.linked->link.isGiven()) {
    throw std::invalid_argument("the link is the same for all lines: no line has options for it");
  }
}

}  // namespace velk::cli
