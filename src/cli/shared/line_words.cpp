#include "cli/shared/line_words.h"

#include <algorithm>

namespace velk::cli {
namespace {

constexpr std::string_view blanks = " \t\r\n";

bool isIn(std::string_view set, char c) {
  return set.find(c) != std::string_view::npos;
}

/// Whether a backslash takes the meaning from a character.
bool isEscapable(char quote, char next) {
  return quote == 0 || (quote == '"' && isIn("\"\\$`", next));
}

}  // namespace

LineWords wordsOf(std::string_view line) {
  LineWords found{.words = {}, .lastWord = line.size()};
  const auto begin = [&](std::size_t at) {
    if (found.endsInWord) return;
    found.words.emplace_back();
    found.endsInWord = true;
    found.lastWord = at;
  };
  for (std::size_t i = 0; i < line.size(); ++i) {
    const char c = line[i];
    if (found.open == 0 && isIn(blanks, c)) {
      found.endsInWord = false;
      continue;
    }
    if (!found.endsInWord && c == '#') break;
    begin(i);
    const bool isQuote = found.open == 0 && (c == '"' || c == '\'');
    const bool isCutOff = c == '\\' && i + 1 == line.size() && found.open != '\'';
    if (c == found.open) {
      found.open = 0;
    } else if (isQuote || isCutOff) {
      found.open = c;
    } else if (c == '\\' && isEscapable(found.open, i + 1 < line.size() ? line[i + 1] : c)) {
      found.words.back() += line[++i];
    } else {
      found.words.back() += c;
    }
  }
  if (!found.endsInWord) found.lastWord = line.size();
  return found;
}

std::string quoted(const std::string& word, char open, bool isWhole) {
  const bool isPlain = !word.empty() && word.find_first_of(" \t\"'\\#$`") == std::string::npos;
  const bool hasQuote = word.find('\'') != std::string::npos;
  char quote = open == '"' || hasQuote ? '"' : '\'';
  if (isPlain && open == 0) quote = 0;
  if (quote == 0) return word;
  std::string text(1, quote);
  for (const char c : word) {
    if (quote == '"' && isIn("\"\\$`", c)) text += '\\';
    text += c;
  }
  return isWhole ? text + quote : text;
}

}  // namespace velk::cli
