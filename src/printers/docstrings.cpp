#include "printers/docstrings.h"

#include <algorithm>
#include <fstream>
#include <regex>
#include <stdexcept>

namespace velk::docstrings {
namespace {

std::string trimmed(std::string_view text) {
  const auto first = text.find_first_not_of(' ');
  if (first == std::string_view::npos) return {};
  return std::string(text.substr(first, text.find_last_not_of(' ') - first + 1));
}

/// Joins the lines of a comment; an empty one parts paragraphs.
void append(std::string& comment, const std::string& line) {
  if (line.empty()) {
    comment += "\n\n";
  } else {
    comment += (comment.empty() || comment.back() == '\n' ? "" : " ") + line;
  }
}

class Reader {
 public:
  void take(const std::string& line) {
    static const std::regex comment(R"(^\s*///\s?(.*)$)");
    static const std::regex section(R"(^\s*// --- (.*)$)");
    static const std::regex owner(R"(^(?:class|struct) \w+.*\{$)");
    static const std::regex declaration(R"(^  [\w:<>]+ (\w+)(?:\(| = |;).*$)");
    std::smatch match;
    if (std::regex_match(line, match, comment)) {
      append(pending_, trimmed(match[1].str()));
      return;
    }
    if (std::regex_match(line, match, section)) {
      comments_.sections.push_back({.title = match[1], .names = {}});
    } else if (std::regex_match(line, owner)) {
      comments_.classText = pending_;
    } else if (std::regex_match(line, match, declaration) && !pending_.empty()) {
      comments_.sections.back().names.push_back(match[1]);
      comments_.members[match[1]] = parse(pending_);
    }
    pending_.clear();
  }

  ClassComments comments() && { return std::move(comments_); }

 private:
  std::string pending_;  ///< the comment above the next line
  ClassComments comments_{.classText = {}, .sections = {Section{}}, .members = {}};
};

}  // namespace

Docstring parse(std::string_view comment) {
  Docstring result;
  std::string* target = &result.text;
  while (true) {
    const auto tag = comment.find('@');
    *target = trimmed(comment.substr(0, tag));
    if (tag == std::string_view::npos) return result;
    comment.remove_prefix(tag);
    const auto word = [&comment] {
      const auto end = std::min(comment.find(' '), comment.size());
      std::string first(comment.substr(0, end));
      comment.remove_prefix(std::min(end + 1, comment.size()));
      return first;
    };
    const std::string name = word();
    if (name == "@param") {
      result.remarks.push_back({.parameter = word(), .text = {}});
      target = &result.remarks.back().text;
    } else if (name == "@return") {
      target = &result.result;
    } else {
      throw std::runtime_error("unknown tag " + name);
    }
  }
}

ClassComments read(const std::string& path) {
  std::ifstream file(path);
  if (!file) throw std::runtime_error("cannot read " + path);
  Reader reader;
  for (std::string line; std::getline(file, line);) reader.take(line);
  return std::move(reader).comments();
}

}  // namespace velk::docstrings
