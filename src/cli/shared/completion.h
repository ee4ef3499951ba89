#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "cli/shared/command_line.h"

/// What a shell offers behind the cursor. The scripts of the shells (`velk completion`) hand the words over and
/// show what comes back, so that all of them complete the same.
namespace velk::cli {

/// A word that can stand where the cursor is, and what it is.
struct Candidate {
  std::string word;
  std::string help;
};

using Candidates = std::vector<Candidate>;

/// Where on a command line a value is asked for.
struct Place {
  std::string command;  ///< empty: that of the program itself
  OptionShape option;
  std::vector<std::string> before;  ///< the values in front that are known by their position
  std::vector<std::string> link;    ///< the options of the heading "Link", with their values
  std::string word;                 ///< what is typed of it
};

/// What can stand in a place; none where files do. Not asked for values of few words, and those that help
/// calls COMMAND.
using ValuesAt = std::function<std::optional<Candidates>(const Place&)>;

/// What can stand for the last of the words, which may be empty; none where files do.
std::optional<Candidates> candidates(const CommandShape& program, const std::vector<std::string>& words,
                                     const ValuesAt& valuesAt);

/// Answers the script of a shell when the first word of the command line is "complete":
///
///     complete bash LINE CURSOR WORD    the line, the cursor's place in bytes, what will be replaced
///     complete other WORD... =LAST      words without quotes; some shells lose an empty one
///
/// Prints the candidates, one a line, with a tab in front of what each is; for the Bash as it takes them. The
/// exit status is 1 where files can stand.
std::optional<int> answerShell(const std::function<CommandShape()>& shape, int argc, char** argv,
                               const ValuesAt& valuesAt);

}  // namespace velk::cli
