#include "cli/velk/shell/line_completion.h"

#include <algorithm>
#include <filesystem>

#include "cli/shared/file_names.h"
#include "cli/shared/line_words.h"

namespace velk::cli {
namespace {

namespace fs = std::filesystem;

/// Files whose names begin so; folders end with a slash.
Candidates filesLike(const std::string& start) {
  const std::string folder = start.substr(0, start.rfind('/') + 1);
  Candidates found;
  std::error_code error;
  for (const auto& entry : fs::directory_iterator(folder.empty() ? "." : folder, error)) {
    const std::string name = textOf(entry.path().filename());
    const std::string path = folder + name;
    const bool isHidden = name.starts_with('.') && path.size() != start.size() && start == folder;
    if (path.starts_with(start) && !isHidden)
      found.push_back({path + (entry.is_directory(error) ? "/" : ""), ""});
  }
  std::sort(found.begin(), found.end(),
            [](const Candidate& a, const Candidate& b) { return a.word < b.word; });
  return found;
}

/// How all of them begin.
std::string commonStart(const Candidates& found) {
  std::string start = found.front().word;
  for (const Candidate& each : found) {
    const auto ends = std::mismatch(start.begin(), start.end(), each.word.begin(), each.word.end());
    start.erase(ends.first, start.end());
  }
  return start;
}

/// Whether more may follow in the same word.
bool isOpenEnded(const std::string& word) {
  return word.empty() || std::string_view("=/:,@").find(word.back()) != std::string_view::npos;
}

}  // namespace

LineCompletion completeLine(const CommandShape& program, const std::string& beforeCursor,
                            const ValuesAt& valuesAt) {
  LineWords line = wordsOf(beforeCursor);
  if (!line.endsInWord) line.words.emplace_back();
  const std::string& typed = line.words.back();
  Candidates found = candidates(program, line.words, valuesAt).value_or(filesLike(typed));
  if (found.empty()) return {};
  const std::string start = commonStart(found);
  const bool isOne = found.size() == 1;
  if (!isOne && start.size() <= typed.size()) return {.choices = std::move(found)};
  const bool isWhole = isOne && !isOpenEnded(start);
  return {.replaced = beforeCursor.size() - line.lastWord,
          .text = quoted(start, line.open, isWhole) + (isWhole ? " " : "")};
}

}  // namespace velk::cli
