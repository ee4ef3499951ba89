#include "cli/shared/wrap.h"

#include <algorithm>
#include <sstream>

#include "cli/shared/terminal.h"

namespace velk::cli {
namespace {

/// Of UTF-8: bytes that go on with a character take none.
std::size_t columnsOf(const std::string& word) {
  std::size_t columns = 0;
  for (const char c : word) {
    if ((static_cast<unsigned char>(c) & 0xC0U) != 0x80U) ++columns;
  }
  return columns;
}

/// "Exit status:", not a sentence that leads to what follows.
bool isHeading(const std::string& line) {
  constexpr std::size_t longest = 24;
  return line.ends_with(':') && line.size() <= longest;
}

}  // namespace

std::size_t readableWidth() {
  return static_cast<std::size_t>(std::clamp(outputWidth(), 30, 100));
}

std::string filled(const std::string& text, std::size_t width, std::size_t indent, std::size_t column) {
  std::istringstream words(text);
  std::string lines;
  bool first = true;
  for (std::string word; words >> word; first = false) {
    const std::size_t size = columnsOf(word);
    if (!first && column + 1 + size > width) {
      lines.append("\n").append(indent, ' ');
      column = indent;
    } else if (!first) {
      lines += ' ';
      ++column;
    }
    lines += word;
    column += size;
  }
  return lines;
}

std::string wrapped(const std::string& text, std::size_t width) {
  std::istringstream in(text);
  std::string result;
  std::string paragraph;
  const auto finish = [&] {
    if (!paragraph.empty()) result += filled(paragraph, width) + "\n";
    paragraph.clear();
  };
  for (std::string line; std::getline(in, line);) {
    const bool stays = line.empty() || line.front() == ' ' || (paragraph.empty() && isHeading(line));
    if (!stays) {
      paragraph += line + " ";
      continue;
    }
    finish();
    result += line + "\n";
  }
  finish();
  return result;
}

}  // namespace velk::cli
