#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace velk::cli {

/// The words of a line, without their quotes, and how the line ends.
struct LineWords {
  std::vector<std::string> words;
  char open = 0;             ///< a quote that nothing closes, or a backslash that stands at the end
  bool endsInWord = false;   ///< what is typed next belongs to the last word
  std::size_t lastWord = 0;  ///< where that begins in the line; the line's end when it ends behind a word
};

/// Reads a line as shells do: blanks part words, which may stand in quotes; in single quotes all stands for itself, in
/// double ones a backslash does unless it stands in front of a quote or a backslash, and elsewhere a backslash takes
/// the meaning from the next character. What stands behind a "#" at the start of a word is a comment.
LineWords wordsOf(std::string_view line);

/// A word as it is typed on such a line: in quotes where it needs them, of the kind `open` where that fits; 0 is none.
/// `isWhole` closes them.
std::string quoted(const std::string& word, char open, bool isWhole);

}  // namespace velk::cli
